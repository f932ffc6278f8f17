import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';

import { bundled, temporaryFolder } from './bundled.mjs';

const PYTHON = process.env.ORVML_VIEWER_PYTHON ?? '/usr/bin/python3'; // one that has h5py
const folder = temporaryFolder();
execFileSync(PYTHON, [fileURLToPath(new URL('make_exchange_files.py', import.meta.url)), folder]);
const load = await bundled('exchange_file');
const { readExchange } = await load();

function bytesOf(name) {
  return new Uint8Array(readFileSync(join(folder, `${name}.h5`)));
}

async function read(name) {
  return readExchange(bytesOf(name), `${name}.h5`);
}

async function output(name) {
  return (await read(name)).documents[0];
}

function cellsOf(document, entity) {
  return document.mesh.cells.find((cells) => cells.entity === entity);
}

function fieldOf(part, name) {
  return part.fields.find((field) => field.name === name);
}

function plain(values) {
  return values && [...values];
}

/** Groups as "shape [nodes of its cells]". */
function groupsOf(cells) {
  return cells.groups.map(({ shape, nodes }) => `${shape} [${nodes}]`);
}

test('the output comes before the input, each with what the file says of both', async () => {
  const { format, title, documents, differences } = await read('complete');

  assert.deepEqual({ format, title, differences }, { format: 1, title: 'complete.h5', differences: null });
  assert.deepEqual(documents.map(({ kind, dimension }) => [kind, dimension]), [['output', 3], ['input', 2]]);
  for (const document of documents) {
    assert.equal(document.name, 'complete.h5');
    assert.deepEqual(document.file, { bytes: bytesOf('complete').length, formatVersion: '1.4' });
    assert.deepEqual(document.identification,
      { module: 'ORVML_OCTREE_MESHER', moduleFormatVersion: '2.0', creator: 'Prüfer' });
    assert.deepEqual([document.findings, document.fingerprint, document.notes], [null, null, []]);
  }
});

test('a document has its counts, its shapes and its box', async () => {
  const document = await output('complete');

  assert.deepEqual(document.counts, { nodes: 9, edges: 2, faces: 3, elements: 2 });
  assert.deepEqual(document.shapes, [
    { entity: 'edges', shape: 'line', nodesPerCell: 2, count: 2 },
    { entity: 'faces', shape: 'quadrilateral', nodesPerCell: 4, count: 1 },
    { entity: 'faces', shape: 'triangle', nodesPerCell: 3, count: 2 },
    { entity: 'elements', shape: 'hexahedron', nodesPerCell: 8, count: 1 },
    { entity: 'elements', shape: 'pyramid', nodesPerCell: 5, count: 1 },
  ]);
  assert.deepEqual(document.boundingBox, { minimum: [0, 0, 0], maximum: [1, 1, 2] });
});

test('a mesh has typed arrays of its nodes and cells', async () => {
  const { mesh } = await output('complete');
  const faces = mesh.cells.find(({ entity }) => entity === 'faces');

  assert.ok(mesh.nodes.coordinates instanceof Float64Array);
  assert.deepEqual(plain(mesh.nodes.coordinates.subarray(24)), [0.5, 0.5, 2]);
  assert.deepEqual([mesh.nodes.count, mesh.nodes.numbers], [9, null]);
  assert.deepEqual(mesh.cells.map(({ entity }) => entity), ['edges', 'faces', 'elements']);
  assert.ok(faces.groups.every(({ nodes }) => nodes instanceof Int32Array));
  assert.deepEqual(groupsOf(faces), ['quadrilateral [0,3,2,1]', 'triangle [4,5,8,5,6,8]']);
  assert.deepEqual([faces.isSkin, faces.numbers, faces.outer], [false, null, null]);
});

test('a mesh of the plane gets zeros as its third coordinates, and its box has two', async () => {
  const document = (await read('complete')).documents[1];

  assert.deepEqual(plain(document.mesh.nodes.coordinates), [0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0]);
  assert.deepEqual(document.boundingBox, { minimum: [0, 0], maximum: [1, 1] });
});

