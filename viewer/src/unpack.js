// The data of a page, as the writer packed it: JSON, and arrays in one deflated stream of bytes.

const WIDTHS = { uint8: 1, int32: 4, float32: 4, float64: 8, quantized: 4 };
const TYPES = { uint8: Uint8Array, int32: Int32Array, float32: Float32Array, float64: Float64Array };

function bytesOfBase64(text) {
  if (Uint8Array.fromBase64) {
    return Uint8Array.fromBase64(text);
  }
  const characters = atob(text);
  const bytes = new Uint8Array(characters.length);
  for (let i = 0; i < bytes.length; ++i) {
    bytes[i] = characters.charCodeAt(i);
  }
  return bytes;
}

async function inflated(bytes) {
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('deflate'));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** Puts the bytes of values together that lie in planes: all first bytes, all second ones. */
function joined(bytes, { at, count, type }) {
  const width = WIDTHS[type];
  const values = new Uint8Array(count * width);
  for (let byte = 0; byte < width; ++byte) {
    const begin = at + byte * count;
    for (let i = 0, to = byte; i < count; ++i, to += width) {
      values[to] = bytes[begin + i];
    }
  }
  return values.buffer;
}

/** Adds up differences to the value `stride` before each, of which small ones have small codes. */
function summed(codes, stride) {
  const values = new Int32Array(codes.length);
  for (let i = 0; i < values.length; ++i) {
    const difference = (codes[i] >>> 1) ^ -(codes[i] & 1);
    values[i] = difference + (i < stride ? 0 : values[i - stride]);
  }
  return values;
}

function unquantized(values, { stride, minimum, step }) {
  const numbers = new Float64Array(values.length);
  for (let i = 0; i < numbers.length; ++i) {
    numbers[i] = minimum[i % stride] + (values[i] >>> 0) * step[i % stride];
  }
  return numbers;
}

/**
 * Decodes one array.
 * @param {Uint8Array} bytes the inflated stream
 * @param {{at: number, count: number, type: string, stride?: number}} array
 */
export function decoded(bytes, array) {
  if (array.at + array.count * WIDTHS[array.type] > bytes.length) {
    throw new Error('The page is damaged: its arrays are shorter than they say.');
  }
  switch (array.type) {
    case 'uint8':
      return bytes.slice(array.at, array.at + array.count);
    case 'int32':
      return summed(new Uint32Array(joined(bytes, array)), array.stride);
    case 'quantized':
      return unquantized(summed(new Uint32Array(joined(bytes, array)), array.stride), array);
    default:
      return new TYPES[array.type](joined(bytes, array));
  }
}

/** Coordinates with three components, whatever the dimension. */
function inSpace(coordinates, count) {
  const dimension = count ? coordinates.length / count : 3;
  if (dimension === 3) {
    return coordinates;
  }
  const spatial = new Float64Array(3 * count);
  for (let node = 0; node < count; ++node) {
    for (let axis = 0; axis < dimension; ++axis) {
      spatial[3 * node + axis] = coordinates[dimension * node + axis];
    }
  }
  return spatial;
}

function decodeMesh(bytes, mesh) {
  const take = (array) => (array ? decoded(bytes, array) : null);
  const fields = (list) => list.map((field) => ({ ...field, values: take(field.values) }));
  return {
    nodes: {
      count: mesh.nodes.count,
      coordinates: inSpace(take(mesh.nodes.coordinates), mesh.nodes.count),
      numbers: take(mesh.nodes.numbers),
      fields: fields(mesh.nodes.fields),
    },
    cells: mesh.cells.map((cells) => ({
      ...cells,
      groups: cells.groups.map((group) => ({ ...group, nodes: take(group.nodes) })),
      numbers: take(cells.numbers),
      outer: take(cells.outer),
      fields: fields(cells.fields),
    })),
  };
}

/**
 * Unpacks a report.
 * @param {string} json the text of the element `report`
 * @param {string} arrays the text of the element `arrays`
 * @returns {Promise<object>} as README.md has it, with typed arrays
 */
export async function unpack(json, arrays) {
  const report = JSON.parse(json);
  const bytes = await inflated(bytesOfBase64(arrays.trim()));
  for (const document of report.documents) {
    document.mesh = decodeMesh(bytes, document.mesh);
  }
  return report;
}
