// The page: stages beside each other, and a panel with what can be done and read.
import { aboutSection } from './about_panel.js';
import { ColourPanel } from './colour_panel.js';
import { h, icon, printable } from './dom.js';
import { fieldsOf, listsOf } from './fields.js';
import { differencesSection, findingsSection } from './findings_panel.js';
import { histogramSection } from './histogram_panel.js';
import { bytesShown, counted } from './numbers.js';
import { SelectionPanel } from './selection_panel.js';
import { ClipPanel, ShowPanel } from './show_panel.js';
import { ballOf, textureFrom, VIEWS } from './stage.js';
import { attributesSection, parametersSection } from './table_panel.js';
import { View } from './view.js';

/** The feature edges of more triangles take longer than a person waits for a first look. */
const MOST_FOR_FEATURES = 400000;

function button(name, title, onclick, properties = {}) {
  return h('button', { type: 'button', class: 'tool', title, 'aria-label': title, onclick, ...properties }, icon(name));
}

export class App {
  /**
   * @param {HTMLElement} root
   * @param {object} report as unpack() and readExchange() give it
   */
  constructor(root, report) {
    this.root = root;
    this.report = report;
    this.models = report.documents;
    this.ball = ballOf(this.models.map((model) => model.mesh.nodes.coordinates));
    this.isFlat = this.models.every((model) => model.dimension === 2);
    this.views = this.models.map((model) => new View(this, model));
    this.live = h('p', { class: 'unseen', role: 'status', 'aria-live': 'polite' });
    document.title = `${printable(report.title)} – mesh`;
    this.stages = h('div', { class: `stages of-${this.views.length}` }, ...this.views.map((view) => view.element));
    this.panels = h('aside', { class: 'panels', 'aria-label': 'What is shown and known' });
    this.main = h('main', { class: 'layout' },
      h('section', { class: 'scene', 'aria-label': 'Mesh' }, this.stages, this.#toolbar()), this.panels);
    root.replaceChildren(this.#header(), this.main, this.live);
    this.#start();
  }

  #start() {
    this.views.forEach((view) => view.start());
    this.isDrawn = this.views.every((view) => view.isDrawn);
    this.isWired = this.views.every((view) => view.layers.isFine);
    this.hasFeatures = false;
    this.root.classList.toggle('pictures', !this.isDrawn);
    this.#linkCameras();
    this.views[0].stage.listeners.add((stage) =>
      this.projection.setAttribute('aria-pressed', String(stage.isOrthographic)));
    this.useTheme();
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.useTheme());
    this.#addPanels();
    this.#printWell();
    if (this.report.differences?.length) {
      this.#colourByDifference();
    }
    this.views.forEach((view) => view.stage.drawNow());
    this.firstFrame = performance.now();
    // The lines take longer than the first look may.
    setTimeout(() => this.#addFeatures(), 50);
  }

  #addFeatures() {
    const triangles = this.views.flatMap((view) => view.layers.all)
      .reduce((sum, layer) => sum + (layer.sides?.length ?? 0), 0);
    if (triangles <= MOST_FOR_FEATURES) {
      this.show.features.querySelector('input').checked = true;
      this.setFeatures(true);
    }
    this.views.forEach((view) => view.layers.addCoarse());
    this.isReady = true;
  }

  #colourByDifference() {
    const fields = this.colours.fields.filter((field) => field.role === 'difference');
    // What both have can be compared.
    const isShared = (field) => this.models.every((model) => fieldsOf(model).some(({ id }) => id === field.id));
    const differs = (field) => listsOf(this.models, field.id).some((list) => list.some((value) => value > 0));
    const field = fields.find((one) => isShared(one) && differs(one)) ?? fields.find(differs) ?? fields[0];
    if (field) {
      this.colours.choose(field.id);
    }
  }

