import assert from 'node:assert/strict';
import { test } from 'node:test';

import { drawPicture } from '../../viewer/src/raster.js';

const SIZE = 100;
const WHITE = [255, 255, 255];
const RED = [200, 0, 0];
const BLUE = [0, 0, 200];
const FROM_ABOVE = { direction: [0, 0, -1], up: [0, 1, 0] };
const FROM_BELOW = { direction: [0, 0, 1], up: [0, 1, 0] };

/** A square from (x, y) with sides of `size` at a height, as two triangles. */
function square(x, y, z, size) {
  const corner = (i, j) => [x + i * size, y + j * size, z];
  return [corner(0, 0), corner(1, 0), corner(1, 1), corner(0, 0), corner(1, 1), corner(0, 1)].flat();
}

function sceneOf(...parts) {
  return {
    positions: Float32Array.from(parts.flatMap(({ points }) => points)),
    colours: Uint8Array.from(parts.flatMap(({ points, colour }) => points.map((_, i) => colour[i % 3]))),
  };
}

function draw(scene, view = FROM_ABOVE) {
  const pixels = drawPicture(scene, view, SIZE, SIZE, WHITE);
  return (x, y) => [...pixels.slice(4 * (y * SIZE + x), 4 * (y * SIZE + x) + 3)];
}

/** The place in the picture of a point of the box from 0 to `extent`. */
function pixelOf(share) {
  return Math.round(4 + 92 * share);
}

test('a triangle fills the picture up to its margin', () => {
  const at = draw(sceneOf({ points: square(10, 10, 0, 5), colour: RED }));

  assert.deepEqual(at(50, 50), RED);
  assert.deepEqual(at(5, 5), RED);
  assert.deepEqual(at(94, 94), RED);
  assert.deepEqual(at(2, 50), WHITE);
  assert.deepEqual(at(50, 97), WHITE);
});

test('up is at the top, and right is right', () => {
  const scene = sceneOf(
    { points: square(0, 0, 0, 1), colour: RED }, { points: square(3, 3, 0, 1), colour: BLUE });

  const at = draw(scene);

  assert.deepEqual(at(pixelOf(0.1), pixelOf(0.9)), RED);
  assert.deepEqual(at(pixelOf(0.9), pixelOf(0.1)), BLUE);
  assert.deepEqual(at(pixelOf(0.1), pixelOf(0.1)), WHITE);
});

for (const [order, view, seen] of [
  ['from above', FROM_ABOVE, BLUE], ['from below', FROM_BELOW, RED],
]) {
  for (const isReversed of [false, true]) {
    test(`the nearer one of two squares is seen ${order}${isReversed ? ', drawn first' : ''}`, () => {
      const parts = [
        { points: square(0, 0, 0, 1), colour: RED }, { points: square(0, 0, 1, 1), colour: BLUE },
      ];

      const at = draw(sceneOf(...(isReversed ? parts.reverse() : parts)), view);

      assert.deepEqual(at(50, 50), seen);
    });
  }
}

test('squares that cut each other are each seen where they are nearer', () => {
  const tilted = [0, 0, -1, 2, 0, 1, 2, 2, 1, 0, 0, -1, 2, 2, 1, 0, 2, -1];
  const at = draw(sceneOf({ points: square(0, 0, 0, 2), colour: RED }, { points: tilted, colour: BLUE }));

  assert.deepEqual(at(25, 50), RED);
  assert.ok(at(75, 50)[2] > 100 && at(75, 50)[0] === 0);
});

test('a surface is the darker the more it turns away', () => {
  const at = draw(sceneOf({ points: [0, 0, 0, 1, 0, 3, 0, 1, 0], colour: RED }));

  const [red] = at(20, 70);

  assert.ok(red > 0.35 * 200 && red < 0.7 * 200, `red is ${red}`);
});

test('colours go from corner to corner', () => {
  const scene = sceneOf({ points: square(0, 0, 0, 1), colour: RED });
  scene.colours = Uint8Array.from([0, 0, 0, 200, 0, 0, 200, 0, 0, 0, 0, 0, 200, 0, 0, 0, 0, 0]);

  const at = draw(scene);

  assert.ok(Math.abs(at(50, 30)[0] - 100) < 4);
  assert.ok(Math.abs(at(27, 70)[0] - 50) < 4);
});

const SIDES = { below: [50, 95], right: [95, 50], above: [50, 4], left: [4, 50] };

