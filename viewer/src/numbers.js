// Numbers as people read them.

/**
 * @param {number|string} value
 * @param {number} digits that are significant; 6 are what a person compares, 9 what a page carries
 */
export function shown(value, digits = 6) {
  if (typeof value !== 'number') {
    return String(value);
  }
  if (Number.isInteger(value) && Math.abs(value) < 1e15) {
    return String(value);
  }
  const size = Math.abs(value);
  if (size !== 0 && (size < 1e-4 || size >= 1e10)) {
    return value.toExponential(Math.min(digits, 17) - 1).replace(/\.?0+e/, 'e').replace('e+', 'e');
  }
  return String(Number(value.toPrecision(digits)));
}

/** A number with as many digits as tell it from others of a range; what is left of 0 by rounding is 0. */
export function shownWithin(value, width) {
  if (Math.abs(value) < 1e-6 * width) {
    return '0';
  }
  const lost = width > 0 ? Math.log10(Math.abs(value) / width) : 0;
  return shown(value, Math.min(Math.max(Math.ceil(lost) + 4, 4), 15));
}

export function counted(count) {
  return count.toLocaleString('en-US');
}

const MORE = { tetrahedron: 'tetrahedra', hexahedron: 'hexahedra' };

/** Such as "1 tetrahedron" or "1,200 tetrahedra". */
export function countedShapes(count, shape, adjective = '') {
  return `${counted(count)} ${adjective}${count === 1 ? shape : MORE[shape] ?? `${shape}s`}`;
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
