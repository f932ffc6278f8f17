// What can be said of each cell by its corners, with the definitions of the C++ layer (orvml/check.hpp and
// orvml/cell_measures.hpp): quadratic cells count as straight ones.
//
// `x` holds the corners of a cell, three coordinates each; other arguments are numbers of corners. Some
// comparisons are written out: Math.min gives NaN for every NaN, while corners without edges are passed over.
import { facesOf } from './cell_shapes.js';
import { UNMEASURABLE } from './histogram.js';

export { UNMEASURABLE, histogramOf } from './histogram.js';

/** The measures that measureCells() knows. */
export const MEASURES = ['scaled Jacobian', 'aspect ratio', 'smallest angle', 'largest angle', 'size'];

const SQRT3 = Math.sqrt(3);
const DEGREES = 180 / Math.PI;
const CORNERS = {
  line: 2, triangle: 3, quadrilateral: 4, tetrahedron: 4, hexahedron: 8, prism: 6, pyramid: 5,
};
const NODE_COUNTS = {
  line: [2, 3, 4], triangle: [3, 6, 7], quadrilateral: [4, 6, 8, 9], tetrahedron: [4, 10],
  hexahedron: [8, 20, 24, 27], prism: [6, 12, 15, 18], pyramid: [5, 13, 19],
};

/** A corner, and those at the ends of its edges so that their triple product is positive. */
const SOLID_CORNERS = {
  hexahedron: [
    [0, 1, 3, 4], [1, 2, 0, 5], [2, 3, 1, 6], [3, 0, 2, 7],
    [4, 7, 5, 0], [5, 4, 6, 1], [6, 5, 7, 2], [7, 6, 4, 3],
  ],
  prism: [[0, 1, 2, 3], [1, 2, 0, 4], [2, 0, 1, 5], [3, 5, 4, 0], [4, 3, 5, 1], [5, 4, 3, 2]],
};

/** The pairs of corners whose differences add up to each principal axis of a hexahedron. */
const PRINCIPAL_AXES = [
  [[0, 1], [3, 2], [4, 5], [7, 6]],
  [[0, 3], [1, 2], [4, 7], [5, 6]],
  [[0, 4], [1, 5], [2, 6], [3, 7]],
];

/** The faces of a solid, and its edges, each with the two faces that meet there. */
function solidOf(shape) {
  const faces = facesOf(shape, CORNERS[shape]).map((face) => face.corners);
  const edges = new Map();
  faces.forEach((corners, number) => corners.forEach((from, i) => {
    const ends = [from, corners[(i + 1) % corners.length]].sort((a, b) => a - b);
    const edge = edges.get(ends.join()) ?? { ends, faces: [] };
    edge.faces.push(number);
    edges.set(ends.join(), edge);
  }));
  return { faces, edges: [...edges.values()] };
}

const SOLIDS = Object.fromEntries(
  ['tetrahedron', 'hexahedron', 'prism', 'pyramid'].map((shape) => [shape, solidOf(shape)]));

function lengthOf(x, a, b) {
  const dx = x[3 * b] - x[3 * a];
  const dy = x[3 * b + 1] - x[3 * a + 1];
  const dz = x[3 * b + 2] - x[3 * a + 2];
  return Math.sqrt(dx * dx + dy * dy + dz * dz);
}

/** Writes the cross product of the vectors from a to b and from c to d. */
function cross(x, a, b, c, d, to, at) {
  const ux = x[3 * b] - x[3 * a];
  const uy = x[3 * b + 1] - x[3 * a + 1];
  const uz = x[3 * b + 2] - x[3 * a + 2];
  const vx = x[3 * d] - x[3 * c];
  const vy = x[3 * d + 1] - x[3 * c + 1];
  const vz = x[3 * d + 2] - x[3 * c + 2];
  to[at] = uy * vz - uz * vy;
  to[at + 1] = uz * vx - ux * vz;
  to[at + 2] = ux * vy - uy * vx;
}

const product = new Float64Array(3);

function crossLength(x, a, b, c, d) {
  cross(x, a, b, c, d, product, 0);
  return Math.sqrt(product[0] * product[0] + product[1] * product[1] + product[2] * product[2]);
}