test('attributes are told, and are fields of what has them', async () => {
  const document = await output('complete');
  const heat = fieldOf(document.mesh.nodes, 'heat');
  const colour = fieldOf(cellsOf(document, 'faces'), 'colour');

  assert.deepEqual(document.attributes, [
    {
      entity: 'nodes', name: 'heat', type: 'double', size: 9, mustBeTransmitted: true, minimum: 0, maximum: 4,
    },
    {
      entity: 'faces', name: 'colour', type: 'int', size: 3, mustBeTransmitted: false, minimum: -8,
      maximum: 9,
    },
  ]);
  assert.deepEqual([heat.role, heat.type, heat.mustBeTransmitted, plain(heat.values)],
    ['attribute', 'double', true, [0, 0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4]]);
  assert.ok(colour.values instanceof Int32Array);
  assert.deepEqual(plain(colour.values), [7, -8, 9]);
});

test('parameters are sorted, the last of two counts, and no number is a text', async () => {
  const { parameters, vectorParameters } = await output('complete');

  assert.deepEqual(parameters,
    [{ name: 'limit', value: 'inf' }, { name: 'none', value: 'nan' }, { name: 'size', value: 0.25 }]);
  assert.deepEqual(vectorParameters, [
    { name: 'layers', type: 'int', size: 150, values: Array.from({ length: 100 }, (_, i) => i) },
    { name: 'weights', type: 'double', size: 2, values: [0.5, '-inf'] },
  ]);
});

test('cells are measured', async () => {
  const document = await output('complete');
  const faces = cellsOf(document, 'faces');
  const elements = cellsOf(document, 'elements');
  const names = (part) => part.fields.filter(({ role }) => role === 'measure').map(({ name }) => name);

  assert.deepEqual(names(cellsOf(document, 'edges')), ['length']);
  assert.deepEqual(names(faces),
    ['scaled Jacobian', 'aspect ratio', 'smallest angle', 'largest angle', 'area']);
  assert.deepEqual(names(elements),
    ['scaled Jacobian', 'aspect ratio', 'smallest angle', 'largest angle', 'volume']);
  assert.deepEqual(plain(fieldOf(elements, 'volume').values), [1, Math.fround(1 / 3)]);
});

test('measures have histograms', async () => {
  const { histograms } = await output('complete');
  const angles = histograms.find(({ entity, measure }) => entity === 'faces' && measure === 'largest angle');

  assert.deepEqual(histograms.map(({ entity }) => entity),
    ['edges', ...new Array(5).fill('faces'), ...new Array(5).fill('elements')]);
  assert.deepEqual([angles.unit, angles.cells, angles.without, angles.counts.length], ['degrees', 3, 0, 40]);
  assert.equal(angles.maximum, 90);
});

test('datasets of other types and orders of bytes, chunked and compressed, say the same', async () => {
  const [expected, found] = await Promise.all([output('complete'), output('stored otherwise')]);

  assert.deepEqual(found.mesh.cells, expected.mesh.cells);
  assert.deepEqual(found.mesh.nodes.coordinates, expected.mesh.nodes.coordinates);
  assert.deepEqual(fieldOf(found.mesh.nodes, 'heat').values, fieldOf(expected.mesh.nodes, 'heat').values);
  assert.deepEqual(found.parameters, expected.parameters);
  assert.deepEqual(found.vectorParameters, expected.vectorParameters);
  assert.deepEqual(found.notes, []);
});

test('files that are read at the same time do not disturb each other', async () => {
  const documents = await Promise.all(
    ['complete', 'names', 'many attributes', 'fewer values'].map((name) => output(name)));

  assert.deepEqual(documents.map(({ attributes }) => attributes.length), [2, 10, 1001, 2]);
});

