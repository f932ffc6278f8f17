// The nodes and cells of a document in an exchange file: those that have a place and can be drawn.
import { facesOf, isSolid, outlineOf } from './cell_shapes.js';
import { attempt, counted } from './exchange_notes.js';
import { Unreadable } from './hdf5_file.js';

const SHAPES = [
  'none', 'line', 'triangle', 'quadrilateral', 'tetrahedron', 'hexahedron', 'prism', 'point', 'pyramid',
  'sphere', 'circle',
];
const MOST_COUNT = 0x7fffffff;

/** The groups of a document that hold cells. */
export const GROUPS = { edges: 'Edges', faces: 'Faces', elements: 'Elements' };

/** Rows of two or three coordinates as rows of three; missing ones are zeros. */
function inSpace(values, columns) {
  if (columns === 3) {
    return values;
  }
  const count = values.length / columns;
  const coordinates = new Float64Array(3 * count);
  for (let node = 0; node < count; ++node) {
    for (let axis = 0; axis < columns; ++axis) {
      coordinates[3 * node + axis] = values[columns * node + axis];
    }
  }
  return coordinates;
}

function readCoordinates(file, path, dimension) {
  const { shape, values } = file.floats(path);
  const [count = 0] = shape;
  const columns = count ? values.length / count : dimension;
  if (shape.length === 0 || columns > dimension || columns < 1) {
    throw new Unreadable('has other extents than nodes and dimension');
  }
  return inSpace(values, columns);
}

function isPlaced(coordinates, node) {
  return Number.isFinite(coordinates[3 * node]) && Number.isFinite(coordinates[3 * node + 1]) &&
    Number.isFinite(coordinates[3 * node + 2]);
}

/**
 * The nodes that have a place.
 * @returns {{count: number, coordinates: Float64Array, numbers: Int32Array|null, places: Int32Array|null,
 *   ofDocument: number}} `places` is where each node of the document is among them, -1 for those without
 */
function placedNodes(coordinates, notes) {
  const ofDocument = coordinates.length / 3;
  const places = new Int32Array(ofDocument).fill(-1);
  let count = 0;
  for (let node = 0; node < ofDocument; ++node) {
    if (isPlaced(coordinates, node)) {
      places[node] = count++;
    }
  }
  if (count === ofDocument) {
    return { count, coordinates, numbers: null, places: null, ofDocument };
  }
  const without = ofDocument - count;
  notes.add(`${counted(without, 'node')} ${without === 1 ? 'is' : 'are'} not drawn: ` +
    'the coordinates are not finite.');
  const numbers = new Int32Array(count);
  const kept = new Float64Array(3 * count);
  places.forEach((place, node) => {
    if (place >= 0) {
      numbers[place] = node;
      kept.set(coordinates.subarray(3 * node, 3 * node + 3), 3 * place);
    }
  });
  return { count, coordinates: kept, numbers, places, ofDocument };
}

/** The box of all nodes that have a place; null without any. */
export function boundingBoxOf({ count, coordinates }, dimension) {
  const minimum = new Array(dimension).fill(Infinity);
  const maximum = new Array(dimension).fill(-Infinity);
  for (let node = 0; node < count; ++node) {
    for (let axis = 0; axis < dimension; ++axis) {
      minimum[axis] = Math.min(minimum[axis], coordinates[3 * node + axis]);
      maximum[axis] = Math.max(maximum[axis], coordinates[3 * node + axis]);
    }
  }
  return count ? { minimum, maximum } : null;
}

/** The nodes of a document, as placedNodes() gives them. */
export function readNodes(file, root, dimension, notes) {
  const path = `${root}/Nodes`;
  const isThere = file.namesIn(path)?.includes('coordinates');
  if (!isThere) {
    notes.add('The document has no nodes.');
    return placedNodes(new Float64Array(0), notes);
  }
  const coordinates = attempt(notes, `${path}/coordinates`,
    () => readCoordinates(file, `${path}/coordinates`, dimension));
  return placedNodes(coordinates ?? new Float64Array(0), notes);
}

/** A list with as many values as there are groups; missing ones are zeros. */
function readPerGroup(file, path, groups) {
  const { values } = file.integers(path);
  if (values.length > groups) {
    throw new Unreadable('has more values than there are type groups');
  }
  return (group) => values[group] ?? 0;
}

/** The type groups that have cells, neighbours of one form as one. */
function readForms(file, path) {
  const types = file.integers(`${path}/element_types`).values;
  const countOf = readPerGroup(file, `${path}/number_of_elements_by_type`, types.length);
  const nodesOf = readPerGroup(file, `${path}/number_of_nodes_by_element`, types.length);
  const forms = [];
  let begin = 0;
  for (let group = 0; group < types.length; ++group) {
    const form = { type: types[group], nodesPerCell: nodesOf(group), count: countOf(group), begin };
    if (form.count < 0 || form.nodesPerCell < 0) {
      throw new Unreadable('has a negative count');
    }
    begin += form.count * form.nodesPerCell;
    const last = forms.at(-1);
    if (last && last.type === form.type && last.nodesPerCell === form.nodesPerCell) {
      last.count += form.count;
    } else if (form.count > 0) {
      forms.push(form);
    }
  }
  if (begin > MOST_COUNT || forms.reduce((sum, { count }) => sum + count, 0) > MOST_COUNT) {
    throw new Unreadable('has more cells than the format can say');
  }
  return forms;
}

function isDrawable(entity, shape, nodesPerCell) {
  if (entity === 'edges') {
    return shape === 'line' && outlineOf(shape, nodesPerCell).length > 0;
  }
  return facesOf(shape, nodesPerCell).length > 0 && (entity === 'elements' || !isSolid(shape));
}

