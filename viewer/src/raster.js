// Pictures without WebGL: triangles and lines in a parallel projection, of which the nearest are seen.
// Lengths and depths are in pixels once a point is projected, so that one bias fits meshes of all sizes.

const MARGIN = 0.04; // of the lesser side of the picture, on each side
const AMBIENT = 0.35; // what is left of a colour where a surface is seen edge-on
const LINE_HALF_WIDTH = 0.75; // of the part of a mesh line in each of its triangles
const LINE_DARKNESS = 0.6; // of mesh lines, where cells are large enough to tell them apart
const FINE_SIDE = 3; // sides so short on the average have no lines, or the picture would be black
const COARSE_SIDE = 12; // those from here on have full ones
const DEPTH_BIAS = 1.5; // lines on a surface are drawn as if they were so much nearer
const UNSEEN = Infinity;

function cross(a, b) {
  return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];
}

/** A vector of length one; null for what has no direction. */
function unit(a) {
  const length = Math.hypot(...a);
  return length > 0 && Number.isFinite(length) ? a.map((component) => component / length) : null;
}

/** Right, down and forward as seen by the eye; another up where the given one leads into the scene. */
function basisOf({ direction, up }) {
  const forward = unit(direction) ?? [0, 0, -1];
  const leastAxis = forward.map((component) => Math.abs(component))
    .reduce((least, size, axis, sizes) => (size < sizes[least] ? axis : least), 0);
  const substitute = [0, 0, 0];
  substitute[leastAxis] = 1;
  const sideways = cross(forward, unit(up) ?? substitute);
  const right = Math.hypot(...sideways) > 1e-6 ? unit(sideways) : unit(cross(forward, substitute));
  return { right, down: cross(forward, right), forward };
}

/** The box of all finite points along the axes of the eye. */
function extentsOf(basis, lists) {
  const minimum = [Infinity, Infinity, Infinity];
  const maximum = [-Infinity, -Infinity, -Infinity];
  const axes = [basis.right, basis.down, basis.forward];
  for (const points of lists) {
    for (let at = 0; at + 2 < points.length; at += 3) {
      for (let i = 0; i < 3; ++i) {
        const axis = axes[i];
        const place = axis[0] * points[at] + axis[1] * points[at + 1] + axis[2] * points[at + 2];
        // False for NaN, and infinite places would leave no room for the others.
        if (place < minimum[i] && place > -Infinity) {
          minimum[i] = place;
        }
        if (place > maximum[i] && place < Infinity) {
          maximum[i] = place;
        }
      }
    }
  }
  return { minimum, maximum };
}

/** What takes points to pixels; null where there is nothing to see. */
function projectionOf(view, lists, width, height) {
  const basis = basisOf(view);
  const { minimum, maximum } = extentsOf(basis, lists);
  if (!minimum.every((low, i) => low <= maximum[i])) {
    return null;
  }
  const room = 1 - 2 * MARGIN;
  const size = (i) => Math.max(maximum[i] - minimum[i], Number.MIN_VALUE);
  const margin = MARGIN * Math.min(width, height);
  let scale = Math.min((width - 2 * margin) / size(0), (height - 2 * margin) / size(1));
  if (!Number.isFinite(scale)) {
    scale = size(2) > Number.MIN_VALUE ? room * Math.min(width, height) / size(2) : 1;
  }
  const middle = (i) => (minimum[i] + maximum[i]) / 2;
  return {
    axes: [basis.right, basis.down, basis.forward]
      .map((axis) => axis.map((component) => component * scale)),
    offset: [width / 2 - middle(0) * scale, height / 2 - middle(1) * scale, -middle(2) * scale],
  };
}

/** Projects some points; false when one of them is nowhere. */
function project({ axes, offset }, points, begin, count, to) {
  let isFinite = true;
  for (let point = 0; point < count; ++point) {
    const at = begin + 3 * point;
    for (let i = 0; i < 3; ++i) {
      const axis = axes[i];
      const place =
        axis[0] * points[at] + axis[1] * points[at + 1] + axis[2] * points[at + 2] + offset[i];
      to[3 * point + i] = place;
      isFinite = isFinite && place - place === 0;
    }
  }
  return isFinite;
}

