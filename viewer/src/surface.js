// What of a mesh is seen: the faces at which kept cells end, as triangles.
import { facesOf, isSolid, trianglesOf } from './cell_shapes.js';

/** The faces of a group with what is needed to draw and to compare them. */
function facesOfGroup(group) {
  return facesOf(group.shape, group.nodesPerCell).map((face) => ({
    ...face,
    triangles: trianglesOf(face.shape, face.nodes.length).map(({ nodes, sides }) => ({
      nodes: nodes.map((place) => face.nodes[place]),
      sides,
    })),
  }));
}

/** For each group its faces and where its cells and faces begin in the count of all. */
function layoutOf(cells) {
  let firstCell = 0;
  let firstFace = 0;
  return cells.groups.map((group) => {
    const placed = { group, faces: facesOfGroup(group), firstCell, firstFace };
    firstCell += group.count;
    firstFace += group.count * placed.faces.length;
    return placed;
  });
}

function hash(a, b, c) {
  let bits = Math.imul(a, 0x9e3779b1) ^ Math.imul(b + 0x7f4a7c15, 0x85ebca77) ^ Math.imul(c, 0xc2b2ae3d);
  bits ^= bits >>> 15;
  bits = Math.imul(bits, 0x2c1b3c6d);
  return (bits ^ (bits >>> 13)) >>> 0;
}

/** The three least corners of a face in ascending order: those of one mesh share four or none. */
function keyOf(nodes, begin, corners, key) {
  let a = nodes[begin + corners[0]];
  let b = nodes[begin + corners[1]];
  let c = nodes[begin + corners[2]];
  let last = corners.length > 3 ? nodes[begin + corners[3]] : 0x7fffffff;
  let swap;
  if (a > b) { swap = a; a = b; b = swap; }
  if (c > last) { swap = c; c = last; last = swap; }
  if (a > c) { swap = a; a = c; c = swap; }
  if (b > last) { swap = b; b = last; last = swap; }
  if (b > c) { swap = b; b = c; c = swap; }
  key[0] = a;
  key[1] = b;
  key[2] = c;
  key[3] = last;
}

/**
 * The cell behind each face of volume elements: faces are counted cell after cell.
 * @returns {Int32Array} the other cell, or -1 on the outside; where more than two meet, the first two are
 *   neighbours
 */
export function neighboursOf(cells) {
  const layout = layoutOf(cells);
  const last = layout.at(-1);
  const size = last ? last.firstFace + last.group.count * last.faces.length : 0;
  const neighbours = new Int32Array(size).fill(-1);
  let slots = 16;
  while (slots < 2 * size) {
    slots *= 2;
  }
  const open = new Int32Array(slots).fill(-1); // the face that waits for its other side
  const keys = new Int32Array(4 * size);
  const owners = new Int32Array(size);
  const key = new Int32Array(4);
  for (const { group, faces, firstCell, firstFace } of layout) {
    let face = firstFace;
    // Cells that are faces themselves have nothing behind them, and hide nothing.
    for (let cell = 0; cell < group.count && isSolid(group.shape); ++cell) {
      for (const { corners } of faces) {
        keyOf(group.nodes, cell * group.nodesPerCell, corners, key);
        keys.set(key, 4 * face);
        owners[face] = firstCell + cell;
        let slot = hash(key[0], key[1], key[2]) & (slots - 1);
        let other = open[slot];
        while (other >= 0 && (keys[4 * other] !== key[0] || keys[4 * other + 1] !== key[1] ||
            keys[4 * other + 2] !== key[2] || keys[4 * other + 3] !== key[3])) {
          slot = (slot + 1) & (slots - 1);
          other = open[slot];
        }
        if (other < 0) {
          open[slot] = face;
        } else if (neighbours[other] < 0) {
          neighbours[other] = firstCell + cell;
          neighbours[face] = owners[other];
        }
        ++face;
      }
    }
  }
  return neighbours;
}

/** For each cell the bits of its faces that nothing lies behind. */
export function outerFacesOf(cells) {
  const neighbours = neighboursOf(cells);
  const count = cells.groups.reduce((sum, group) => sum + group.count, 0);
  const outer = new Uint8Array(count);
  let face = 0;
  for (const { group, faces, firstCell } of layoutOf(cells)) {
    for (let cell = firstCell; cell < firstCell + group.count; ++cell) {
      for (let i = 0; i < faces.length; ++i, ++face) {
        outer[cell] |= neighbours[face] < 0 ? 1 << i : 0;
      }
    }
  }
  return outer;
}

/** Which faces of a cell are drawn: those at which what is kept ends. */
function visibility(cells, kept, neighbours) {
  if (cells.isSkin || !cells.groups.some((group) => isSolid(group.shape))) {
    return (cell) => (!kept || kept[cell] ? 0xff : 0);
  }
  if (!kept) {
    return (cell) => cells.outer[cell];
  }
  return (cell, firstFace, faces) => {
    let bits = 0;
    for (let i = 0; kept[cell] && i < faces; ++i) {
      const other = neighbours[firstFace + i];
      bits |= other < 0 || !kept[other] ? 1 << i : 0;
    }
    return bits;
  };
}

/** A buffer that grows: how much is seen is known at the end. */
class Growing {
  constructor(Type) {
    this.values = new Type(4096);
    this.length = 0;
  }

  push(value) {
    if (this.length === this.values.length) {
      const wider = new this.values.constructor(2 * this.length);
      wider.set(this.values);
      this.values = wider;
    }
    this.values[this.length++] = value;
  }