  #linkCameras() {
    if (this.views.length < 2) {
      return;
    }
    const [first, second] = this.views.map((view) => view.stage);
    let leader = first;
    const follow = (from, to) => () => {
      if (!leader) {
        leader = from;
        to.follow(from);
        leader = null;
      }
    };
    first.listeners.add(follow(first, second));
    second.listeners.add(follow(second, first));
    second.follow(first);
    leader = null;
  }

  #header() {
    const [model] = this.models;
    const facts = this.models.length > 1 ? [] : [
      model.counts.elements && `${counted(model.counts.elements)} elements`,
      model.counts.faces && `${counted(model.counts.faces)} faces`,
      `${counted(model.counts.nodes)} nodes`,
      model.file && bytesShown(model.file.bytes),
    ].filter(Boolean);
    return h('header', { class: 'top' },
      h('h1', null, h('bdi', null, printable(this.report.title))),
      h('p', { class: 'summary' }, ...facts.map((fact) => h('span', null, fact)), this.#verdict()));
  }

  #verdict() {
    const found = this.models.flatMap((model) => model.findings ?? []);
    if (!this.models.some((model) => model.findings)) {
      return null;
    }
    const [severity, sign] = found.some(({ severity: one }) => one === 'error') ? ['error', 'errors']
      : found.some(({ severity: one }) => one === 'warning') ? ['warning', 'warnings'] : ['good', 'sound'];
    const count = found.filter((finding) => finding.severity === severity).length;
    const text = severity === 'good' ? sign : `${count} ${count === 1 ? severity : sign}`;
    return h('span', { class: `badge ${severity}` }, text);
  }

  #toolbar() {
    // It goes back to its title: what is turned by hand is none of these views any more.
    const look = h('select', {
      'aria-label': 'View from', class: 'tool', onchange: () => {
        this.each((stage) => stage.look(look.value));
        this.said(`View from ${look.value}`);
        look.value = '';
      },
    }, h('option', { value: '', hidden: true }, 'View'),
    ...Object.keys(VIEWS).map((name) => h('option', { value: name }, name[0].toUpperCase() + name.slice(1))));
    this.projection = button('projection', 'Orthographic', () => {
      const isWanted = !this.views[0].stage.isOrthographic;
      this.each((stage) => stage.setOrthographic(isWanted));
    }, { 'aria-pressed': 'false' });
    const panel = button('panel', 'Panel', () => {
      const isHidden = this.main.classList.toggle('without-panels');
      panel.setAttribute('aria-expanded', String(!isHidden));
    }, { 'aria-expanded': 'true' });
    return h('div', { class: 'toolbar', role: 'toolbar', 'aria-label': 'View' },
      h('span', { class: 'moving' }, look,
        button('fit', 'Fit', () => this.each((stage) => stage.flyTo())), this.projection),
      button('save', 'Save a picture', () => this.savePicture()),
      button('theme', 'Light or dark', () => this.#switchTheme()), panel);
  }

  #addPanels() {
    this.colours = new ColourPanel(this);
    this.show = new ShowPanel(this);
    this.clip = new ClipPanel(this);
    this.selection = new SelectionPanel(this);
    this.stages.parentElement.append(this.colours.legend);
    this.panels.append(...[
      this.colours.element, this.show.element, this.clip.element, this.isDrawn ? this.selection.element : null,
      differencesSection(this), findingsSection(this), histogramSection(this), attributesSection(this),
      parametersSection(this), aboutSection(this),
      h('p', { class: 'quiet made' }, `Made by ${printable(this.report.madeBy)}. Nothing is loaded from elsewhere.`),
    ].filter(Boolean));
  }

  titleOf(model) {
    const titles = this.models.map(({ name, kind }) =>
      (!name || this.models.some((one) => one !== model && one.name === model.name) ? `${name} ${kind}`.trim() : name));
    const number = this.models.indexOf(model);
    const isAlone = titles.indexOf(titles[number]) === titles.lastIndexOf(titles[number]);
    return isAlone ? titles[number] : `${titles[number]} (${number ? 'second' : 'first'})`;
  }

  /** Content of one document, below its name where there are two. */
  underName(view, ...content) {
    return this.views.length === 1 ? h('div', null, ...content)
      : h('div', { class: 'under' }, h('h3', { class: 'of' }, h('bdi', null, printable(this.titleOf(view.model)))),
        ...content);
  }

  each(action) {
    this.views.forEach((view) => action(view.stage));
  }

  /** Tells those who do not see what happened. */
  said(text) {
    this.live.textContent = printable(text);
  }

  colourBy(field, scale, bytes) {
    for (const view of this.views) {
      const texture = bytes && textureFrom(bytes, !scale.classes);
      view.layers.colourBy(field, scale, texture);
    }
  }

  showOnly(entity) {
    this.views.forEach((view) => view.layers.showOnly(entity));
    this.show?.update();
  }

  setWire(isWanted) {
    this.isWired = isWanted;
    this.views.forEach((view) => view.layers.setWire(isWanted, this.colour('--wire'), 0.45));
  }

  setFeatures(isWanted) {
    this.hasFeatures = isWanted;
    this.views.forEach((view) => view.layers.setFeatures(isWanted, this.colour('--feature')));
  }

  setClip(plane) {
    // What is marked may be cut away.
    this.clearSelection();
    this.views.forEach((view) => view.layers.setClip(plane));
  }

  clearSelection() {
    this.views.forEach((view) => view.unmark());
    this.selection.clear();
  }

  /** The direction from the eye into the scene, turned round: what is nearer has a larger product with it. */
  viewDirection() {
    const { stage } = this.views[0];
    return stage.camera ? stage.camera.position.clone().sub(stage.controls.target).normalize().toArray() : [0, -1, 0];
  }

  /** The box of all meshes. */
  box() {
    const minimum = [Infinity, Infinity, Infinity];
    const maximum = [-Infinity, -Infinity, -Infinity];
    for (const { mesh } of this.models) {
      mesh.nodes.coordinates.forEach((value, i) => {
        if (Number.isFinite(value)) {
          minimum[i % 3] = Math.min(minimum[i % 3], value);
          maximum[i % 3] = Math.max(maximum[i % 3], value);
        }
      });
    }
    return minimum[0] <= maximum[0] ? { minimum, maximum } : { minimum: [0, 0, 0], maximum: [0, 0, 0] };
  }

  /** A colour of the style, as three shares of 1. */
  colour(variable) {
    const hex = getComputedStyle(document.documentElement).getPropertyValue(variable).trim();
    return [1, 3, 5].map((at) => parseInt(hex.slice(at, at + 2), 16) / 255);
  }

  #switchTheme() {
    const root = document.documentElement;
    const isDark = getComputedStyle(root).colorScheme === 'dark';
    root.dataset.theme = isDark ? 'light' : 'dark';
    this.said(`The page is ${root.dataset.theme} now`);
    this.useTheme();
  }

  /** Draws in the colours that the page has now. */
  useTheme() {
    this.each((stage) => stage.setBackground(this.colour('--scene')));
    this.setWire(this.isWired);
    this.setFeatures(this.hasFeatures);
  }

  savePicture() {
    this.views.forEach((view) => {
      view.stage.drawNow();
      const link = h('a', {
        href: view.canvas.toDataURL('image/png'),
        download: `${view.model.name.replace(/[^\w.-]+/g, '_') || 'mesh'}.png`,
      });
      link.click();
    });
  }

  /** On paper nothing is folded away, and paper is white. */
  #printWell() {
    let closed = [];
    const root = document.documentElement;
    let theme;
    addEventListener('beforeprint', () => {
      closed = [...this.panels.querySelectorAll('details:not([open])')];
      closed.forEach((part) => { part.open = true; });
      theme = root.dataset.theme;
      root.dataset.theme = 'light';
      this.useTheme();
      this.each((stage) => stage.drawNow());
    });
    addEventListener('afterprint', () => {
      closed.forEach((part) => { part.open = false; });
      if (theme) {
        root.dataset.theme = theme;
      } else {
        delete root.dataset.theme;
      }
      this.useTheme();
    });
  }
}
