// Elements of the page. Texts are only ever set as text: names come from files.

const SVG = 'http://www.w3.org/2000/svg';

function fill(element, properties, children) {
  for (const [name, value] of Object.entries(properties ?? {})) {
    if (name.startsWith('on')) {
      element.addEventListener(name.slice(2), value);
    } else if (name === 'style') {
      Object.assign(element.style, value);
    } else if (value === true) {
      element.setAttribute(name, '');
    } else if (value !== false && value !== null && value !== undefined) {
      element.setAttribute(name, value);
    }
  }
  element.append(...children.flat().filter((child) => child !== null && child !== undefined));
  return element;
}

/** Makes an element: `on...` are listeners, strings among the children are text. */
export function h(tag, properties, ...children) {
  return fill(document.createElement(tag), properties, children);
}

/** The same of a drawing. */
export function s(tag, properties, ...children) {
  return fill(document.createElementNS(SVG, tag), properties, children);
}

const PATHS = {
  fit: 'M4 9V4h5M15 4h5v5M20 15v5h-5M9 20H4v-5M9 12h6M12 9v6',
  projection: 'M4 7l8-4 8 4v10l-8 4-8-4zM4 7l8 4 8-4M12 11v10',
  theme: 'M12 3a9 9 0 100 18V3z',
  save: 'M12 4v11M7 11l5 5 5-5M5 20h14',
  panel: 'M4 5h16v14H4zM15 5v14',
};

/** A drawn sign, which says nothing to screen readers: its button has a name. */
export function icon(name) {
  return s('svg', { viewBox: '0 0 24 24', 'aria-hidden': 'true', class: 'icon' }, s('path', { d: PATHS[name] }));
}

/**
 * A text from a file as it can be shown: control characters as their pictures, and marks that turn the direction
 * of reading by their numbers.
 */
export function printable(text) {
  return String(text)
    .replace(/[\u0000-\u001f]/g, (c) => String.fromCharCode(0x2400 + c.charCodeAt(0)))
    .replace(/\u007f/g, '\u2421')
    .replace(/[\u0080-\u009f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u2069\ufeff]/g,
      (c) => `\u27e8U+${c.charCodeAt(0).toString(16).toUpperCase().padStart(4, '0')}\u27e9`);
}

/** A name from a file, apart from the direction in which the text around it is read. */
export function named(text, tag = 'bdi') {
  return h(tag, { class: 'name' }, printable(text));
}

/** What is of no use on paper. */
const CONTROLS = new Set(['Colour', 'Show', 'Clip plane', 'Selection']);

/** A part of the panel that opens and closes. */
export function section(title, isOpen, ...children) {
  return h('details', { class: CONTROLS.has(title) ? 'section control' : 'section', open: isOpen },
    h('summary', null, h('h2', null, title)), h('div', { class: 'body' }, ...children));
}

let lastId = 0;

/** A control with its label in front of it. */
export function labelled(text, control, properties = {}) {
  control.id ||= `c${++lastId}`;
  return h('div', { class: 'field', ...properties }, h('label', { for: control.id }, text), control);
}

export function checkbox(text, isChecked, onchange) {
  const box = h('input', { type: 'checkbox', checked: isChecked, onchange: () => onchange(box.checked) });
  return h('label', { class: 'check' }, box, h('span', null, text));
}