for (const [name, message] of [
  ['older', '"older.h5" has the format "1.3", which is older than what is read here; ' +
    '"orvml upgrade old.h5 new.h5" writes it in the present one.'],
  ['without version', '"without version.h5" has a format without a version, which is older than what is ' +
    'read here; "orvml upgrade old.h5 new.h5" writes it in the present one.'],
  ['foreign', '"foreign.h5" is an HDF5 file, but no exchange file.'],
  ['other format', '"other format.h5" is an HDF5 file, but no exchange file.'],
  ['without document', '"without document.h5" is an exchange file without a document.'],
  ['dimension of 7', 'The output document is left out: its dimension is neither 2 nor 3.'],
  ['dimension as text', 'The output document is left out: its dimension is neither 2 nor 3.'],
]) {
  test(`a file that is ${name} is refused with a sentence`, async () => {
    await assert.rejects(read(name), { message });
  });
}

for (const [what, bytes, message] of [
  ['no bytes', new Uint8Array(0), '"a\u2407.h5" is empty.'],
  ['a text', new TextEncoder().encode('solid part'.repeat(100)),
    '"a\u2407.h5" is no HDF5 file, and so no exchange file.'],
]) {
  test(`${what} are no exchange file`, async () => {
    await assert.rejects(readExchange(bytes, 'a\x07.h5'), { message });
  });
}

test('a file that is cut off anywhere is refused with a sentence', async () => {
  const whole = bytesOf('complete');
  for (const share of [0.001, 0.01, 0.1, 0.5, 0.9, 0.999]) {
    await assert.rejects(readExchange(whole.slice(0, Math.max(8, whole.length * share)), 'cut.h5'),
      { message: '"cut.h5" is damaged or cut off; ' +
        '"orvml rescue damaged.h5 sound.h5" saves what can be read of it.' });
  }
});

test('a file is read after one that was refused, and as often as is wanted', async () => {
  for (let i = 0; i < 50; ++i) {
    await assert.rejects(readExchange(bytesOf('complete').slice(0, 9000), 'cut.h5'));
    assert.equal((await output('complete')).counts.nodes, 9);
  }
});

const DRAWN = {
  'without nodes': [[], ['The document has no nodes.']],
  'coordinates of integers': [[],
    ['/OrvOutput/Nodes/coordinates holds no floating-point numbers, and is left out.']],
  'coordinates with four columns': [[],
    ['/OrvOutput/Nodes/coordinates has other extents than nodes and dimension, and is left out.']],
  'coordinates with one column': [['edges', 'faces', 'elements'], []],
  'unknown shapes': [['edges', 'faces'],
    ['2 elements are not drawn: 2 of a shape that has no picture here.']],
  'solids as faces': [['edges', 'faces', 'elements'],
    ['1 face is not drawn: 1 of a shape that has no picture here.']],
  'negative counts': [['edges', 'elements'], ['/OrvOutput/Faces has a negative count, and is left out.']],
  'cyclic links': [['edges'], [
    '/OrvOutput/Faces is no group that can be opened, and is left out.',
    '/OrvOutput/parameters is no table of names and numbers, and is left out.',
  ]],
  'wrong types': [[], [
    '/OrvOutput/Edges is no group that can be opened, and is left out.',
    '/OrvOutput/Faces holds no integers, and is left out.',
    '/OrvOutput/Elements/connectivities holds no integers, and is left out.',
    '2 elements are not drawn: 2 of which the number alone is known.',
    '/OrvOutput/Nodes/Attributes/empty has no extents, and is left out.',
    '/OrvOutput/Nodes/Attributes/half holds numbers of 2 bytes, which this page does not read, and is left ' +
      'out.',
    '/OrvOutput/Nodes/Attributes/table is no list of values, and is left out.',
    '/OrvOutput/parameters is no table of names and numbers, and is left out.',
  ]],
  claims: [['elements'], [
    '/OrvOutput/Edges claims more values than a file of this size holds, and is left out.',
    '/OrvOutput/Faces/connectivities claims more values than a file of this size holds, and is left out.',
    '268,435,455 elements are not drawn: 268,435,455 of which the number alone is known.',
    '/OrvOutput/Nodes/Attributes/chunked claims more values than a file of this size holds, and is left out.',
    '/OrvOutput/Nodes/Attributes/packed claims more values than a file of this size holds, and is left out.',
    '/OrvOutput/Nodes/Attributes/smaller claims more values than a file of this size holds, and is left out.',
    '/OrvOutput/Nodes/Attributes/whole claims more values than a file of this size holds, and is left out.',
  ]],
  'values elsewhere': [['edges', 'faces', 'elements'], [
    '/OrvOutput/Nodes/Attributes/of  dev stdin cannot be read, and is left out.',
    '/OrvOutput/Nodes/Attributes/of  dev urandom cannot be read, and is left out.',
    '/OrvOutput/Nodes/Attributes/of missing.raw cannot be read, and is left out.',
    '/OrvOutput/Nodes/Attributes/virtual takes its values from elsewhere, and is left out.',
  ]],
};

