// A coarser surface, for as long as a large one is moved: drawing all of it would stutter where the processor draws.

/** How many triangles are drawn thirty times a second by a processor alone. */
export const MOST_MOVED = 12000;

/** For each node the first one that lies in the same cell of a grid over the ball of radius 1. */
function clustered(nodes, placed, resolution) {
  const first = new Map();
  const leaders = new Int32Array(placed.length / 3).fill(-1);
  const cell = (at) => Math.min(Math.floor(((placed[at] + 1) / 2) * resolution), resolution - 1);
  for (const node of nodes) {
    if (leaders[node] < 0) {
      const key = (cell(3 * node) * resolution + cell(3 * node + 1)) * resolution + cell(3 * node + 2);
      if (!first.has(key)) {
        first.set(key, node);
      }
      leaders[node] = first.get(key);
    }
  }
  return leaders;
}

function reduced(nodes, leaders) {
  const triangles = [];
  for (let i = 0; i < nodes.length; i += 3) {
    const [a, b, c] = [leaders[nodes[i]], leaders[nodes[i + 1]], leaders[nodes[i + 2]]];
    if (a !== b && b !== c && c !== a) {
      triangles.push(i / 3);
    }
  }
  const left = triangles.flatMap((i) => [0, 1, 2].map((corner) => leaders[nodes[3 * i + corner]]));
  return { triangles, nodes: Int32Array.from(left) };
}

/**
 * Draws nodes of a neighbourhood together until few triangles are left.
 * @param {Int32Array} nodes three a triangle
 * @param {Float32Array} placed coordinates within the ball of radius 1
 * @param {number} most triangles
 * @returns {{triangles: number[], nodes: Int32Array}} which triangles are left, and their nodes now
 */
export function coarsened(nodes, placed, most) {
  let resolution = 2 * Math.sqrt(most);
  for (;;) {
    const found = reduced(nodes, clustered(nodes, placed, Math.max(2, Math.floor(resolution))));
    if (found.triangles.length <= most || resolution < 4) {
      return found;
    }
    resolution *= Math.max(0.5, 0.95 * Math.sqrt(most / found.triangles.length));
  }
}
