// Which parts are shown and how, and what a plane leaves away.
import { checkbox, h, labelled, section } from './dom.js';
import { shownWithin } from './numbers.js';

const TITLES = { elements: 'Volume elements', faces: 'Faces', edges: 'Edges', nodes: 'Nodes' };

/** The layers of all documents by name, each with what it is called in the first that has it. */
function layersOf(views) {
  const layers = new Map();
  for (const layer of views.flatMap((view) => view.layers.all)) {
    layers.set(layer.name, layers.get(layer.name) ?? layer);
  }
  return [...layers.values()];
}

export class ShowPanel {
  constructor(app) {
    this.app = app;
    this.boxes = new Map();
    const parts = h('div', { class: 'parts' });
    const layers = layersOf(app.views);
    for (const [entity, title] of Object.entries(TITLES)) {
      const own = layers.filter((layer) => layer.entity === entity);
      if (own.length) {
        parts.append(this.#part(title, own));
      }
    }
    this.wire = checkbox('Edges of cells', app.isWired, (isOn) => app.setWire(isOn));
    this.features = checkbox('Feature edges', app.hasFeatures, (isOn) => app.setFeatures(isOn));
    this.element = section('Show', true, parts, h('div', { class: 'parts' },
      h('fieldset', null, h('legend', null, 'Lines'), this.wire, this.features)));
  }

  #part(title, layers) {
    const boxes = layers.map((layer) => {
      const box = checkbox(layer.label, layer.isVisible, (isOn) => {
        this.app.views.forEach((view) => view.layers.setVisible(layer.name, isOn));
        this.app.said(`${layer.label} ${isOn ? 'shown' : 'hidden'}`);
      });
      this.boxes.set(layer.name, box.querySelector('input'));
      return box;
    });
    const all = h('legend', null, title);
    if (layers.length > 1) {
      all.append(h('button', { type: 'button', onclick: () => this.#toggle(layers) }, 'All or none'));
    }
    return h('fieldset', null, all, ...boxes);
  }

  /** Hides all of some layers, or shows all where one is hidden. */
  #toggle(layers) {
    const isShown = layers.every(({ name }) => this.boxes.get(name).checked);
    for (const { name } of layers) {
      this.app.views.forEach((view) => view.layers.setVisible(name, !isShown));
    }
    this.update();
  }

  /** Says what is shown after something else than a box decided it. */
  update() {
    for (const view of this.app.views) {
      for (const layer of view.layers.all) {
        this.boxes.get(layer.name).checked = layer.isVisible;
      }
    }
  }
}

const AXES = { x: [1, 0, 0], y: [0, 1, 0], z: [0, 0, 1], view: null };

export class ClipPanel {
  constructor(app) {
    this.app = app;
    this.axis = h('select', { onchange: () => this.apply() },
      h('option', { value: '' }, 'Off'), h('option', { value: 'x' }, 'Across x'),
      h('option', { value: 'y' }, 'Across y'), h('option', { value: 'z' }, 'Across z'),
      h('option', { value: 'view' }, 'Across the view'));
    this.slider = h('input', { type: 'range', min: 0, max: 1000, value: 500, oninput: () => this.apply() });
    this.place = h('output', { for: '' });
    this.isTurned = checkbox('Keep the other side', false, () => this.apply());
    this.more = h('div', { hidden: true }, labelled('Place', this.slider, { class: 'field wide' }), this.place,
      this.isTurned);
    this.element = section('Clip plane', false, labelled('Plane', this.axis, { class: 'field wide' }), this.more);
    this.range = app.box();
  }

  apply() {
    const name = this.axis.value;
    this.more.hidden = !name;
    if (!name) {
      this.app.setClip(null);
      return;
    }
    if (this.before !== name) {
      this.#take(AXES[name]);
    }
    this.before = name;
    const [low, high] = this.#extent(this.normal);
    const offset = low + (high - low) * (this.slider.value / 1000);
    this.place.value = `${name === 'view' ? 'at' : `${name} =`} ${shownWithin(offset, high - low)}`;
    this.slider.setAttribute('aria-valuetext', this.place.value);
    const sign = this.isTurned.querySelector('input').checked ? -this.facing : this.facing;
    this.app.setClip({ normal: this.normal.map((part) => sign * part), offset: sign * offset });
  }

  /** Takes a normal, and as the side to be left away the one that hides the cut from the eye. */
  #take(normal) {
    const towardsEye = this.app.viewDirection();
    this.normal = normal ?? towardsEye;
    this.facing = this.normal.reduce((sum, part, axis) => sum + part * towardsEye[axis], 0) < 0 ? -1 : 1;
  }

  /** The least and the largest product of the normal with a corner of the box. */
  #extent(normal) {
    const { minimum, maximum } = this.range;
    const ends = normal.map((part, axis) => [part * minimum[axis], part * maximum[axis]]);
    return [Math.min, Math.max].map((pick) => ends.reduce((sum, pair) => sum + pick(...pair), 0));
  }
}