/** The triple product of the vectors from p to a, b and c. */
function triple(x, p, a, b, c) {
  cross(x, p, a, p, b, product, 0);
  return product[0] * (x[3 * c] - x[3 * p]) + product[1] * (x[3 * c + 1] - x[3 * p + 1]) +
    product[2] * (x[3 * c + 2] - x[3 * p + 2]);
}

/** The angle between two vectors of an array from 0 to 180 degrees, exact also where it is small. */
function angleBetween(u, i, v, j) {
  const cx = u[i + 1] * v[j + 2] - u[i + 2] * v[j + 1];
  const cy = u[i + 2] * v[j] - u[i] * v[j + 2];
  const cz = u[i] * v[j + 1] - u[i + 1] * v[j];
  const dot = u[i] * v[j] + u[i + 1] * v[j + 1] + u[i + 2] * v[j + 2];
  return DEGREES * Math.atan2(Math.sqrt(cx * cx + cy * cy + cz * cz), dot);
}

function scaledJacobianOfTriangle(x) {
  const a = lengthOf(x, 0, 1);
  const b = lengthOf(x, 1, 2);
  const c = lengthOf(x, 2, 0);
  return 2 / SQRT3 * crossLength(x, 0, 1, 1, 2) / Math.max(a * b, b * c, c * a);
}

/** The longest side of a polygon times the sum of all. */
function longestTimesSum(x, corners) {
  let longest = 0;
  let sum = 0;
  for (let i = 0; i < corners; ++i) {
    const length = lengthOf(x, i, (i + 1) % corners);
    longest = Math.max(longest, length);
    sum += length;
  }
  return longest * sum;
}

function aspectRatioOfTriangle(x) {
  return longestTimesSum(x, 3) / (2 * SQRT3 * crossLength(x, 0, 1, 1, 2));
}

/** The normal that areas are compared with is the mean one, the cross product of the diagonals. */
function scaledJacobianOfQuadrilateral(x) {
  const normal = scratch;
  cross(x, 0, 2, 1, 3, normal, 0);
  const size = Math.sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
  let lowest = Infinity;
  for (let i = 0; i < 4; ++i) {
    const before = (i + 3) % 4;
    const after = (i + 1) % 4;
    cross(x, before, i, i, after, product, 0);
    const area = (normal[0] * product[0] + normal[1] * product[1] + normal[2] * product[2]) / size;
    const scaled = area / (lengthOf(x, before, i) * lengthOf(x, i, after));
    if (scaled < lowest) {
      lowest = scaled;
    }
  }
  return lowest;
}

function aspectRatioOfQuadrilateral(x) {
  return longestTimesSum(x, 4) / (2 * (crossLength(x, 0, 1, 1, 2) + crossLength(x, 2, 3, 3, 0)));
}

const scratch = new Float64Array(18);

/** Keeps the least and the greatest of some angles. */
class Extremes {
  constructor() {
    this.reset();
  }

  reset() {
    this.smallest = 180;
    this.largest = 0;
  }

  add(angle) {
    if (angle < this.smallest) {
      this.smallest = angle;
    }
    if (angle > this.largest) {
      this.largest = angle;
    }
  }
}

const extremes = new Extremes();

function anglesOfPolygon(x, corners) {
  extremes.reset();
  for (let i = 0; i < corners; ++i) {
    const after = (i + 1) % corners;
    const before = (i + corners - 1) % corners;
    for (let axis = 0; axis < 3; ++axis) {
      scratch[axis] = x[3 * after + axis] - x[3 * i + axis];
      scratch[3 + axis] = x[3 * before + axis] - x[3 * i + axis];
    }
    extremes.add(angleBetween(scratch, 0, scratch, 3));
  }
  return extremes;
}

/** sqrt(2) J over the largest product of three lengths at a corner of a tetrahedron. */
function scaledJacobianOfCorners(x, p, q, r, s) {
  const pq = lengthOf(x, p, q);
  const pr = lengthOf(x, p, r);
  const ps = lengthOf(x, p, s);
  const qr = lengthOf(x, q, r);
  const qs = lengthOf(x, q, s);
  const rs = lengthOf(x, r, s);
  const jacobian = triple(x, p, q, r, s);
  const largest =
    Math.max(pq * pr * ps, pq * qr * qs, pr * qr * rs, ps * qs * rs, Math.abs(jacobian));
  return Math.SQRT2 * jacobian / largest;
}

