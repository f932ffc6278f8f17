// Attributes, measures and parameters of a document in an exchange file.
import { GROUPS } from './exchange_mesh.js';
import { attempt, bounded, counted, named } from './exchange_notes.js';
import { Unreadable } from './hdf5_file.js';
import { MEASURES, histogramOf, measureCells } from './quality.js';

const SIZES = { edges: 'length', faces: 'area', elements: 'volume' };
const BARS = 40;
const SHOWN_VALUES = 100;

/** The values of what is drawn: of some numbers, or of the first ones. */
function chosen(values, { numbers, count }) {
  return numbers ? values.constructor.from(numbers, (number) => values[number]) : values.slice(0, count);
}

function rangeOf(values) {
  let minimum = Infinity;
  let maximum = -Infinity;
  for (let i = 0; i < values.length; ++i) {
    if (Number.isFinite(values[i])) {
      minimum = Math.min(minimum, values[i]);
      maximum = Math.max(maximum, values[i]);
    }
  }
  return minimum <= maximum ? { minimum, maximum } : { minimum: null, maximum: null };
}

function typeOf(values) {
  return values instanceof Int32Array ? 'int' : 'double';
}

/** The names of the vectors in a group, which are datasets of numbers, and of what cannot be named. */
function vectorsIn(file, path, notes) {
  return bounded(notes, path, file.namesIn(path) ?? []).filter((name) => {
    const metadata = file.metadata(`${path}/${name}`);
    return metadata ? file.isNumeric(metadata) : !file.hasLink(`${path}/${name}`);
  });
}

function readAttribute(file, path, name, entity) {
  const { shape, values } = file.numbers(path);
  if (shape.length === 0 || shape[0] !== values.length) {
    throw new Unreadable('is no list of values');
  }
  return {
    entity,
    name,
    type: typeOf(values),
    size: values.length,
    mustBeTransmitted: file.integer(path, 'MustBeTransmitted') === 1,
    ...rangeOf(values),
    values,
  };
}

/** The attributes of nodes or cells, with all of their values. */
export function readAttributes(file, root, entity, notes) {
  const path = `${root}/${GROUPS[entity] ?? 'Nodes'}/Attributes`;
  const attributes = [];
  for (const name of vectorsIn(file, path, notes)) {
    const whole = `${path}/${name}`;
    attributes.push(attempt(notes, whole, () => readAttribute(file, whole, name, entity)));
  }
  return attributes.filter((attribute) => attribute !== undefined);
}

/**
 * Attributes with a value for each node or cell, as fields of those that are drawn.
 * @param {{numbers: Int32Array|null, count: number}} drawn how many, and which ones unless they are the first
 */
export function fieldsOf(attributes, ofDocument, drawn, notes) {
  const fields = [];
  for (const { entity, name, type, mustBeTransmitted, values } of attributes) {
    if (values.length === ofDocument) {
      fields.push({ name, role: 'attribute', type, mustBeTransmitted, values: chosen(values, drawn) });
    } else {
      notes.add(`The attribute ${named(name)} has ${counted(values.length, 'value')} for ` +
        `${counted(ofDocument, entity.slice(0, -1))} and is not shown with them.`);
    }
  }
  return fields;
}

/** One value for each drawn cell. */
function measured({ groups }, coordinates, measure) {
  const values = new Float32Array(groups.reduce((sum, { count }) => sum + count, 0));
  let at = 0;
  for (const { shape, nodesPerCell, count, nodes } of groups) {
    values.set(measureCells(coordinates, shape, nodesPerCell, nodes, measure), at);
    at += count;
  }
  return values;
}

/** Adds the measures of cells to their fields, and gives the histograms. */
export function addMeasures({ cells, total }, coordinates) {
  const histograms = [];
  for (const measure of cells.entity === 'edges' ? ['size'] : MEASURES) {
    const name = measure === 'size' ? SIZES[cells.entity] : measure;
    const values = measured(cells, coordinates, measure);
    const histogram = histogramOf(values, BARS, measure === 'aspect ratio');
    if (histogram.without < histogram.cells) {
      cells.fields.push({ name, role: 'measure', type: 'double', mustBeTransmitted: false, values });
      histograms.push({
        entity: cells.entity,
        measure: name,
        unit: measure.endsWith('angle') ? 'degrees' : '',
        ...histogram,
        cells: total,
        without: total - values.length + histogram.without,
      });
    }
  }
  return histograms;
}

/** A number as a report holds it. */
function reported(value) {
  if (Number.isFinite(value)) {
    return value;
  }
  return Number.isNaN(value) ? 'nan' : value > 0 ? 'inf' : '-inf';
}

/** The scalar parameters in the order of their names. */
export function readParameters(file, root, notes) {
  const path = `${root}/parameters`;
  if (!file.namesIn(root).includes('parameters')) {
    return [];
  }
  const records = attempt(notes, path, () => file.records(path)) ?? [];
  // The last of several values for a name counts.
  const values = new Map(records.map(({ name, value }) => [name, value]));
  return bounded(notes, path, [...values.keys()].sort())
    .map((name) => ({ name, value: reported(values.get(name)) }));
}

/** The vector parameters with their first values. */
export function readVectorParameters(file, root, notes) {
  const path = `${root}/ParametersVector`;
  const parameters = [];
  for (const name of vectorsIn(file, path, notes)) {
    const whole = `${path}/${name}`;
    const found = attempt(notes, whole, () => file.beginning(whole, SHOWN_VALUES));
    if (found) {
      parameters.push({
        name, type: typeOf(found.values), size: found.size, values: Array.from(found.values, reported),
      });
    }
  }
  return parameters;
}
