// Numbers as people read them.

/** @param {number|string} value */
export function shown(value) {
  if (typeof value !== 'number') {
    return String(value);
  }
  if (Number.isInteger(value) && Math.abs(value) < 1e15) {
    return String(value);
  }
  const size = Math.abs(value);
  if (size !== 0 && (size < 1e-4 || size >= 1e7)) {
    return value.toExponential(4).replace(/\.?0+e/, 'e').replace('e+', 'e');
  }
  return String(Number(value.toPrecision(6)));
}

/** A number as far as it means something in a range of numbers: what is left of 0 by rounding is 0. */
export function shownWithin(value, width) {
  return shown(Math.abs(value) < 1e-6 * width ? 0 : Number(value.toPrecision(4)));
}

export function counted(count) {
  return count.toLocaleString('en-US');
}

const MORE = { tetrahedron: 'tetrahedra', hexahedron: 'hexahedra' };

export function plural(shape) {
  return MORE[shape] ?? `${shape}s`;
}

export function bytesShown(bytes) {
  const units = ['B', 'KB', 'MB', 'GB', 'TB'];
  let size = bytes;
  let unit = 0;
  while (size >= 1000 && unit < units.length - 1) {
    size /= 1000;
    ++unit;
  }
  return `${unit ? size.toPrecision(4).replace(/\.?0+$/, '') : size} ${units[unit]}`;
}