function aspectRatioOfTetrahedron(x) {
  let longest = 0;
  for (const { ends } of SOLIDS.tetrahedron.edges) {
    longest = Math.max(longest, lengthOf(x, ends[0], ends[1]));
  }
  let areas = 0;
  for (const [a, b, c] of SOLIDS.tetrahedron.faces) {
    areas += crossLength(x, a, b, a, c) / 2;
  }
  const volume = Math.abs(triple(x, 0, 1, 2, 3)) / 6;
  return longest / (2 * Math.sqrt(6) * 3 * volume / areas);
}

/** The least triple product of unit edges in the corners. */
function leastOfUnitEdges(x, corners) {
  let lowest = Infinity;
  for (const [p, a, b, c] of corners) {
    const lengths = lengthOf(x, p, a) * lengthOf(x, p, b) * lengthOf(x, p, c);
    const scaled = triple(x, p, a, b, c) / lengths;
    if (scaled < lowest) {
      lowest = scaled;
    }
  }
  return lowest;
}

/** The principal axes of a hexahedron as the corners 1, 2 and 3 seen from corner 0. */
const axes = new Float64Array(12);

function findPrincipalAxes(x) {
  PRINCIPAL_AXES.forEach((pairs, number) => {
    for (let axis = 0; axis < 3; ++axis) {
      let sum = 0;
      for (const [from, to] of pairs) {
        sum += x[3 * to + axis] - x[3 * from + axis];
      }
      axes[3 * (number + 1) + axis] = sum;
    }
  });
  return axes;
}

const AXES_CORNER = [[0, 1, 2, 3]];

function scaledJacobianOfHexahedron(x) {
  const least = leastOfUnitEdges(x, SOLID_CORNERS.hexahedron);
  const ofAxes = leastOfUnitEdges(findPrincipalAxes(x), AXES_CORNER);
  return ofAxes < least ? ofAxes : least;
}

function aspectRatioOfHexahedron(x) {
  findPrincipalAxes(x);
  const lengths = [lengthOf(axes, 0, 1), lengthOf(axes, 0, 2), lengthOf(axes, 0, 3)];
  return Math.max(...lengths) / Math.min(...lengths);
}

const TETRAHEDRA_OF_BASE = [[0, 1, 2, 4], [0, 2, 3, 4], [0, 1, 3, 4], [1, 2, 3, 4]];

function scaledJacobianOfPyramid(x) {
  let least = NaN;
  TETRAHEDRA_OF_BASE.forEach(([p, q, r, s], number) => {
    const scaled = Math.SQRT2 * scaledJacobianOfCorners(x, p, q, r, s);
    if (number === 0 || scaled < least) {
      least = scaled;
    }
  });
  if (least <= 0) {
    return 0;
  }
  return least < 1 ? least : 2 - least;
}

function edgeRatio(x, { edges }) {
  let longest = 0;
  let shortest = Infinity;
  for (const { ends } of edges) {
    const length = lengthOf(x, ends[0], ends[1]);
    longest = Math.max(longest, length);
    shortest = Math.min(shortest, length);
  }
  return longest / shortest;
}

/** The angles between the mean planes of the faces at each edge, inside the cell. */
function dihedralAngles(x, { faces, edges }) {
  faces.forEach((c, number) => {
    if (c.length === 3) {
      cross(x, c[0], c[1], c[0], c[2], scratch, 3 * number);
    } else {
      cross(x, c[0], c[2], c[1], c[3], scratch, 3 * number);
    }
  });
  extremes.reset();
  for (const edge of edges) {
    extremes.add(180 - angleBetween(scratch, 3 * edge.faces[0], scratch, 3 * edge.faces[1]));
  }
  return extremes;
}

/**
 * The volume by the theorem of Gauss, from a corner of the cell so that one far from the origin loses no
 * digits. A face of four corners counts as the mean of its two cuts into triangles.
 */
