// Reads an exchange file of format 1.4 in the browser, as a report of what it holds. Nothing in the file is
// trusted: what cannot be read or drawn is left out, and the notes of the document tell it.
import { GROUPS, boundingBoxOf, readCells, readNodes } from './exchange_mesh.js';
import { Notes, attempt, named } from './exchange_notes.js';
import {
  addMeasures, fieldsOf, readAttributes, readParameters, readVectorParameters,
} from './exchange_values.js';
import { Hdf5File, ReaderFailed } from './hdf5_file.js';

const SIGNATURE = [0x89, 0x48, 0x44, 0x46, 0x0d, 0x0a, 0x1a, 0x0a];
const PRESENT_FORMAT = 1.4;
const ROOTS = { output: '/OrvOutput', input: '/OrvInput' };

function readIdentification(file) {
  const module = file.text('/', 'ORVML_MODULE_NAME') ?? '';
  return {
    module: module === 'OrvML_OCTREE_MESHER' ? 'ORVML_OCTREE_MESHER' : module, // an old spelling
    moduleFormatVersion: file.text('/', 'ORVML_MODULE_FORMAT_VERSION') ?? '',
    creator: file.text('/', 'ORVML_IO_CREATOR') ?? '',
  };
}

function readMesh(file, root, dimension, notes) {
  const nodes = readNodes(file, root, dimension, notes);
  const parts = Object.keys(GROUPS).map((entity) => readCells(file, root, entity, nodes, notes))
    .filter((part) => part?.total > 0);
  const attributes = readAttributes(file, root, 'nodes', notes);
  const nodeFields = fieldsOf(attributes, nodes.ofDocument, nodes, notes);
  for (const { cells, total, count } of parts) {
    const own = readAttributes(file, root, cells.entity, notes);
    cells.fields = fieldsOf(own, total, { numbers: cells.numbers, count }, notes);
    attributes.push(...own);
  }
  const drawn = parts.filter(({ cells }) => cells.groups.length > 0);
  return {
    nodes,
    parts,
    attributes,
    histograms: drawn.flatMap((part) => addMeasures(part, nodes.coordinates)),
    mesh: {
      nodes: {
        count: nodes.count, coordinates: nodes.coordinates, numbers: nodes.numbers, fields: nodeFields,
      },
      cells: drawn.map(({ cells }) => cells),
    },
  };
}

/** What is in a group of the root; a text that says why where there is no document. */
function readDocument(file, kind, facts) {
  const root = ROOTS[kind];
  const notes = new Notes();
  const [dimension, ...others] = attempt(notes, `${root}/dimension`,
    () => file.integers(`${root}/dimension`).values) ?? [];
  if (others.length || (dimension !== 2 && dimension !== 3)) {
    return `The ${kind} document is left out: its dimension is neither 2 nor 3.`;
  }
  const { nodes, parts, attributes, histograms, mesh } = readMesh(file, root, dimension, notes);
  const totalOf = (entity) => parts.find(({ cells }) => cells.entity === entity)?.total ?? 0;
  const document = {
    ...facts,
    kind,
    dimension,
    identification: readIdentification(file),
    fingerprint: null,
    counts: {
      nodes: nodes.ofDocument,
      edges: totalOf('edges'),
      faces: totalOf('faces'),
      elements: totalOf('elements'),
    },
    shapes: parts.flatMap(({ shapes }) => shapes),
    boundingBox: boundingBoxOf(nodes, dimension),
    parameters: readParameters(file, root, notes),
    vectorParameters: readVectorParameters(file, root, notes),
    attributes: attributes.map(({ values, ...attribute }) => attribute),
    findings: null,
    histograms,
    mesh,
  };
  return { ...document, notes: notes.texts };
}

function readReport(file, facts, name, groups) {
  const read = Object.keys(ROOTS).filter((kind) => groups.includes(ROOTS[kind].slice(1)))
    .map((kind) => readDocument(file, kind, facts));
  const documents = read.filter((document) => typeof document !== 'string');
  const missing = read.filter((document) => typeof document === 'string');
  if (documents.length === 0) {
    throw new Error(missing[0] ?? `${name} is an exchange file without a document.`);
  }
  documents.forEach((document) => document.notes.unshift(...missing));
  return { format: 1, title: facts.name, madeBy: 'the viewer', documents, differences: null };
}

/** Throws for files that are no exchange files, or have another layout; gives the version's text. */
function readVersion(file, name) {
  if (file.text('/', 'FORMAT') !== 'ORVMESHLIBRARY') {
    throw new Error(`${name} is an HDF5 file, but no exchange file.`);
  }
  const version = file.text('/', 'ORVMESHLIBRARY_FORMAT_VERSION') ?? '';
  if (!(parseFloat(version) >= PRESENT_FORMAT)) {
    const format = version ? `the format ${named(version)}` : 'a format without a version';
    throw new Error(`${name} has ${format}, which is older than what is read here; ` +
      '"orvml upgrade old.h5 new.h5" writes it in the present one.');
  }
  return version;
}

/** Whether the file begins as HDF5 files do, behind a block of the user's or not. */
function hasSignature(bytes) {
  for (let at = 0; at + SIGNATURE.length <= bytes.length; at = at ? 2 * at : 512) {
    if (SIGNATURE.every((byte, i) => bytes[at + i] === byte)) {
      return true;
    }
  }
  return false;
}

function damaged(name) {
  return `${name} is damaged or cut off; "orvml rescue damaged.h5 sound.h5" saves what can be read of it.`;
}

async function openFile(bytes, name) {
  if (!hasSignature(bytes)) {
    throw new Error(`${name} is ${bytes.length ? 'no HDF5 file, and so no exchange file' : 'empty'}.`);
  }
  const file = await Hdf5File.open(bytes);
  if (!file) {
    throw new Error(damaged(name));
  }
  return file;
}

/**
 * Reads an exchange file of format 1.4.
 * @param {Uint8Array} bytes of the file; not to be changed meanwhile
 * @param {string} name of the file, for people
 * @returns {Promise<object>} a report as README.md has it, with typed arrays: the output first of two
 * @throws {Error} a sentence that says why the file cannot be shown, and what helps
 */
export async function readExchange(bytes, name) {
  const shownName = named(name);
  let file;
  try {
    file = await openFile(bytes, shownName);
    const formatVersion = readVersion(file, shownName);
    return readReport(file, { name, file: { bytes: bytes.length, formatVersion } }, shownName,
      file.namesIn('/') ?? []);
  } catch (error) {
    if (error instanceof ReaderFailed) {
      throw new Error(`${damaged(shownName)} Load this page again before another file is opened.`,
        { cause: error });
    }
    throw error;
  } finally {
    file?.close();
  }
}
