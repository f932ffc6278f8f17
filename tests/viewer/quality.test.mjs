import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';

import { MEASURES, UNMEASURABLE, histogramOf, measureCells } from '../../viewer/src/quality.js';

const reference = JSON.parse(readFileSync(new URL('quality_reference.json', import.meta.url), 'utf8'));
const TRIANGLE = Float64Array.of(0, 0, 0, 1, 0, 0, 0, 1, 0);

function measured({ shape, nodesPerCell, corners }, measure) {
  const coordinates = new Float64Array(3 * nodesPerCell).fill(0.5);
  coordinates.set(corners.map((value) => value ?? NaN));
  const nodes = Int32Array.from({ length: nodesPerCell }, (_, i) => i);
  return measureCells(coordinates, shape, nodesPerCell, nodes, measure)[0];
}

function agree(found, expected) {
  return expected === null ? Number.isNaN(found) : Math.abs(found - expected) <= 1e-5 * Math.abs(expected);
}

test('the reference has every form of cells, good, bad, inverted and without values', () => {
  const forms = new Set(reference.cells.map(({ shape, nodesPerCell }) => `${shape} ${nodesPerCell}`));
  const jacobians = reference.cells.map(({ values }) => values[0]);

  assert.equal(forms.size, 24);
  assert.ok(jacobians.some((value) => value > 0.999));
  assert.ok(jacobians.some((value) => value < -0.5));
  assert.ok(reference.cells.some(({ values }) => values[1] === 1e30));
  assert.ok(jacobians.includes(null));
});

MEASURES.forEach((measure, column) => {
  test(`${measure} agrees with the C++ layer`, () => {
    const differing = reference.cells
      .map((cell) => ({ ...cell, found: measured(cell, measure), expected: cell.values[column] }))
      .filter(({ found, expected }) => !agree(found, expected));

    assert.deepEqual(differing, []);
  });
});

test('cells of one group are measured one by one', () => {
  const coordinates = Float64Array.of(...TRIANGLE, 2, 2, 0);

  const areas = measureCells(coordinates, 'triangle', 3, Int32Array.of(0, 1, 2, 0, 1, 3), 'size');

  assert.deepEqual([...areas], [0.5, 1]);
});

for (const [what, shape, nodesPerCell, nodes] of [
  ['nodes that do not exist', 'triangle', 3, [0, 1, 3]],
  ['negative nodes', 'triangle', 3, [0, 1, -1]],
  ['a number of nodes that the shape does not have', 'triangle', 5, [0, 1, 2, 0, 1]],
  ['spheres', 'sphere', 1, [0]],
  ['names that objects inherit', 'constructor', 1, [0]],
]) {
  test(`there is no value for ${what}`, () => {
    assert.deepEqual([...measureCells(TRIANGLE, shape, nodesPerCell, Int32Array.from(nodes), 'size')], [NaN]);
  });
}

test('cells without nodes have no values', () => {
  assert.equal(measureCells(TRIANGLE, 'point', 0, new Int32Array(0), 'size').length, 0);
});

test('a histogram counts each value in its bar, the greatest in the last one', () => {
  assert.deepEqual(histogramOf([0, 0.24, 0.25, 0.5, 1, 1], 4),
    { minimum: 0, maximum: 1, counts: [2, 1, 1, 2], cells: 6, without: 0, beyond: 0 });
});

test('a histogram leaves out what has no value', () => {
  assert.deepEqual(histogramOf(Float32Array.of(1, 3, NaN, Infinity), 2),
    { minimum: 1, maximum: 3, counts: [1, 1], cells: 4, without: 2, beyond: 0 });
});

test('the bars of a histogram end before what could not be measured', () => {
  assert.deepEqual(histogramOf(Float32Array.of(1, 3, UNMEASURABLE), 2),
    { minimum: 1, maximum: 3, counts: [1, 2], cells: 3, without: 0, beyond: 1 });
});

test('the bars of values with a tail end where nearly all of them do', () => {
  const values = [...Array.from({ length: 999 }, (_, i) => 1 + i / 998), 500];

  const { maximum, counts, beyond } = histogramOf(values, 4, true);

  assert.ok(maximum > 1.98 && maximum < 2);
  assert.ok(counts[0] > 200 && counts[3] > 200);
  assert.equal(beyond, values.filter((value) => value > maximum).length);
  assert.equal(histogramOf(values, 4).maximum, 500);
});

test('equal values share a bar', () => {
  assert.deepEqual(histogramOf([2, 2], 3),
    { minimum: 2, maximum: 2, counts: [2, 0, 0], cells: 2, without: 0, beyond: 0 });
});

test('a histogram without values has no range', () => {
  assert.deepEqual(histogramOf([NaN], 2),
    { minimum: null, maximum: null, counts: [0, 0], cells: 1, without: 1, beyond: 0 });
});