  done() {
    return this.values.slice(0, this.length);
  }
}

/**
 * The triangles that draw one group of cells.
 * @param {object} cells of a mesh, with `outer` where they are volume elements
 * @param {number} number which group
 * @param {Uint8Array|null} kept for each cell whether it is there; null for all
 * @param {Int32Array|null} neighbours needed where cells are left out
 * @returns {{nodes: Int32Array, sides: Uint8Array, cells: Int32Array}} three nodes a triangle, which sides are
 *   edges of the mesh, and the cell among all of the entity
 */
export function trianglesOfGroup(cells, number, kept = null, neighbours = null) {
  const { group, faces, firstCell, firstFace } = layoutOf(cells)[number];
  const bitsOf = visibility(cells, kept, neighbours);
  const nodes = new Growing(Int32Array);
  const sides = new Growing(Uint8Array);
  const owners = new Growing(Int32Array);
  for (let cell = 0; cell < group.count; ++cell) {
    const bits = bitsOf(firstCell + cell, firstFace + cell * faces.length, faces.length);
    const begin = cell * group.nodesPerCell;
    for (let face = 0; bits >> face && face < faces.length; ++face) {
      if ((bits >> face) & 1) {
        for (const triangle of faces[face].triangles) {
          nodes.push(group.nodes[begin + triangle.nodes[0]]);
          nodes.push(group.nodes[begin + triangle.nodes[1]]);
          nodes.push(group.nodes[begin + triangle.nodes[2]]);
          sides.push(triangle.sides);
          owners.push(firstCell + cell);
        }
      }
    }
  }
  return { nodes: nodes.done(), sides: sides.done(), cells: owners.done() };
}

/** The middle of each cell of an entity, 3 values each, by its corners and other nodes alike. */
export function centresOf(cells, coordinates) {
  const count = cells.groups.reduce((sum, group) => sum + group.count, 0);
  const centres = new Float64Array(3 * count); // far from the origin 32 bits do not tell cells apart
  let cell = 0;
  for (const group of cells.groups) {
    for (let i = 0; i < group.count; ++i, ++cell) {
      for (let place = 0; place < group.nodesPerCell; ++place) {
        const node = group.nodes[i * group.nodesPerCell + place];
        for (let axis = 0; axis < 3; ++axis) {
          centres[3 * cell + axis] += coordinates[3 * node + axis] / group.nodesPerCell;
        }
      }
    }
  }
  return centres;
}

/** The group that a cell lies in, and its place there. */
export function placeOf(cells, cell) {
  let first = 0;
  for (const [number, group] of cells.groups.entries()) {
    if (cell < first + group.count) {
      return { number, group, place: cell - first };
    }
    first += group.count;
  }
  return null;
}

/**
 * Lines along which a surface bends by more than an angle, ends, or meets others.
 * @param {{nodes: Int32Array, sides: Uint8Array}[]} surfaces
 * @param {Float64Array} coordinates
 * @param {number} degrees
 * @returns {Int32Array} two nodes a line
 */
export function featureEdgesOf(surfaces, coordinates, degrees = 30) {
  const total = surfaces.reduce((sum, surface) => sum + surface.nodes.length, 0);
  let slots = 16;
  while (slots < 2 * total) {
    slots *= 2;
  }
  const lines = { at: new Int32Array(slots).fill(-1), from: [], to: [], normals: [], faces: [], isBent: [] };
  const limit = Math.cos((degrees * Math.PI) / 180);
  for (const surface of surfaces) {
    for (let triangle = 0; triangle < surface.sides.length; ++triangle) {
      const normal = normalOf(coordinates, surface.nodes, 3 * triangle);
      for (let side = 0; normal && side < 3; ++side) {
        if ((surface.sides[triangle] >> side) & 1) {
          const a = surface.nodes[3 * triangle + side];
          const b = surface.nodes[3 * triangle + ((side + 1) % 3)];
          addSide(lines, slots - 1, Math.min(a, b), Math.max(a, b), normal, limit);
        }
      }
    }
  }
  const found = new Growing(Int32Array);
  lines.from.forEach((from, i) => {
    if (lines.isBent[i] || lines.faces[i] !== 2) {
      found.push(from);
      found.push(lines.to[i]);
    }
  });
  return found.done();
}

function addSide(lines, mask, from, to, normal, limit) {
  let slot = hash(from, to, 0) & mask;
  let line = lines.at[slot];
  while (line >= 0 && (lines.from[line] !== from || lines.to[line] !== to)) {
    slot = (slot + 1) & mask;
    line = lines.at[slot];
  }
  if (line < 0) {
    lines.at[slot] = lines.from.length;
    lines.from.push(from);
    lines.to.push(to);
    lines.normals.push(normal);
    lines.faces.push(1);
    lines.isBent.push(false);
    return;
  }
  const other = lines.normals[line];
  ++lines.faces[line];
  lines.isBent[line] ||= other[0] * normal[0] + other[1] * normal[1] + other[2] * normal[2] < limit;
}

function normalOf(coordinates, nodes, begin) {
  const [a, b, c] = [0, 1, 2].map((corner) => 3 * nodes[begin + corner]);
  const u = [0, 1, 2].map((axis) => coordinates[b + axis] - coordinates[a + axis]);
  const v = [0, 1, 2].map((axis) => coordinates[c + axis] - coordinates[a + axis]);
  const normal = [u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]];
  const length = Math.hypot(...normal);
  return length > 0 ? normal.map((part) => part / length) : null;
}
