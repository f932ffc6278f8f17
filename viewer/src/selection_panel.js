// The cell or node that was picked or asked for, with its numbers and values.
import { h, labelled, named, section } from './dom.js';
import { numberOf, unitOf, valuesAt } from './fields.js';
import { counted, shown } from './numbers.js';
import { placeOf } from './surface.js';

const ONE = { elements: 'element', faces: 'face', edges: 'edge', nodes: 'node' };

function valueRows(values) {
  return values.filter(({ role }) => role !== 'difference').flatMap(({ name, role, value }) =>
    [h('dt', null, named(name)), h('dd', null, shown(value, role === 'measure' ? 6 : 9) + unitOf(name))]);
}

function nodeFacts(model, node) {
  const { nodes } = model.mesh;
  const point = [...nodes.coordinates.subarray(3 * node, 3 * node + model.dimension)];
  return [
    h('h3', null, `Node ${numberOf(nodes, node)}`),
    h('dl', { class: 'facts' }, h('dt', null, 'Coordinates'),
      h('dd', null, point.map((value) => shown(value, 9)).join(', ')),
      ...valueRows(valuesAt(nodes.fields, node))),
  ];
}

function cellFacts(model, entity, index) {
  const cells = model.mesh.cells.find((part) => part.entity === entity);
  const { group, place } = placeOf(cells, index);
  const nodes = [...group.nodes.subarray(place * group.nodesPerCell, (place + 1) * group.nodesPerCell)];
  const what = cells.isSkin ? `Outer ${group.shape} of element` : `${group.shape}, ${ONE[entity]}`;
  return [
    h('h3', null, `${what[0].toUpperCase()}${what.slice(1)} ${numberOf(cells, index)}`),
    h('dl', { class: 'facts' }, h('dt', null, 'Nodes'),
      h('dd', null, nodes.map((node) => numberOf(model.mesh.nodes, node)).join(', ')),
      ...valueRows(valuesAt(cells.fields, index))),
  ];
}

export class SelectionPanel {
  constructor(app) {
    this.app = app;
    this.facts = h('div', { class: 'selection', 'aria-live': 'polite' });
    this.kind = h('select', null, ...Object.entries(ONE)
      .filter(([entity]) => app.models.some((model) => model.counts[entity]))
      .map(([entity, name]) => h('option', { value: entity }, name)));
    this.number = h('input', { type: 'number', min: 0, step: 1, value: 0 });
    this.told = h('p', { class: 'quiet', role: 'status' });
    const go = h('form', { class: 'row', onsubmit: (event) => { event.preventDefault(); this.#go(); } },
      labelled('Find', this.kind), labelled('number', this.number), h('button', { type: 'submit' }, 'Go'));
    this.element = section('Selection', true, go, this.told, this.facts);
    this.clear();
  }

  clear() {
    this.facts.replaceChildren(h('p', { class: 'quiet' }, 'Click a cell to read its numbers, values and attributes.'));
    this.told.textContent = '';
  }

  #go() {
    const number = this.number.valueAsNumber;
    const entity = this.kind.value;
    if (!Number.isInteger(number)) {
      this.told.textContent = 'Numbers are whole, from 0.';
      return;
    }
    const found = this.app.views.map((view) => ({ view, index: view.find(entity, number) }))
      .filter(({ index }) => index >= 0);
    this.told.textContent = found.length ? '' : `There is no ${ONE[entity]} ${counted(number)} here.`;
    found.forEach(({ view, index }) => view.goTo(view.layers.outlineOf(entity, index), `${ONE[entity]} ${number}`));
    if (found.length) {
      this.show(found.map(({ view, index }) => ({ view, entity, index, node: entity === 'nodes' ? index : null })));
    }
  }

  /** @param {{view: object, entity: string, index: number, node: number|null}[]} picked */
  show(picked) {
    this.element.open = true;
    this.facts.replaceChildren(...picked.map(({ view, entity, index, node }) => this.app.underName(view,
      ...(entity === 'nodes' ? [] : cellFacts(view.model, entity, index)),
      ...(node === null ? [] : nodeFacts(view.model, node)))));
  }
}