for (const [name, [drawn, notes]] of Object.entries(DRAWN)) {
  test(`of a file with ${name} the rest is shown, and told what is not`, async () => {
    const document = await output(name);

    assert.deepEqual(document.mesh.cells.map(({ entity }) => entity), drawn);
    for (const note of notes) {
      assert.ok(document.notes.includes(note), `"${note}" is not among ${document.notes.join('\n')}`);
    }
  });
}

test('cells at nodes that do not exist are left out, and others keep their numbers and values', async () => {
  const document = await output('indices out of range');
  const faces = cellsOf(document, 'faces');

  assert.deepEqual(groupsOf(faces), ['quadrilateral [0,3,2,1]']);
  assert.deepEqual(plain(fieldOf(faces, 'colour').values), [7]);
  assert.equal(document.counts.faces, 3);
  assert.deepEqual(document.notes, ['2 faces are not drawn: 2 with a node index that is out of range.']);
  const { cells, without } = document.histograms.find(({ measure }) => measure === 'area');
  assert.deepEqual([cells, without], [3, 2]);
});

test('cells of another shape with the same number of nodes are not taken for their neighbours', async () => {
  const document = await output('shapes beside each other');

  assert.deepEqual(groupsOf(cellsOf(document, 'faces')), ['quadrilateral [0,3,2,1]', 'triangle [4,5,8]']);
  assert.deepEqual(document.shapes.filter(({ entity }) => entity === 'faces').map(({ shape }) => shape),
    ['quadrilateral', 'triangle', 'unknown']);
});

test('a document that cannot be shown is told beside the one that can', async () => {
  const { documents } = await read('one of two');

  assert.deepEqual(documents.map(({ kind }) => kind), ['output']);
  assert.deepEqual(documents[0].notes,
    ['The input document is left out: its dimension is neither 2 nor 3.']);
});

test('numbers of cells behind one that is left out are those of the document', async () => {
  const faces = cellsOf(await output('solids as faces'), 'faces');

  assert.deepEqual(plain(faces.numbers), [1, 2]);
  assert.deepEqual(plain(fieldOf(faces, 'colour').values), [-8, 9]);
});

test('nodes whose coordinates are not finite are left out with their cells, and others keep their numbers',
  async () => {
    const document = await output('places that are not finite');
    const { nodes } = document.mesh;

    assert.deepEqual(plain(nodes.numbers), [0, 1, 3, 4, 5, 6, 7]);
    assert.ok(nodes.coordinates.length === 21 && nodes.coordinates.every(Number.isFinite));
    assert.deepEqual(plain(fieldOf(nodes, 'heat').values), [0, 0.5, 1.5, 2, 2.5, 3, 3.5]);
    assert.deepEqual(document.mesh.cells.flatMap(groupsOf), ['line [0,1]']);
    assert.equal(document.counts.nodes, 9);
    assert.deepEqual(document.boundingBox.maximum, [1, 1, 1]);
    assert.deepEqual(document.notes.slice(0, 2), [
      '2 nodes are not drawn: the coordinates are not finite.',
      '1 edge is not drawn: 1 with a node whose coordinates are not finite.',
    ]);
  });

