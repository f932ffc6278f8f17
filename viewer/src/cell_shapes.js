// What cells of each shape look like: their faces, edges and the triangles that draw them. Nodes are in the order
// of VTK's cells; boundary faces are counter-clockwise seen from outside.

/** Faces by their corners, and the edges in the order of the nodes in their middle. */
const SOLIDS = {
  tetrahedron: {
    corners: 4,
    faces: [[0, 1, 3], [1, 2, 3], [2, 0, 3], [0, 2, 1]],
    edges: [[0, 1], [1, 2], [2, 0], [0, 3], [1, 3], [2, 3]],
    middles: { 4: 0, 10: 6 },
    centres: {},
  },
  hexahedron: {
    corners: 8,
    faces: [[0, 4, 7, 3], [1, 2, 6, 5], [0, 1, 5, 4], [3, 7, 6, 2], [0, 3, 2, 1], [4, 5, 6, 7]],
    edges: [[0, 1], [1, 2], [2, 3], [3, 0], [4, 5], [5, 6], [6, 7], [7, 4], [0, 4], [1, 5], [2, 6], [3, 7]],
    middles: { 8: 0, 20: 12, 24: 12, 27: 12 },
    centres: { 24: [20, 21, 22, 23], 27: [20, 21, 22, 23, 24, 25] },
  },
  prism: {
    corners: 6,
    faces: [[0, 2, 1], [3, 4, 5], [0, 1, 4, 3], [1, 2, 5, 4], [2, 0, 3, 5]],
    edges: [[0, 1], [1, 2], [2, 0], [3, 4], [4, 5], [5, 3], [0, 3], [1, 4], [2, 5]],
    middles: { 6: 0, 12: 6, 15: 9, 18: 9 },
    centres: { 18: [undefined, undefined, 15, 16, 17] },
  },
  pyramid: {
    corners: 5,
    faces: [[0, 3, 2, 1], [0, 1, 4], [1, 2, 4], [2, 3, 4], [3, 0, 4]],
    edges: [[0, 1], [1, 2], [2, 3], [3, 0], [0, 4], [1, 4], [2, 4], [3, 4]],
    middles: { 5: 0, 13: 8, 19: 8 },
    centres: { 19: [13, 14, 15, 16, 17] },
  },
};

/** How faces are drawn: the way round them, and the plane parts that have all of their nodes. */
const FACES = {
  triangle: {
    3: { loop: [0, 1, 2], parts: [[0, 1, 2]] },
    6: { loop: [0, 3, 1, 4, 2, 5], parts: [[0, 3, 5], [3, 1, 4], [5, 4, 2], [3, 4, 5]] },
    7: {
      loop: [0, 3, 1, 4, 2, 5],
      parts: [[0, 3, 6], [3, 1, 6], [1, 4, 6], [4, 2, 6], [2, 5, 6], [5, 0, 6]],
    },
  },
  quadrilateral: {
    4: { loop: [0, 1, 2, 3], parts: [[0, 1, 2, 3]] },
    6: { loop: [0, 4, 1, 2, 5, 3], parts: [[0, 4, 5, 3], [4, 1, 2, 5]] },
    8: {
      loop: [0, 4, 1, 5, 2, 6, 3, 7],
      parts: [[0, 4, 7], [1, 5, 4], [2, 6, 5], [3, 7, 6], [4, 5, 6, 7]],
    },
    9: {
      loop: [0, 4, 1, 5, 2, 6, 3, 7],
      parts: [[0, 4, 8, 7], [4, 1, 5, 8], [8, 5, 2, 6], [7, 8, 6, 3]],
    },
  },
};

const LINES = { 2: [[0, 1]], 3: [[0, 2], [2, 1]], 4: [[0, 2], [2, 3], [3, 1]] };

function faceOf(solid, nodesPerCell, number) {
  const corners = solid.faces[number];
  const nodes = [...corners];
  corners.forEach((from, i) => {
    const to = corners[(i + 1) % corners.length];
    const edge = solid.edges.findIndex(([a, b]) => (a === from && b === to) || (a === to && b === from));
    if (edge < solid.middles[nodesPerCell]) {
      nodes.push(solid.corners + edge);
    }
  });
  const centre = solid.centres[nodesPerCell]?.[number];
  if (centre !== undefined) {
    nodes.push(centre);
  }
  return { shape: corners.length === 3 ? 'triangle' : 'quadrilateral', corners, nodes };
}

/**
 * The faces of a volume element, or the one that a face is.
 * @returns {{shape: string, corners: number[], nodes: number[]}[]} places of nodes in the cell; none for unknown
 *   forms and for what has no faces
 */
export function facesOf(shape, nodesPerCell) {
  const solid = SOLIDS[shape];
  if (solid && nodesPerCell in solid.middles) {
    return solid.faces.map((_, number) => faceOf(solid, nodesPerCell, number));
  }
  const face = FACES[shape]?.[nodesPerCell];
  if (!face) {
    return [];
  }
  const nodes = Array.from({ length: nodesPerCell }, (_, i) => i);
  return [{ shape, corners: nodes.slice(0, shape === 'triangle' ? 3 : 4), nodes }];
}

export function isSolid(shape) {
  return shape in SOLIDS;
}

/** Whether the side from a to b lies on the way round a face, and so on an edge of the mesh. */
function liesOnLoop(loop, a, b) {
  const distance = (loop.indexOf(b) - loop.indexOf(a) + loop.length) % loop.length;
  return loop.includes(a) && loop.includes(b) && (distance === 1 || distance === loop.length - 1);
}

/**
 * The triangles that draw a face.
 * @returns {{nodes: number[], sides: number}[]} places in the face; bit i of `sides` says that the side from
 *   corner i to the next one is an edge of the mesh
 */
export function trianglesOf(shape, nodesPerFace) {
  const face = FACES[shape][nodesPerFace];
  const triangles = [];
  for (const part of face.parts) {
    for (let i = 2; i < part.length; ++i) {
      const nodes = [part[0], part[i - 1], part[i]];
      const sides = nodes.reduce((bits, node, side) =>
        bits | (liesOnLoop(face.loop, node, nodes[(side + 1) % 3]) ? 1 << side : 0), 0);
      triangles.push({ nodes, sides });
    }
  }
  return triangles;
}

/** The lines that outline a cell, as pairs of places of nodes; none for unknown forms. */
export function outlineOf(shape, nodesPerCell) {
  if (shape === 'line') {
    return LINES[nodesPerCell] ?? [];
  }
  const lines = new Map();
  for (const face of facesOf(shape, nodesPerCell)) {
    const { loop } = FACES[face.shape][face.nodes.length];
    loop.forEach((place, i) => {
      const pair = [face.nodes[place], face.nodes[loop[(i + 1) % loop.length]]];
      lines.set([...pair].sort((a, b) => a - b).join(), pair);
    });
  }
  return [...lines.values()];
}
