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
  constructor(canvas, coordinates, isFlat) {
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
    this.frames = (this.frames ?? 0) + 1;
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

  /** Lines of the mesh, each kind with its colour, and those of marks last. */
  #lines() {
    const lines = [...this.layers.values()].filter((layer) => layer.isVisible && layer.kind === 'lines')
      .map(({ positions, colour }) => ({ positions, colour: colour.map((part) => Math.round(255 * part)) }));
    if (this.places?.lines.length) {
      const { points, lines: pairs, colour } = this.places;
      lines.push({
        positions: Float32Array.from(pairs.flatMap((pair) => pair.flatMap((end) => points[end]))),
        colour: colour.map((part) => Math.round(255 * part)),
      });
    }
    return lines;
  }
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