function volume(x, { faces }) {
  let sixfold = 0;
  for (const [a, b, c, d] of faces) {
    sixfold += d === undefined
      ? triple(x, 0, a, b, c)
      : (triple(x, 0, a, b, c) + triple(x, 0, a, c, d) +
         triple(x, 0, a, b, d) + triple(x, 0, b, c, d)) / 2;
  }
  return sixfold / 6;
}

function polygon(corners, scaledJacobian, aspectRatio, size) {
  return {
    'scaled Jacobian': scaledJacobian,
    'aspect ratio': aspectRatio,
    'smallest angle': (x) => anglesOfPolygon(x, corners).smallest,
    'largest angle': (x) => anglesOfPolygon(x, corners).largest,
    size,
  };
}

function solid(shape, scaledJacobian, aspectRatio) {
  const facts = SOLIDS[shape];
  return {
    'scaled Jacobian': scaledJacobian,
    'aspect ratio': aspectRatio ?? ((x) => edgeRatio(x, facts)),
    'smallest angle': (x) => dihedralAngles(x, facts).smallest,
    'largest angle': (x) => dihedralAngles(x, facts).largest,
    size: (x) => volume(x, facts),
  };
}

const DEFINITIONS = {
  line: { size: (x) => lengthOf(x, 0, 1) },
  triangle: polygon(3, scaledJacobianOfTriangle, aspectRatioOfTriangle,
    (x) => crossLength(x, 0, 1, 0, 2) / 2),
  quadrilateral: polygon(4, scaledJacobianOfQuadrilateral, aspectRatioOfQuadrilateral,
    (x) => crossLength(x, 0, 2, 1, 3) / 2),
  tetrahedron: solid('tetrahedron', (x) => scaledJacobianOfCorners(x, 0, 1, 2, 3),
    aspectRatioOfTetrahedron),
  hexahedron: solid('hexahedron', scaledJacobianOfHexahedron, aspectRatioOfHexahedron),
  prism: solid('prism', (x) => 2 / SQRT3 * leastOfUnitEdges(x, SOLID_CORNERS.prism)),
  pyramid: solid('pyramid', scaledJacobianOfPyramid),
};

function definitionOf(shape, nodesPerCell, measure) {
  if (!Object.hasOwn(DEFINITIONS, shape) || !NODE_COUNTS[shape].includes(nodesPerCell)) {
    return undefined;
  }
  return DEFINITIONS[shape][measure];
}

/** Copies the corners of a cell; false when one is no node or has no finite coordinates. */
function gather(coordinates, nodes, begin, corners, x) {
  for (let corner = 0; corner < corners; ++corner) {
    const node = nodes[begin + corner];
    for (let axis = 0; axis < 3; ++axis) {
      const value = coordinates[3 * node + axis]; // undefined beyond the last node
      if (!Number.isFinite(value)) {
        return false;
      }
      x[3 * corner + axis] = value;
    }
  }
  return true;
}

/**
 * Measures the cells of one group.
 * @param {Float64Array} coordinates three of each node
 * @param {string} shape such as "tetrahedron"
 * @param {number} nodesPerCell
 * @param {Int32Array} nodes of the cells, one after the other
 * @param {string} measure one of MEASURES; "size" is the length, the area or the volume
 * @returns {Float32Array} one value a cell; NaN where the measure is not defined, nodes do not exist or
 *   coordinates are not finite; UNMEASURABLE where a ratio to no size is asked for
 */
export function measureCells(coordinates, shape, nodesPerCell, nodes, measure) {
  const cells = nodesPerCell > 0 ? Math.floor(nodes.length / nodesPerCell) : 0;
  const values = new Float32Array(cells).fill(NaN);
  const valueOf = definitionOf(shape, nodesPerCell, measure);
  if (!valueOf) {
    return values;
  }
  const none = measure === 'size' ? NaN : UNMEASURABLE;
  const x = new Float64Array(3 * CORNERS[shape]);
  for (let cell = 0; cell < cells; ++cell) {
    if (gather(coordinates, nodes, cell * nodesPerCell, CORNERS[shape], x)) {
      const value = valueOf(x);
      values[cell] = Number.isFinite(value) ? value : none;
    }
  }
  return values;
}
