// What a document is and who made it.
import { h, named, section } from './dom.js';
import { bytesShown, counted, countedShapes, shown } from './numbers.js';

function rowsOf(model) {
  const { identification, file, boundingBox } = model;
  const box = boundingBox && model.boundingBox.minimum.map((low, axis) =>
    `${'xyz'[axis]}: ${shown(low, 9)} to ${shown(boundingBox.maximum[axis], 9)}`).join(', ');
  return [
    ['Document', `${model.kind}, dimension ${model.dimension}`],
    ['Module', identification.module && named(identification.module)],
    ['Version of its format', identification.moduleFormatVersion && named(identification.moduleFormatVersion)],
    ['Made by', identification.creator && named(identification.creator)],
    ['Nodes', counted(model.counts.nodes)],
    ...['edges', 'faces', 'elements'].filter((entity) => model.counts[entity]).map((entity) => [
      entity[0].toUpperCase() + entity.slice(1),
      model.shapes.filter((shape) => shape.entity === entity).map((shape) =>
        `${countedShapes(shape.count, shape.shape)} of ${shape.nodesPerCell} nodes`).join(', '),
    ]),
    ['Bounding box', box],
    ['File', file && `${bytesShown(file.bytes)}, format ${file.formatVersion}`],
    ['Fingerprint', model.fingerprint && h('code', { class: 'fingerprint' }, model.fingerprint)],
  ].filter(([, value]) => value);
}

export function aboutSection(app) {
  return section('Document', true, ...app.views.map((view) => app.underName(view,
    h('dl', { class: 'facts' }, ...rowsOf(view.model).flatMap(([term, value]) =>
      [h('dt', null, term), h('dd', null, value)])),
    ...view.model.notes.map((note) => h('p', { class: 'note-text' }, note)))));
}
