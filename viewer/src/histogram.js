// How values are distributed.

/** What a ratio to no size is: the worst. */
export const UNMEASURABLE = Math.fround(1e30);

/** The values of which `belongs` is true. */
function those(values, belongs) {
  const chosen = new Float64Array(values.length);
  let count = 0;
  for (let i = 0; i < values.length; ++i) {
    if (belongs(values[i])) {
      chosen[count++] = values[i];
    }
  }
  return chosen.subarray(0, count);
}

function greatestOf(values) {
  let greatest = -Infinity;
  for (let i = 0; i < values.length; ++i) {
    greatest = Math.max(greatest, values[i]);
  }
  return greatest;
}

function leastOf(values) {
  let least = Infinity;
  for (let i = 0; i < values.length; ++i) {
    least = Math.min(least, values[i]);
  }
  return least;
}

/** What 99.5 % of some values do not exceed. */
function almostGreatest(values) {
  return values.slice().sort()[Math.floor((values.length - 1) * 0.995)];
}

/** Where the bars end; what could not be measured would leave all other values in one. */
function endOfBars(values, hasTail) {
  const measured = those(values, (value) => value < UNMEASURABLE);
  if (measured.length === 0) {
    return values.length ? UNMEASURABLE : null;
  }
  const greatest = greatestOf(measured);
  const almost = hasTail ? almostGreatest(measured) : greatest;
  return greatest > 2 * almost ? almost : greatest;
}

/** The bar of a value; halves have a difference wherever they are. */
function barOf(value, minimum, maximum, bins) {
  if (value >= maximum) {
    return value > maximum || maximum > minimum ? bins - 1 : 0;
  }
  const share = (value / 2 - minimum / 2) / (maximum / 2 - minimum / 2);
  return Math.min(Math.floor(share * bins), bins - 1);
}

/**
 * Counts values in bars of one width from the least value to the greatest.
 * @param {ArrayLike<number>} values
 * @param {number} [bins]
 * @param {boolean} [hasTail] for measures without an upper bound, of which one flat cell would leave a single
 *   bar of the others: where the greatest value is more than twice the 99.5th percentile, they end at that
 * @returns {{minimum: number|null, maximum: number|null, counts: number[], cells: number, without: number,
 *   beyond: number}} `cells` is the number of values, `without` how many of them are not finite; the last bar
 *   also counts the `beyond` values above the maximum
 */
export function histogramOf(values, bins = 40, hasTail = false) {
  const finite = those(values, Number.isFinite);
  const minimum = finite.length ? leastOf(finite) : null;
  let maximum = endOfBars(finite, hasTail);
  // What is left by rounding is no distribution.
  if (maximum - minimum <= 1e-6 * Math.max(Math.abs(minimum), Math.abs(maximum)) &&
      greatestOf(finite) <= maximum) {
    finite.fill(minimum);
    maximum = minimum;
  }
  const counts = new Array(bins).fill(0);
  let beyond = 0;
  for (let i = 0; i < finite.length; ++i) {
    ++counts[barOf(finite[i], minimum, maximum, bins)];
    beyond += finite[i] > maximum ? 1 : 0;
  }
  return { minimum, maximum, counts, cells: values.length, without: values.length - finite.length, beyond };
}