test('indices are those of the nodes that are left', async () => {
  const bytes = bytesOf('places that are not finite');
  const { mesh } = (await readExchange(bytes, 'a.h5')).documents[0];

  for (const { nodes } of mesh.cells.flatMap(({ groups }) => groups)) {
    assert.ok(nodes.every((node) => node >= 0 && node < mesh.nodes.count));
  }
});

test('cells of which the number alone is known take no memory', async () => {
  const document = await output('cells of numbers alone');

  assert.equal(document.counts.faces, 2 ** 31 - 1);
  assert.deepEqual(plain(cellsOf(document, 'faces').numbers), [0, 2 ** 31 - 2]);
  assert.ok(document.notes.includes(
    '2,147,483,645 faces are not drawn: 2,147,483,645 of which the number alone is known.'));
});

test('missing values of cells leave the cells out that need them', async () => {
  const document = await output('fewer values');

  assert.deepEqual(groupsOf(cellsOf(document, 'faces')), ['quadrilateral [0,3,2,1]']);
  assert.deepEqual(groupsOf(cellsOf(document, 'elements')), ['hexahedron [0,1,2,3,4,5,6,7]']);
  assert.deepEqual(document.mesh.nodes.fields, []);
  assert.ok(document.notes.includes(
    'The attribute "heat" has 4 values for 9 nodes and is not shown with them.'));
});

test('integers beyond 32 bits are the nearest that fit', async () => {
  const faces = cellsOf(await output('integers beyond 32 bits'), 'faces');

  assert.deepEqual(plain(fieldOf(faces, 'colour').values), [2147483647, -2147483648, -3]);
});

test('names of any bytes stay as they are, and those that are no text are told', async () => {
  const { attributes, parameters, notes } = await output('names');
  const names = attributes.filter(({ entity }) => entity === 'nodes').map(({ name }) => name);

  assert.deepEqual(names, [' ', '..', '<img src=x onerror=alert(1)>', '__proto__', 'a\x07\x1b[31m', 'heat',
    'n'.repeat(3000), '\u202egnp.exe', '\u202eshort']);
  assert.deepEqual(parameters.map(({ name }) => name), ['', 'x'.repeat(80), '\ufffd<b>']);
  assert.equal(notes.length, 2);
  assert.match(notes[0], /^\/OrvOutput\/Nodes\/Attributes\/.* is no dataset that can be opened, and is left/);
  assert.ok(notes.every((note) => note.isWellFormed?.() ?? true));
});

test('marks that turn the direction of reading do not reach notes', async () => {
  const { notes } = await output('names');

  assert.equal(notes[1],
    'The attribute "⟨U+202E⟩short" has 3 values for 9 nodes and is not shown with them.');
});

test('more attributes and notes than anyone reads are cut short', async () => {
  const { attributes, notes } = await output('many attributes');

  assert.equal(attributes.length, 1001);
  assert.equal(notes.length, 101);
  assert.equal(notes[0],
    'Of the 1,101 objects in /OrvOutput/Nodes/Attributes the first 1000 are read.');
  assert.match(notes[100], /^\d+ more things are left out\.$/);
});

/** Bytes that are changed at a few places, the same ones for the same seed. */
function damaged(bytes, seed) {
  let state = seed;
  const random = (below) => {
    state = (Math.imul(state, 1103515245) + 12345) >>> 0;
    return Math.floor(state / 2 ** 32 * below);
  };
  const changed = bytes.slice();
  for (let i = 0; i < 4; ++i) {
    changed[random(bytes.length)] = [0, 127, 128, 255][random(4)];
  }
  return changed;
}

test('a damaged file gives a report, or an error in a sentence', async () => {
  const bytes = bytesOf('complete');
  let { readExchange: readOne } = await load(1);
  for (let seed = 1; seed <= 400; ++seed) {
    try {
      const { documents } = await readOne(damaged(bytes, seed), 'damaged.h5');
      assert.ok(documents.length >= 1);
    } catch (error) {
      assert.match(error.message, /^("damaged\.h5" |The (in|out)put document ).*\.$/, `seed ${seed}`);
      if (error.message.includes('Load this page again')) {
        ({ readExchange: readOne } = await load(1 + seed));
      }
    }
  }
});
