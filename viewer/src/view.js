// One document on its stage: the canvas, the axes, and what a hand, a key or a list does to it.
import { h, printable, s } from './dom.js';
import { indexOf } from './fields.js';
import { Layers } from './layers.js';
import { counted } from './numbers.js';
import { Pictures } from './pictures.js';
import { Stage } from './stage.js';

const STEP = Math.PI / 24;

const KEYS = {
  ArrowLeft: (stage) => stage.turn(-STEP, 0),
  ArrowRight: (stage) => stage.turn(STEP, 0),
  ArrowUp: (stage) => stage.turn(0, STEP),
  ArrowDown: (stage) => stage.turn(0, -STEP),
  'Shift+ArrowLeft': (stage) => stage.pan(0.05, 0),
  'Shift+ArrowRight': (stage) => stage.pan(-0.05, 0),
  'Shift+ArrowUp': (stage) => stage.pan(0, -0.05),
  'Shift+ArrowDown': (stage) => stage.pan(0, 0.05),
  '+': (stage) => stage.zoom(1.2),
  '=': (stage) => stage.zoom(1.2),
  '-': (stage) => stage.zoom(1 / 1.2),
  f: (stage) => stage.flyTo(),
  1: (stage) => stage.look('front'),
  3: (stage) => stage.look('right'),
  7: (stage) => stage.look('top'),
  0: (stage) => stage.look('corner'),
  o: (stage) => stage.setOrthographic(!stage.isOrthographic),
};

/** How far a finger may move in CSS pixels for its touch to be a click. */
const STILL = 5;

function stageOf(canvas, ball, isFlat) {
  try {
    return new Stage(canvas, ball, isFlat);
  } catch {
    return new Pictures(canvas, isFlat);
  }
}

export class View {
  constructor(app, model) {
    this.app = app;
    this.model = model;
    this.told = `Mesh of ${printable(model.name) || 'a document'}: ${counted(model.counts.nodes)} nodes, ` +
      `${counted(model.counts.elements)} volume elements, ${counted(model.counts.faces)} faces.`;
    this.canvas = h('canvas', { role: 'img', 'aria-label': this.told });
    this.axes = s('svg', { class: 'axes', viewBox: '-40 -40 80 80', 'aria-hidden': 'true' });
    this.caption = h('figcaption', { class: 'mark-name', hidden: true });
    this.element = h('figure', { class: 'stage' }, this.canvas, this.axes, this.caption,
      app.report.documents.length > 1 ? h('p', { class: 'stage-name' }, h('bdi', null, printable(app.titleOf(model))))
        : null);
  }

  /** Begins to draw, once the element has a size on the page. */
  start() {
    this.stage = stageOf(this.canvas, this.app.ball, this.app.isFlat);
    this.isDrawn = this.stage instanceof Stage;
    this.axes.toggleAttribute('hidden', !this.isDrawn);
    this.layers = new Layers(this.model, this.stage);
    this.stage.resize();
    new ResizeObserver(() => this.stage.resize()).observe(this.canvas);
    if (this.isDrawn) {
      this.stage.listeners.add(() => this.#drawAxes());
      this.#drawAxes();
      this.#listen();
      this.canvas.tabIndex = 0;
      this.canvas.setAttribute('aria-label', `${this.told} Arrows turn it, with Shift they move it, ` +
        'plus and minus zoom, f fits it, o changes the projection.');
    } else {
      this.element.append(h('p', { class: 'fallback' },
        'This browser draws no 3-D graphics (WebGL), so these are pictures from four sides.'));
    }
    this.stage.flyTo();
  }

  #listen() {
    let pressed = null;
    this.canvas.addEventListener('pointerdown', (event) => {
      pressed = event.isPrimary ? [event.clientX, event.clientY] : null;
    });
    this.canvas.addEventListener('pointerup', (event) => {
      const moved = pressed && Math.hypot(event.clientX - pressed[0], event.clientY - pressed[1]);
      if (pressed && moved < STILL && event.button === 0) {
        const { left, top } = this.canvas.getBoundingClientRect();
        this.pickAt(event.clientX - left, event.clientY - top);
      }
      pressed = null;
    });
    this.canvas.addEventListener('keydown', (event) => {
      const key = `${event.shiftKey && event.key.startsWith('Arrow') ? 'Shift+' : ''}${event.key}`;
      if (KEYS[key] && !event.ctrlKey && !event.metaKey && !event.altKey) {
        event.preventDefault();
        KEYS[key](this.stage);
      }
    });
  }

  #drawAxes() {
    const length = 26;
    const axes = this.stage.axes().map(([right, up, near], axis) => ({ right, up, near, axis }));
    this.axes.replaceChildren(...axes.sort((a, b) => a.near - b.near).flatMap(({ right, up, axis }) => [
      s('line', { class: `axis ${'xyz'[axis]}`, x1: 0, y1: 0, x2: right * length, y2: -up * length }),
      s('text', { x: right * (length + 8), y: -up * (length + 8) + 4, 'text-anchor': 'middle' }, 'xyz'[axis]),
    ]));
  }

  /** Picks what is at a place of the canvas and shows what is known of it. */
  pickAt(x, y) {
    const picked = this.layers.pick(x, y);
    if (!picked) {
      this.app.clearSelection();
      return;
    }
    this.mark(this.layers.outlineOf(picked.entity, picked.index), '');
    this.app.selection.show([{ view: this, ...picked }]);
  }

  mark(place, label) {
    this.stage.mark(place, this.app.colour('--mark'));
    this.caption.hidden = !label;
    this.caption.textContent = label;
  }

  /** Marks a place and flies to it. */
  goTo(place, label) {
    this.mark(place, label);
    this.stage.flyTo(place.points);
    this.app.said(`Shown: ${label}`);
  }

  unmark() {
    this.stage.unmark();
    this.caption.hidden = true;
  }

  /** Where the node or cell of a number is in the mesh of the page; -1 where it is not shown. */
  find(entity, number) {
    const { nodes } = this.model.mesh;
    if (entity === 'nodes') {
      return indexOf(nodes, number, nodes.count);
    }
    const cells = this.layers.cellsOf(entity);
    const count = cells?.groups.reduce((sum, group) => sum + group.count, 0);
    return cells ? indexOf(cells, number, count) : -1;
  }

  /** Shows what is known of a node or cell by its number, where the page has it. */
  select(entity, number) {
    const index = entity ? this.find(entity, number) : -1;
    if (index >= 0) {
      this.app.selection.show([{ view: this, entity, index, node: entity === 'nodes' ? index : null }]);
    }
  }
}