/** How dark mesh lines are drawn: they fade where their sides become as short as they are wide. */
function darknessOf(projection, positions, edges) {
  const corners = new Float64Array(9);
  let sum = 0;
  let count = 0;
  for (let triangle = 0; 9 * triangle + 8 < positions.length; ++triangle) {
    const marked = edges[3 * triangle] || edges[3 * triangle + 1] || edges[3 * triangle + 2];
    if (!marked || !project(projection, positions, 9 * triangle, 3, corners)) {
      continue;
    }
    for (let side = 0; side < 3; ++side) {
      if (edges[3 * triangle + side]) {
        const next = (side + 1) % 3;
        sum += Math.hypot(corners[3 * next] - corners[3 * side],
          corners[3 * next + 1] - corners[3 * side + 1]);
        ++count;
      }
    }
  }
  const mean = count ? sum / count : 0;
  return LINE_DARKNESS * Math.min(1, Math.max(0, (mean - FINE_SIDE) / (COARSE_SIDE - FINE_SIDE)));
}

/** The pixels and how far away each is. */
class Canvas {
  constructor(width, height, background) {
    this.width = width;
    this.height = height;
    this.pixels = new Uint8ClampedArray(4 * width * height);
    this.depths = new Float32Array(width * height).fill(UNSEEN);
    const [red, green, blue, alpha = 255] = background;
    for (let at = 0; at < this.pixels.length; at += 4) {
      this.pixels[at] = red;
      this.pixels[at + 1] = green;
      this.pixels[at + 2] = blue;
      this.pixels[at + 3] = alpha;
    }
  }

  set(x, y, depth, red, green, blue) {
    const pixel = y * this.width + x;
    this.depths[pixel] = depth;
    this.pixels[4 * pixel] = red;
    this.pixels[4 * pixel + 1] = green;
    this.pixels[4 * pixel + 2] = blue;
    this.pixels[4 * pixel + 3] = 255;
  }
}

/** Fills triangles, one at a time. */
class TriangleFiller {
  constructor(canvas, darkness) {
    this.canvas = canvas;
    this.darkness = darkness;
    this.corners = new Float64Array(9);
    this.reach = new Float64Array(3); // up to which distance from each side a pixel belongs to its line
  }

  /** How bright a surface is by a light at the eye. */
  shade() {
    const c = this.corners;
    const ax = c[3] - c[0];
    const ay = c[4] - c[1];
    const az = c[5] - c[2];
    const bx = c[6] - c[0];
    const by = c[7] - c[1];
    const bz = c[8] - c[2];
    const nx = ay * bz - az * by;
    const ny = az * bx - ax * bz;
    const nz = ax * by - ay * bx;
    return AMBIENT + (1 - AMBIENT) * Math.abs(nz) / Math.sqrt(nx * nx + ny * ny + nz * nz);
  }

  /** The line of side i is as wide on the screen for all triangles: its reach is in units of the weight. */
  findReach(edges, first, area) {
    const c = this.corners;
    for (let i = 0; i < 3; ++i) {
      const next = (i + 1) % 3;
      const length = Math.hypot(c[3 * next] - c[3 * i], c[3 * next + 1] - c[3 * i + 1]);
      this.reach[i] = edges && this.darkness > 0 && edges[first + i]
        ? LINE_HALF_WIDTH * length / Math.abs(area) : -1;
    }
  }

  /**
   * Draws the triangle in `corners`. Pixels on its sides belong to it, so that neighbours leave no gap.
   * @param {Uint8Array} colours its colours begin at `at`
   */
  fill(colours, at, edges, first) {
    const c = this.corners;
    const area = (c[3] - c[0]) * (c[7] - c[1]) - (c[6] - c[0]) * (c[4] - c[1]);
    const { width, height, depths } = this.canvas;
    const left = Math.max(0, Math.ceil(Math.min(c[0], c[3], c[6]) - 0.5));
    const right = Math.min(width - 1, Math.floor(Math.max(c[0], c[3], c[6]) - 0.5));
    const top = Math.max(0, Math.ceil(Math.min(c[1], c[4], c[7]) - 0.5));
    const bottom = Math.min(height - 1, Math.floor(Math.max(c[1], c[4], c[7]) - 0.5));
    if (area === 0 || left > right || top > bottom) {
      return;
    }
    this.findReach(edges, first, area);
    const shade = this.shade();
    // The weight of corner 0 is 1 there and 0 on the opposite side; so is that of corner 1.
    const step0 = (c[4] - c[7]) / area;
    const step1 = (c[7] - c[1]) / area;
    for (let y = top; y <= bottom; ++y) {
      const dy = y + 0.5;
      const dx = left + 0.5;
      let w0 = ((c[3] - dx) * (c[7] - dy) - (c[6] - dx) * (c[4] - dy)) / area;
      let w1 = ((c[6] - dx) * (c[1] - dy) - (c[0] - dx) * (c[7] - dy)) / area;
      for (let x = left; x <= right; ++x, w0 += step0, w1 += step1) {
        const w2 = 1 - w0 - w1;
        if (w0 < -1e-9 || w1 < -1e-9 || w2 < -1e-9) {
          continue;
        }
        const depth = w0 * c[2] + w1 * c[5] + w2 * c[8];
        if (depth < depths[y * width + x]) {
          this.paint(x, y, depth, w0, w1, w2, shade, colours, at);
        }
      }
    }
  }

