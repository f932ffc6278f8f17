// What the checks of the pages ask of a loaded page (browser_checks.py). Each function returns a list of
// sentences that say what is wrong.

const LEAST_CONTRAST = 4.5; // of text that is read; WCAG 2 calls it AA
const LEAST_CONTRAST_OF_LARGE_TEXT = 3;

function channels(colour) {
  const [red, green, blue, alpha = 1] = colour.match(/[\d.]+/g).map(Number);
  return { red, green, blue, alpha };
}

function blend(top, below) {
  const mix = (name) => top[name] * top.alpha + below[name] * (1 - top.alpha);
  return { red: mix("red"), green: mix("green"), blue: mix("blue"), alpha: 1 };
}

function luminance({ red, green, blue }) {
  const linear = (value) => {
    const share = value / 255;
    return share <= 0.03928 ? share / 12.92 : ((share + 0.055) / 1.055) ** 2.4;
  };
  return 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue);
}

function contrast(one, other) {
  const [dark, bright] = [luminance(one), luminance(other)].sort((a, b) => a - b);
  return (bright + 0.05) / (dark + 0.05);
}

// The colour behind an element: that of the nearest ancestors until one is opaque, and white paper.
function behind(element) {
  const layers = [];
  for (let at = element; at; at = at.parentElement) {
    layers.push(channels(getComputedStyle(at).backgroundColor));
    if (layers[layers.length - 1].alpha === 1) break;
  }
  const paper = { red: 255, green: 255, blue: 255, alpha: 1 };
  return layers.reduceRight((below, layer) => blend(layer, below), paper);
}

function isSeen(element) {
  const style = getComputedStyle(element);
  return element.getClientRects().length > 0 && style.visibility === "visible" &&
    Number(style.opacity) > 0 && !element.closest(".visually-hidden");
}

function texts() {
  const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  const found = new Map();
  while (walker.nextNode()) {
    const element = walker.currentNode.parentElement;
    const text = walker.currentNode.textContent.trim();
    if (text && !found.has(element) && isSeen(element)) found.set(element, text);
  }
  return found;
}

function isLarge(style) {
  const size = parseFloat(style.fontSize);
  return size >= 24 || (size >= 18.66 && Number(style.fontWeight) >= 700);
}

// One sentence for each pair of colours, not for each of a thousand words.
function textsThatAreHardToRead() {
  const sentences = new Map();
  for (const [element, text] of texts()) {
    const style = getComputedStyle(element);
    const background = behind(element);
    const reached = contrast(blend(channels(style.color), background), background);
    const least = isLarge(style) ? LEAST_CONTRAST_OF_LARGE_TEXT : LEAST_CONTRAST;
    const pair = `${style.color} on rgb(${background.red}, ${background.green}, ${background.blue})`;
    if (reached < least && !sentences.has(pair)) {
      sentences.set(pair, `"${text.slice(0, 40)}" has a contrast of ${reached.toFixed(1)}: ${pair}`);
    }
  }
  return [...sentences.values()];
}

// Surfaces that a reader sees as light or dark: the page, both drawers, code, tables.
function surfacesThatAreNot(wanted) {
  const surfaces = "body, .sidebar-drawer, .toc-drawer, .mobile-header, article, article pre, " +
    "article code, article td, article th, article dt, button";
  const wrong = new Set();
  for (const element of document.querySelectorAll(surfaces)) {
    const dark = luminance(behind(element)) < 0.18;
    if (isSeen(element) && dark !== (wanted === "dark")) {
      wrong.add(`${element.tagName.toLowerCase()} is not ${wanted}`);
    }
  }
  return [...wrong];
}

