// Colours of values: a ramp that reads in grey and for the colour-blind, and a palette for a few classes.

/** Viridis by S. van der Walt and N. Smith (CC0), every sixteenth of its steps. */
const RAMP = [
  [68, 1, 84], [72, 26, 108], [71, 47, 125], [65, 68, 135], [57, 86, 140], [49, 104, 142], [42, 120, 142],
  [35, 136, 142], [31, 152, 139], [34, 168, 132], [53, 183, 121], [84, 197, 104], [122, 209, 81],
  [165, 219, 54], [210, 226, 27], [253, 231, 37],
];

/** The palette of P. Tol, "Colour schemes", technical note SRON/EPS/TN/09-002, 2021: bright and muted. */
const PALETTE = [
  [68, 119, 170], [238, 102, 119], [34, 136, 51], [204, 187, 68], [102, 204, 238], [170, 51, 119],
  [187, 187, 187], [136, 34, 85], [51, 34, 136], [221, 204, 119], [153, 153, 51], [17, 119, 51],
];

/** What is the same in both documents, has other values, is in one alone: see README.md. */
const DIFFERENCES = { classes: [0, 1, 2], palette: [[173, 181, 189], [240, 160, 20], [200, 30, 120]] };

const MOST_CLASSES = PALETTE.length;

/** What stands for a value that is none, beyond all that are shown. */
export const NO_VALUE = Math.fround(3e38);

/** The colour of a share from 0 to 1, as three bytes. */
export function rampColour(share) {
  const place = Math.min(Math.max(share, 0), 1) * (RAMP.length - 1);
  const low = Math.min(Math.floor(place), RAMP.length - 2);
  return RAMP[low].map((from, i) => Math.round(from + (RAMP[low + 1][i] - from) * (place - low)));
}

export function classColour(scale, number) {
  return (scale.palette ?? PALETTE)[number];
}

/** As CSS writes it. */
export function cssColour([red, green, blue]) {
  return `rgb(${red}, ${green}, ${blue})`;
}

/** RGBA of the ramp, or of classes, for a texture of one line. */
export function textureOf(scale) {
  const count = scale.classes ? Math.max(scale.classes.length, 1) : 256;
  const bytes = new Uint8Array(4 * count);
  for (let i = 0; i < count; ++i) {
    bytes.set([...(scale.classes ? classColour(scale, i) : rampColour(i / (count - 1))), 255], 4 * i);
  }
  return bytes;
}

function distinct(lists) {
  const values = new Set();
  for (const list of lists) {
    for (let i = 0; i < list.length && values.size <= MOST_CLASSES; ++i) {
      values.add(list[i]);
    }
  }
  return [...values].sort((a, b) => a - b);
}

function finiteSorted(lists, most = 20000) {
  const values = [];
  for (const list of lists) {
    const step = Math.max(1, Math.floor(list.length / most));
    for (let i = 0; i < list.length; i += step) {
      if (Number.isFinite(list[i])) {
        values.push(list[i]);
      }
    }
  }
  return values.sort((a, b) => a - b);
}

function extent(lists) {
  let minimum = Infinity;
  let maximum = -Infinity;
  for (const list of lists) {
    for (let i = 0; i < list.length; ++i) {
      if (Number.isFinite(list[i])) {
        minimum = Math.min(minimum, list[i]);
        maximum = Math.max(maximum, list[i]);
      }
    }
  }
  return { minimum, maximum };
}

/** Whether a value is missing somewhere. */
function hasGaps(lists) {
  return lists.some((list) => list.some((value) => !Number.isFinite(value)));
}

/**
 * How values become colours. Integers of cells that take few values are classes; for other values a single one
 * that lies far away, as the aspect ratio of a cell without size does, must not make the others alike.
 * @param {{entity: string, role: string, type: string}} field
 * @param {ArrayLike<number>[]} lists its values, of each document
 */
export function scaleOf(field, lists) {
  if (field.role === 'difference') {
    return DIFFERENCES;
  }
  if (field.type === 'int' && field.entity !== 'nodes') {
    const classes = distinct(lists);
    if (classes.length <= MOST_CLASSES) {
      return { classes };
    }
  }
  const whole = { ...extent(lists), hasGaps: hasGaps(lists) };
  if (!(whole.minimum <= whole.maximum)) {
    return { classes: [], hasGaps: true }; // no values at all
  }
  // Measures of cells that are the same differ by rounding.
  const rounding = field.role === 'measure' ? 1e-6 * Math.max(Math.abs(whole.minimum), Math.abs(whole.maximum)) : 0;
  if (whole.maximum - whole.minimum <= rounding) {
    return { classes: [whole.minimum], isOneValue: true, hasGaps: whole.hasGaps };
  }
  const sorted = finiteSorted(lists);
  const high = sorted[Math.floor(0.98 * (sorted.length - 1))];
  const low = sorted[Math.floor(0.02 * (sorted.length - 1))];
  if (whole.maximum - whole.minimum > 100 * (high - low) && high > low) {
    return { ...whole, minimum: Math.max(whole.minimum, low), maximum: Math.min(whole.maximum, high), whole };
  }
  return { ...whole, whole };
}

/** Where the value lies in the texture, from 0 to 1; NO_VALUE for one that is none. */
export function shareOf(scale, value) {
  if (scale.classes) {
    const number = scale.isOneValue && Number.isFinite(value) ? 0 : scale.classes.indexOf(value);
    return number < 0 ? NO_VALUE : (number + 0.5) / scale.classes.length;
  }
  if (!Number.isFinite(value)) {
    return NO_VALUE;
  }
  // Halves have a difference, however large the numbers are.
  const width = scale.maximum / 2 - scale.minimum / 2;
  return width > 0 ? Math.min(Math.max((value / 2 - scale.minimum / 2) / width, 0), 1) : 0.5;
}
