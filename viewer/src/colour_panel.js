// By what the mesh is coloured, its range and its legend.
import { classColour, cssColour, rampColour, scaleOf, textureOf } from './colours.js';
import { h, labelled, printable, section } from './dom.js';
import { fieldsOfAll, listsOf, unitOf } from './fields.js';
import { shown, shownWithin } from './numbers.js';

const GROUPS = { difference: 'Differences', measure: 'Quality and size', attribute: 'Attributes' };
const PLACES = { nodes: 'nodes', edges: 'edges', faces: 'faces', elements: 'elements' };
const DIFFERENCE_CLASSES = ['same in both', 'other values', 'only in this one'];

export class ColourPanel {
  /** @param {object} app */
  constructor(app) {
    this.app = app;
    this.fields = fieldsOfAll(app.models);
    this.select = h('select', { onchange: () => this.choose(this.select.value) },
      h('option', { value: '' }, 'Nothing'), ...this.#groups());
    this.minimum = this.#number('minimum');
    this.maximum = this.#number('maximum');
    this.whole = h('button', { type: 'button', onclick: () => this.#reset() }, 'All');
    this.range = h('div', { class: 'row range', hidden: true },
      labelled('From', this.minimum), labelled('to', this.maximum), this.whole);
    this.element = section('Colour', true, labelled('Coloured by', this.select, { class: 'field wide' }), this.range);
    this.legend = h('div', { class: 'legend', hidden: true, role: 'img' });
  }

  #groups() {
    return Object.entries(GROUPS).map(([role, title]) => {
      const own = this.fields.filter((field) => field.role === role);
      return own.length ? h('optgroup', { label: title }, ...own.map((field) =>
        h('option', { value: field.id }, `${printable(field.name)} (${PLACES[field.entity]})`))) : null;
    });
  }

  #number(side) {
    const input = h('input', {
      type: 'number', step: 'any', onchange: () => this.#narrow(side, input.valueAsNumber),
    });
    return input;
  }

  /** @param {string} id of a field, or "" for none */
  choose(id) {
    this.field = this.fields.find((field) => field.id === id) ?? null;
    this.select.value = this.field ? id : '';
    this.scale = this.field && scaleOf(this.field, listsOf(this.app.models, id));
    if (this.field && this.field.entity !== 'nodes') {
      this.app.showOnly(this.field.entity);
    }
    this.#apply();
  }

  #narrow(side, value) {
    if (Number.isFinite(value) && this.scale && !this.scale.classes) {
      this.scale = { ...this.scale, [side]: value };
      if (this.scale.minimum > this.scale.maximum) {
        this.scale = { ...this.scale, minimum: value, maximum: value };
      }
      this.#apply();
    }
  }

  #reset() {
    this.scale = { ...this.scale.whole, whole: this.scale.whole };
    this.#apply();
  }

  #apply() {
    const { field, scale } = this;
    this.range.hidden = !field || Boolean(scale.classes);
    if (field && !scale.classes) {
      this.minimum.value = shownWithin(scale.minimum, scale.maximum - scale.minimum);
      this.maximum.value = shownWithin(scale.maximum, scale.maximum - scale.minimum);
    }
    this.app.colourBy(field, scale, field && textureOf(scale));
    this.#showLegend();
  }

  #showLegend() {
    const { field, scale } = this;
    this.legend.hidden = !field;
    if (!field) {
      return;
    }
    const unit = unitOf(field.name);
    const value = (number) => shownWithin(number, scale.maximum - scale.minimum) + unit;
    this.legend.setAttribute('aria-label', scale.classes
      ? `Colours of ${printable(field.name)}: ${scale.classes.length} classes`
      : `Colours of ${printable(field.name)} from ${value(scale.minimum)} to ${value(scale.maximum)}`);
    this.legend.replaceChildren(h('p', { class: 'legend-title' }, h('bdi', null, printable(field.name))),
      scale.classes ? this.#classes(unit) : this.#ramp(value), this.#gaps());
  }

  /** What grey stands for. */
  #gaps() {
    return this.scale.hasGaps
      ? h('p', { class: 'gaps' }, h('span', { class: 'swatch none' }), 'no value') : '';
  }

  #classes(unit) {
    const names = this.field.role === 'difference' ? DIFFERENCE_CLASSES : null;
    return h('ul', { class: 'classes' }, ...this.scale.classes.map((value, i) => h('li', null,
      h('span', { class: 'swatch', style: { background: cssColour(classColour(this.scale, i)) } }),
      names?.[value] ?? shown(value, 9) + unit)));
  }

  #ramp(value) {
    const { minimum, maximum } = this.scale;
    const stops = Array.from({ length: 17 }, (_, i) => cssColour(rampColour(i / 16)));
    const ticks = [0, 0.25, 0.5, 0.75, 1].map((share) => minimum + share * (maximum - minimum));
    return h('div', { class: 'ramp' },
      h('div', { class: 'bar', style: { background: `linear-gradient(to right, ${stops.join(', ')})` } }),
      h('div', { class: 'ticks' }, ...ticks.map((tick) => h('span', null, value(tick)))));
  }
}