// The drawers wait outside the window on purpose, and code scrolls inside its own frame.
function partsThatStickOut() {
  const width = document.documentElement.clientWidth;
  const wrong = [];
  if (document.scrollingElement.scrollWidth > width) {
    wrong.push(`the page scrolls sideways, to ${document.scrollingElement.scrollWidth} pixels`);
  }
  for (const frame of document.querySelectorAll("article .table-wrapper, article table")) {
    if (frame.scrollWidth > frame.clientWidth + 1) {
      wrong.push(`a table of ${frame.scrollWidth} pixels has ${frame.clientWidth}`);
    }
  }
  for (const cell of document.querySelectorAll("article td, article th")) {
    const content = document.createRange();
    content.selectNodeContents(cell);
    if (content.getBoundingClientRect().right > cell.getBoundingClientRect().right + 1) {
      wrong.push(`"${cell.textContent.trim().slice(0, 40)}" does not fit into its cell`);
      break;
    }
  }
  const article = document.querySelector("article");
  const edge = Math.min(width, article.getBoundingClientRect().right + 8); // headings are wider
  for (const element of article.querySelectorAll("*")) {
    const { left, right } = element.getBoundingClientRect();
    if ((right > edge + 1 || left < -1) && isSeen(element) && !element.closest("pre")) {
      const text = element.textContent.trim().slice(0, 40);
      wrong.push(`${element.tagName.toLowerCase()} "${text}" ends at ${Math.round(right)}, ` +
        `the column at ${Math.round(edge)}`);
      break; // what is around and in it sticks out as well
    }
  }
  return wrong;
}

// A narrow table has narrow columns; names in code may break in them, words and numbers may not.
function wordsThatAreBroken() {
  for (const paragraph of document.querySelectorAll("article td, article th")) {
    const walker = document.createTreeWalker(paragraph, NodeFilter.SHOW_TEXT);
    while (walker.nextNode()) {
      const node = walker.currentNode;
      if (node.parentElement.closest("code")) continue;
      for (const word of node.textContent.matchAll(/[^\s-]+/g)) {
        const range = document.createRange();
        range.setStart(node, word.index);
        range.setEnd(node, word.index + word[0].length);
        const tops = new Set([...range.getClientRects()].map((line) => line.top));
        if (tops.size > 1) return [`"${word[0]}" is broken`];
      }
    }
  }
  return [];
}

// For a picture that is open as a document: each text against the shape that it lies on.
function labelsThatAreHardToRead() {
  const wrong = [];
  for (const label of document.querySelectorAll("text")) {
    const { left, top, width, height } = label.getBoundingClientRect();
    const below = document.elementsFromPoint(left + width / 2, top + height / 2)
      .find((shape) => shape.localName !== "text" && shape.localName !== "tspan" &&
        getComputedStyle(shape).fill.startsWith("rgb") && shape.localName !== "svg");
    const paper = below ? getComputedStyle(below).fill : "rgb(255, 255, 255)";
    const reached = contrast(channels(getComputedStyle(label).fill), channels(paper));
    if (reached < LEAST_CONTRAST) {
      wrong.push(`"${label.textContent}" has a contrast of ${reached.toFixed(1)}`);
    }
  }
  return wrong;
}

// What a photograph of the window shows in a part of it. The file of a picture cannot be read from a page on a disk; a photograph of
// it can.
async function luminances(photograph, { x, y, width, height }) {
  const image = new Image();
  image.src = `data:image/png;base64,${photograph}`;
  await image.decode();
  const context = new OffscreenCanvas(image.width, image.height).getContext("2d");
  context.drawImage(image, 0, 0);
  const { data } = context.getImageData(Math.round(x), Math.round(y), Math.round(width),
    Math.round(height));
  return Array.from({ length: data.length / 4 }, (_, at) =>
    luminance({ red: data[4 * at], green: data[4 * at + 1], blue: data[4 * at + 2] }));
}

async function darkShare(photograph, part) {
  const all = await luminances(photograph, part);
  return all.filter((value) => value < 0.18).length / all.length;
}

async function greatestContrast(photograph, part) {
  const all = await luminances(photograph, part);
  const [dark, bright] = all.reduce(([least, most], value) =>
    [Math.min(least, value), Math.max(most, value)], [1, 0]);
  return (bright + 0.05) / (dark + 0.05);
}