/** Counts why a cell cannot be drawn; true for one that can. */
function look(indices, begin, size, nodes, undrawn) {
  for (let i = begin; i < begin + size; ++i) {
    if (indices[i] < 0 || indices[i] >= nodes.ofDocument) {
      ++undrawn.withoutNode;
      return false;
    }
  }
  for (let i = begin; nodes.places && i < begin + size; ++i) {
    if (nodes.places[indices[i]] < 0) {
      ++undrawn.withoutPlace;
      return false;
    }
  }
  return true;
}

/** The cells of one form that can be drawn, by their numbers among those of the form. */
function drawnOf(form, shape, indices, nodes, undrawn) {
  const stored = indices.subarray(form.begin, form.begin + form.count * form.nodesPerCell);
  const whole = Math.floor(stored.length / form.nodesPerCell);
  const kept = new Int32Array(whole);
  let count = 0;
  for (let cell = 0; cell < whole; ++cell) {
    if (look(stored, cell * form.nodesPerCell, form.nodesPerCell, nodes, undrawn)) {
      kept[count++] = cell;
    }
  }
  undrawn.ofNumberAlone += form.count - whole;
  const group = { shape, nodesPerCell: form.nodesPerCell, count, nodes: stored };
  if (count < form.count || nodes.places) {
    group.nodes = new Int32Array(count * form.nodesPerCell);
    for (let i = 0; i < group.nodes.length; ++i) {
      const cell = Math.floor(i / form.nodesPerCell);
      const node = stored[kept[cell] * form.nodesPerCell + (i - cell * form.nodesPerCell)];
      group.nodes[i] = nodes.places ? nodes.places[node] : node;
    }
  }
  return { group, kept: kept.subarray(0, count) };
}

function tellUndrawn(entity, undrawn, notes) {
  const reasons = [
    [undrawn.withoutNode, 'with a node index that is out of range'],
    [undrawn.withoutPlace, 'with a node whose coordinates are not finite'],
    [undrawn.ofOtherShape, 'of a shape that has no picture here'],
    [undrawn.ofNumberAlone, 'of which the number alone is known'],
  ].filter(([count]) => count > 0);
  const count = reasons.reduce((sum, [some]) => sum + some, 0);
  if (count) {
    notes.add(`${counted(count, entity.slice(0, -1))} ${count === 1 ? 'is' : 'are'} not drawn: ` +
      `${reasons.map(([some, why]) => `${some.toLocaleString('en-US')} ${why}`).join(', ')}.`);
  }
}

/** The forms that can be drawn, as groups, and the numbers of their cells in the document. */
function drawnGroups(entity, forms, indices, nodes, notes) {
  const undrawn = { withoutNode: 0, withoutPlace: 0, ofOtherShape: 0, ofNumberAlone: 0 };
  const drawn = [];
  let first = 0;
  for (const form of forms) {
    const shape = SHAPES[form.type] ?? 'unknown';
    if (form.nodesPerCell === 0) {
      undrawn.ofNumberAlone += form.count;
    } else if (isDrawable(entity, shape, form.nodesPerCell)) {
      drawn.push({ first, ...drawnOf(form, shape, indices, nodes, undrawn) });
    } else {
      undrawn.ofOtherShape += form.count;
    }
    first += form.count;
  }
  tellUndrawn(entity, undrawn, notes);
  return { drawn: drawn.filter(({ group }) => group.count > 0), total: first };
}

/** The number in the document of each cell; null for 0, 1, 2, ... */
function numbersOf(drawn) {
  const numbers = new Int32Array(drawn.reduce((sum, { kept }) => sum + kept.length, 0));
  let at = 0;
  for (const { first, kept } of drawn) {
    kept.forEach((cell) => {
      numbers[at++] = first + cell;
    });
  }
  return at === 0 || numbers[at - 1] === at - 1 ? null : numbers;
}

function shapesOf(entity, forms) {
  const shapes = new Map();
  for (const { type, nodesPerCell, count } of forms) {
    const shape = SHAPES[type] ?? 'unknown';
    const key = `${shape} ${nodesPerCell}`;
    const known = shapes.get(key) ?? { entity, shape, nodesPerCell, count: 0 };
    known.count += count;
    shapes.set(key, known);
  }
  return [...shapes.values()];
}

/**
 * The cells of one kind; null where there are none.
 * @returns {{cells: object, count: number, total: number, shapes: object[]}|null} those that can be drawn and
 *   how many these are; how many the document has, and of which forms
 */
export function readCells(file, root, entity, nodes, notes) {
  const path = `${root}/${GROUPS[entity]}`;
  const names = file.namesIn(path);
  if (!names && file.namesIn(root).includes(GROUPS[entity])) {
    notes.add(`${path} is no group that can be opened, and is left out.`);
  }
  if (!names?.includes('element_types')) {
    return null;
  }
  const forms = attempt(notes, path, () => readForms(file, path)) ?? [];
  const indices = forms.length ? attempt(notes, `${path}/connectivities`,
    () => file.integers(`${path}/connectivities`).values) : undefined;
  const { drawn, total } = drawnGroups(entity, forms, indices ?? new Int32Array(0), nodes, notes);
  const cells = {
    entity,
    isSkin: false,
    groups: drawn.map(({ group }) => group),
    numbers: numbersOf(drawn),
    outer: null,
    fields: [],
  };
  const count = cells.groups.reduce((sum, group) => sum + group.count, 0);
  return { cells, count, total, shapes: shapesOf(entity, forms) };
}