  paint(x, y, depth, w0, w1, w2, shade, colours, at) {
    const isLine = w2 < this.reach[0] || w0 < this.reach[1] || w1 < this.reach[2];
    const light = isLine ? shade * (1 - this.darkness) : shade;
    this.canvas.set(x, y, depth,
      light * (w0 * colours[at] + w1 * colours[at + 3] + w2 * colours[at + 6]),
      light * (w0 * colours[at + 1] + w1 * colours[at + 4] + w2 * colours[at + 7]),
      light * (w0 * colours[at + 2] + w1 * colours[at + 5] + w2 * colours[at + 8]));
  }
}

/** Draws a line of one pixel's width where nothing is in front of it. */
function drawLine(canvas, ends, colour) {
  const [x0, y0, z0, x1, y1, z1] = ends;
  const steps = Math.max(1, Math.ceil(Math.max(Math.abs(x1 - x0), Math.abs(y1 - y0))));
  for (let step = 0; step <= steps; ++step) {
    const share = step / steps;
    const x = Math.floor(x0 + share * (x1 - x0));
    const y = Math.floor(y0 + share * (y1 - y0));
    const depth = z0 + share * (z1 - z0) - DEPTH_BIAS;
    if (x >= 0 && y >= 0 && x < canvas.width && y < canvas.height &&
        depth < canvas.depths[y * canvas.width + x]) {
      canvas.set(x, y, depth, colour[0], colour[1], colour[2]);
    }
  }
}

function drawLines(canvas, projection, { positions, colour }) {
  const ends = new Float64Array(6);
  for (let at = 0; at + 5 < positions.length; at += 6) {
    if (project(projection, positions, at, 2, ends)) {
      drawLine(canvas, ends, colour);
    }
  }
}

/**
 * Draws triangles and lines so that they fill a picture, in a parallel projection with a light at the eye.
 * What has a coordinate that is not finite is left out.
 * @param {object} scene
 * @param {Float32Array} scene.positions nine values a triangle
 * @param {Uint8Array} scene.colours red, green and blue of each corner, nine values a triangle
 * @param {Uint8Array} [scene.edges] three values a triangle: whether the side from corner i to the next one
 *   is a line of the mesh, which is drawn darker
 * @param {{positions: Float32Array, colour: number[]}[]} [scene.lines] six values a line from point to point,
 *   drawn over the surface they lie on, in red, green and blue
 * @param {{direction: number[], up: number[]}} view from the eye into the scene, and what is above
 * @param {number} width in pixels
 * @param {number} height in pixels
 * @param {number[]} background red, green, blue and, unless it is 255, alpha
 * @returns {Uint8ClampedArray} red, green, blue and alpha of each pixel, from the top left, row by row
 */
export function drawPicture(scene, view, width, height, background) {
  const { positions, colours, edges, lines = [] } = scene;
  const canvas = new Canvas(width, height, background);
  const projection = projectionOf(view, [positions, ...lines.map((some) => some.positions)], width, height);
  if (!projection) {
    return canvas.pixels;
  }
  const filler = new TriangleFiller(canvas, edges ? darknessOf(projection, positions, edges) : 0);
  for (let triangle = 0; 9 * triangle + 8 < positions.length; ++triangle) {
    if (project(projection, positions, 9 * triangle, 3, filler.corners)) {
      filler.fill(colours, 9 * triangle, edges, 3 * triangle);
    }
  }
  for (const some of lines) {
    drawLines(canvas, projection, some);
  }
  return canvas.pixels;
}