for (const [side, edges] of [
  ['below', [1, 0, 0, 0, 0, 0]], ['right', [0, 1, 0, 0, 0, 0]],
  ['above', [0, 0, 0, 0, 1, 0]], ['left', [0, 0, 0, 0, 0, 1]],
]) {
  test(`a side of the square that is a line of the mesh is darker: ${side}`, () => {
    const scene = { ...sceneOf({ points: square(0, 0, 0, 1), colour: RED }), edges: Uint8Array.from(edges) };

    const at = draw(scene);

    const dark = Object.keys(SIDES).filter((name) => at(...SIDES[name])[0] < 100);
    assert.deepEqual(dark, [side]);
    assert.deepEqual([at(50, 49), at(30, 60)], [RED, RED]);
  });
}

test('lines of cells as small as pixels leave the colours as they are', () => {
  const points = Array.from({ length: 3600 }, (_, i) => square(i % 60, Math.floor(i / 60), 0, 1)).flat();
  const edges = new Uint8Array(points.length / 3).fill(1);
  const scene = { ...sceneOf({ points, colour: RED }), edges };

  assert.deepEqual(draw(scene)(50, 50), RED);
});

test('lines on a surface are seen, those behind it are not', () => {
  const scene = sceneOf({ points: square(0, 0, 0, 1), colour: RED });
  const on = { ...scene, lines: [{ positions: Float32Array.of(0, 0.5, 0, 1, 0.5, 0), colour: BLUE }] };
  const behind = { ...scene, lines: [{ positions: Float32Array.of(0, 0.5, -1, 1, 0.5, -1), colour: BLUE }] };

  assert.deepEqual(draw(on)(50, 50), BLUE);
  assert.deepEqual(draw(behind)(50, 50), RED);
});

test('lines have their colours, and lines alone make a picture', () => {
  const scene = {
    positions: new Float32Array(0),
    colours: new Uint8Array(0),
    lines: [
      { positions: Float32Array.of(0, 0, 0, 1, 0, 0), colour: RED },
      { positions: Float32Array.of(0, 1, 0, 1, 1, 0), colour: BLUE },
    ],
  };

  const at = draw(scene);

  assert.deepEqual(at(50, 96), RED);
  assert.deepEqual(at(50, 4), BLUE);
  assert.deepEqual(at(50, 50), WHITE);
});

for (const value of [NaN, Infinity, -Infinity]) {
  test(`a triangle with a coordinate of ${value} is left out, and others stay where they are`, () => {
    const bad = square(0, 0, 0, 9);
    bad[0] = value;
    bad[9] = value;

    const at = draw(sceneOf({ points: square(0, 0, 0, 9), colour: RED }, { points: bad, colour: BLUE }));

    assert.deepEqual(at(30, 50), RED);
    assert.deepEqual(at(70, 50), RED);
  });
}

test('nothing makes an empty picture with its background', () => {
  const nothing = { positions: new Float32Array(0), colours: new Uint8Array(0) };

  assert.deepEqual([...drawPicture(nothing, FROM_ABOVE, 2, 1, [1, 2, 3, 0])], [1, 2, 3, 0, 1, 2, 3, 0]);
});

test('a view whose up leads into the scene, or has no direction, shows the scene', () => {
  const scene = sceneOf({ points: square(0, 0, 0, 1), colour: RED });

  assert.deepEqual(draw(scene, { direction: [0, 0, -1], up: [0, 0, 1] })(50, 50), RED);
  assert.deepEqual(draw(scene, { direction: [0, 0, 0], up: [0, 0, 0] })(50, 50), RED);
});

test('meshes of all sizes and far from the origin fill the picture', () => {
  for (const [place, size] of [[0, 1e-20], [0, 1e20], [1e6, 10]]) {
    const at = draw(sceneOf({ points: square(place, place, 0, size), colour: RED }));
    assert.deepEqual([at(6, 6), at(93, 93), at(1, 1)], [RED, RED, WHITE], `${size} at ${place}`);
  }
});

test('neighbours leave no gaps', () => {
  const points = [];
  for (let i = 0; i < 37; ++i) {
    const [a, b] = [i, i + 1].map((step) => 2 * Math.PI * step / 37);
    points.push(0, 0, 0, Math.cos(a), Math.sin(a), 0, Math.cos(b), Math.sin(b), 0);
  }
  const at = draw(sceneOf({ points, colour: RED }));

  for (let x = 20; x < 80; ++x) {
    for (let y = 20; y < 80; ++y) {
      assert.deepEqual(at(x, y), RED, `${x}, ${y}`);
    }
  }
});
