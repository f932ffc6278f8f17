// The stage of a browser without WebGL: the mesh from four sides, drawn by the processor. It takes the same calls as
// Stage; what only makes sense for an eye that moves does nothing here.
import { NO_VALUE } from './colours.js';
import { drawPicture } from './raster.js';

const SIDES = [
  { direction: [-1, 1.25, -0.8], up: [0, 0, 1] }, { direction: [0, 1, 0], up: [0, 0, 1] },
  { direction: [-1, 0, 0], up: [0, 0, 1] }, { direction: [0, 0, -1], up: [0, 1, 0] },
];

/** Every picture has this many pixels beside each other, however large it is shown. */
const PIXELS = 640;

export class Pictures {
  constructor(canvas, isFlat) {
    this.canvas = canvas;
    this.sides = isFlat ? SIDES.slice(3) : SIDES;
    this.layers = new Map();
    this.listeners = new Set();
    this.background = [1, 1, 1];
    this.wire = 0;
    this.places = null;
  }

  get isOrthographic() {
    return true;
  }

  placed(coordinates) {
    return Float32Array.from(coordinates);
  }

  put(name, layer) {
    this.layers.set(name, { ...layer, isVisible: true, colour: [0.7, 0.7, 0.7] });
    this.draw();
  }

  remove(name) {
    this.layers.delete(name);
    this.draw();
  }

  paint(name, { colour, shares, texture }) {
    const layer = this.layers.get(name);
    if (layer) {
      Object.assign(layer, { colour: colour ?? layer.colour, shares, texture });
      this.draw();
    }
  }

  setWire(strength) {
    this.wire = strength;
    this.draw();
  }

  setBackground(colour) {
    this.background = colour;
    this.draw();
  }

  setVisible(name, isVisible) {
    const layer = this.layers.get(name);
    if (layer) {
      layer.isVisible = isVisible;
      this.draw();
    }
  }

  mark({ points, lines }, colour) {
    this.places = { points, lines, colour };
    this.draw();
  }

  unmark() {
    this.places = null;
    this.draw();
  }

  putCoarse() {}
  flyTo() {}
  look() {}
  turn() {}
  pan() {}
  zoom() {}
  setOrthographic() {}
  follow() {}
  resize() { this.draw(); }

  pick() {
    return null;
  }

  draw() {
    this.pending ??= requestAnimationFrame(() => this.drawNow());
  }

  drawNow() {
    this.pending = undefined;
    const columns = this.sides.length > 1 ? 2 : 1;
    const height = Math.round(PIXELS * 0.75);
    const context = this.canvas.getContext('2d');
    this.canvas.width = columns * PIXELS;
    this.canvas.height = columns * height;
    const scene = this.#scene();
    this.sides.forEach((view, i) => {
      const bytes = drawPicture(scene, view, PIXELS, height, this.background.map((part) => Math.round(255 * part)));
      context.putImageData(new ImageData(bytes, PIXELS, height), (i % columns) * PIXELS,
        Math.floor(i / columns) * height);
    });
  }

  #scene() {
    const surfaces = [...this.layers.values()].filter((layer) => layer.isVisible && layer.kind === 'surface');
    const corners = surfaces.reduce((sum, layer) => sum + layer.positions.length / 3, 0);
    const scene = {
      positions: new Float32Array(3 * corners), colours: new Uint8Array(3 * corners),
      edges: new Uint8Array(corners), lines: this.#lines(),
    };
    let at = 0;
    for (const layer of surfaces) {
      scene.positions.set(layer.positions, 3 * at);
      for (let i = 0; i < layer.positions.length / 3; ++i, ++at) {
        scene.colours.set(colourAt(layer, i), 3 * at);
        scene.edges[at] = this.wire ? (layer.corners[i] >> (2 + (i % 3))) & 1 : 0;
      }
    }
    return scene;
  }

  /** Lines of the mesh and points as crosses, by their colours, and those of marks last. */
  #lines() {
    const visible = [...this.layers.values()].filter((layer) => layer.isVisible && layer.kind !== 'surface');
    const arm = 0.008 * Math.max(...[...this.layers.values()].map(({ positions }) => widthOf(positions)), 0);
    const lines = visible.flatMap((layer) => byColour(layer, arm));
    if (this.places) {
      const { points, lines: pairs, colour } = this.places;
      const positions = pairs.length ? pairs.flatMap((pair) => pair.flatMap((end) => points[end]))
        : points.flatMap((point) => crossAt(point, 2 * arm));
      lines.push({ positions: Float32Array.from(positions), colour: colour.map((part) => Math.round(255 * part)) });
    }
    return lines;
  }
}

/** The longest side of the box of some positions. */
function widthOf(positions) {
  const low = [Infinity, Infinity, Infinity];
  const high = [-Infinity, -Infinity, -Infinity];
  positions.forEach((value, i) => {
    low[i % 3] = Math.min(low[i % 3], value);
    high[i % 3] = Math.max(high[i % 3], value);
  });
  return positions.length ? Math.max(...high.map((value, axis) => value - low[axis])) : 0;
}

/** Three lines that meet in a point. */
function crossAt(point, arm) {
  return [0, 1, 2].flatMap((axis) => [-arm, arm].flatMap((shift) =>
    point.map((value, i) => (i === axis ? value + shift : value))));
}

/** The lines or points of a layer, those of one colour together. */
function byColour(layer, arm) {
  const arePoints = layer.kind === 'points';
  const size = arePoints ? 3 : 6;
  const colours = new Map();
  for (let i = 0; i < layer.positions.length; i += size) {
    const colour = colourAt(layer, i / 3);
    const key = [...colour].join();
    if (!colours.has(key)) {
      colours.set(key, { colour: [...colour], positions: [] });
    }
    const ends = [...layer.positions.subarray(i, i + size)];
    colours.get(key).positions.push(...(arePoints ? crossAt(ends, arm) : ends));
  }
  return [...colours.values()].map(({ colour, positions }) => ({ colour, positions: Float32Array.from(positions) }));
}

function colourAt({ shares, texture, colour }, i) {
  if (!shares) {
    return colour.map((part) => Math.round(255 * part));
  }
  if (shares[i] === NO_VALUE) {
    return [150, 150, 150];
  }
  const { data, width } = texture.image;
  const place = 4 * Math.min(Math.floor(shares[i] * width), width - 1);
  return data.subarray(place, place + 3);
}
