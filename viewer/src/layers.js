// The layers of one document: each group of cells, its nodes, and the lines along which it bends.
import { outlineOf } from './cell_shapes.js';
import { coarsened, MOST_MOVED } from './coarse.js';
import { NO_VALUE, shareOf } from './colours.js';
import { counted, countedShapes } from './numbers.js';
import {
  centresOf, featureEdgesOf, neighboursOf, outerFacesOf, placeOf, trianglesOfGroup,
} from './surface.js';

/** Colours of what has no value, as shares of 1. */
const PLAIN_COLOURS = {
  elements: [0.72, 0.79, 0.86], faces: [0.87, 0.81, 0.68], edges: [0.85, 0.36, 0.12], nodes: [0.04, 0.43, 0.46],
};

/** How many triangles are drawn with their edges at first: more are a blur. */
const MOST_WIRED = 150000;

export class Layers {
  /**
   * @param {object} model a document of the report
   * @param {object} stage what draws: a Stage or Pictures
   */
  constructor(model, stage) {
    this.model = model;
    this.stage = stage;
    this.placed = stage.placed(model.mesh.nodes.coordinates);
    this.kept = new Map();
    this.neighbours = new Map();
    this.centres = new Map();
    this.all = this.#list();
    this.showFirst();
  }

  #list() {
    const layers = this.model.mesh.cells.flatMap((cells) => cells.groups.map((group, number) => ({
      name: `${cells.entity}/${number}`,
      entity: cells.entity,
      cells,
      number,
      kind: group.shape === 'line' ? 'lines' : 'surface',
      label: `${countedShapes(group.count, group.shape, cells.isSkin ? 'outer ' : '')} ` +
        `of ${group.nodesPerCell} nodes`,
      isVisible: false,
    })));
    const { count } = this.model.mesh.nodes;
    if (count) {
      layers.push({
        name: 'nodes', entity: 'nodes', kind: 'points', label: `${counted(count)} nodes`, isVisible: false,
      });
    }
    return layers;
  }

  /** Shows what a person looks for: the body, else its surface, its lines or its nodes. */
  showFirst() {
    for (const entity of ['elements', 'faces', 'edges', 'nodes']) {
      if (this.all.some((layer) => layer.entity === entity)) {
        this.showOnly(entity);
        return;
      }
    }
  }

  cellsOf(entity) {
    return this.model.mesh.cells.find((cells) => cells.entity === entity);
  }

  find(name) {
    return this.all.find((layer) => layer.name === name);
  }

  setVisible(name, isVisible) {
    this.#show((layer) => (layer.name === name ? isVisible : layer.isVisible));
  }

  /** Shows and hides layers, all at once: what is seen of one depends on the others. */
  #show(isWanted) {
    const changed = this.all.filter((layer) => layer.isVisible !== isWanted(layer));
    changed.forEach((layer) => { layer.isVisible = !layer.isVisible; });
    if (changed.length) {
      this.featureLines?.clear();
    }
    if (changed.some((layer) => layer.entity === 'elements')) {
      this.#openBody();
    }
    for (const layer of this.all) {
      if (layer.isVisible && !layer.nodes) {
        this.#build(layer);
      }
      this.stage.setVisible(layer.name, layer.isVisible);
    }
    this.#showFeatures();
  }

  /** Has elements show the faces that a hidden shape leaves open. */
  #openBody() {
    for (const layer of this.all.filter(({ entity, cells }) => entity === 'elements' && !cells.isSkin)) {
      layer.nodes = null;
    }
  }

  /** For each cell of an entity whether it is there; null for all. */
  #keptOf(layer) {
    const behind = this.kept.get(layer.entity);
    const hidden = this.all.filter((other) => other.entity === layer.entity && !other.isVisible);
    if (layer.entity !== 'elements' || !hidden.length || layer.cells.isSkin) {
      return behind ?? null;
    }
    const count = layer.cells.groups.reduce((sum, group) => sum + group.count, 0);
    const kept = behind ? behind.slice() : new Uint8Array(count).fill(1);
    for (const other of hidden) {
      const { first, group } = this.#groupOf(other);
      kept.fill(0, first, first + group.count);
    }
    return kept;
  }

  /** Shows the cells of one kind alone, whose values are looked at. */
  showOnly(entity) {
    if (this.all.some((layer) => layer.entity === entity)) {
      this.#show((layer) => layer.entity === entity);
    }
  }

  #build(layer) {
    if (layer.kind === 'points') {
      const all = Int32Array.from({ length: this.model.mesh.nodes.count }, (_, node) => node);
      layer.nodes = this.plane
        ? all.filter((node) => this.#distance(this.model.mesh.nodes.coordinates, node) <= 0) : all;
      layer.owners = layer.nodes;
    } else if (layer.kind === 'lines') {
      this.#buildLines(layer);
    } else {
      this.#buildSurface(layer);
    }
    this.stage.put(layer.name, {
      kind: layer.kind, positions: this.#positionsOf(layer.nodes), corners: layer.corners ?? null,
    });
    this.stage.setVisible(layer.name, layer.isVisible);
    this.#paint(layer);
    this.#wire();
    if (this.hasCoarse) {
      // Not for each step of a plane that moves.
      clearTimeout(this.coarsening);
      this.coarsening = setTimeout(() => this.addCoarse(), 300);
    }
  }

  /** Makes coarser forms of the surfaces that are shown, where these are too large to be moved smoothly. */
  addCoarse() {
    this.hasCoarse = true;
    const shown = this.all.filter((layer) => layer.isVisible && layer.kind === 'surface');
    const total = shown.reduce((sum, layer) => sum + layer.owners.length, 0);
    for (const layer of total > MOST_MOVED ? shown : []) {
      const most = Math.floor((MOST_MOVED * layer.owners.length) / total);
      const { triangles, nodes } = coarsened(layer.nodes, this.placed, most);
      this.stage.putCoarse(layer.name, {
        positions: this.#positionsOf(nodes),
        corners: Uint8Array.from(nodes, (_, i) => layer.corners[3 * triangles[(i / 3) | 0] + (i % 3)]),
        picked: Int32Array.from(nodes, (_, i) => 3 * triangles[(i / 3) | 0] + (i % 3)),
      });
    }
  }

  #positionsOf(nodes) {
    const positions = new Float32Array(3 * nodes.length);
    for (let i = 0; i < nodes.length; ++i) {
      const from = 3 * nodes[i];
      positions[3 * i] = this.placed[from];
      positions[3 * i + 1] = this.placed[from + 1];
      positions[3 * i + 2] = this.placed[from + 2];
    }
    return positions;
  }

  #buildLines(layer) {
    const { group, first } = this.#groupOf(layer);
    const kept = this.kept.get(layer.entity);
    const outline = outlineOf(group.shape, group.nodesPerCell);
    const nodes = [];
    const owners = [];
    for (let cell = 0; cell < group.count; ++cell) {
      if (!kept || kept[first + cell]) {
        for (const pair of outline) {
          pair.forEach((place) => nodes.push(group.nodes[cell * group.nodesPerCell + place]));
          owners.push(first + cell);
        }
      }
    }
    layer.nodes = Int32Array.from(nodes);
    layer.owners = Int32Array.from(owners);
  }

  #groupOf(layer) {
    const before = layer.cells.groups.slice(0, layer.number);
    return {
      group: layer.cells.groups[layer.number], first: before.reduce((sum, group) => sum + group.count, 0),
    };
  }

  #buildSurface(layer) {
    const { cells, entity } = layer;
    const kept = this.#keptOf(layer);
    if (entity === 'elements' && !cells.isSkin) {
      cells.outer ??= outerFacesOf(cells);
    }
    const triangles = trianglesOfGroup(cells, layer.number, kept, kept && this.#neighboursOf(cells));
    layer.nodes = triangles.nodes;
    layer.owners = triangles.cells;
    layer.sides = triangles.sides;
    layer.corners = new Uint8Array(triangles.nodes.length);
    for (let i = 0; i < layer.corners.length; ++i) {
      layer.corners[i] = (i % 3) | (triangles.sides[(i / 3) | 0] << 2);
    }
  }

  #neighboursOf(cells) {
    if (cells.isSkin || cells.entity !== 'elements') {
      return null;
    }
    if (!this.neighbours.has(cells.entity)) {
      this.neighbours.set(cells.entity, neighboursOf(cells));
    }
    return this.neighbours.get(cells.entity);
  }

  /**
   * Colours everything by a field, or plainly.
   * @param {object|null} field
   * @param {object|null} scale as scaleOf() gives it
   * @param {object|null} texture of the stage
   */
  colourBy(field, scale, texture) {
    this.colouring = field && { field, scale, texture };
    this.all.filter((layer) => layer.nodes).forEach((layer) => this.#paint(layer));
  }

  #fieldOf(layer) {
    const { field } = this.colouring;
    const own = field.entity === 'nodes' ? this.model.mesh.nodes.fields
      : layer.entity === field.entity ? layer.cells.fields : [];
    return own.find((other) => other.name === field.name && other.role === field.role);
  }

  #paint(layer) {
    const own = this.colouring && this.#fieldOf(layer);
    const colour = PLAIN_COLOURS[layer.entity];
    if (!own) {
      this.stage.paint(layer.name, { colour });
      return;
    }
    const { field, scale, texture } = this.colouring;
    const ofNodes = field.entity === 'nodes';
    const perCell = layer.kind === 'surface' ? 3 : layer.kind === 'lines' ? 2 : 1;
    const shares = new Float32Array(layer.nodes.length);
    for (let i = 0; i < shares.length; ++i) {
      const index = ofNodes ? layer.nodes[i] : layer.owners[(i / perCell) | 0];
      shares[i] = index < own.values.length ? shareOf(scale, own.values[index]) : NO_VALUE;
    }
    this.stage.paint(layer.name, { colour, shares, texture });
  }

  /** Whether so little is shown that the edges of cells can be told apart. */
  get isFine() {
    const shown = this.all.filter((layer) => layer.isVisible && layer.kind === 'surface');
    return shown.reduce((sum, layer) => sum + layer.owners.length, 0) <= MOST_WIRED;
  }

  setWire(isWanted, colour, strength) {
    this.wire = isWanted ? strength : 0;
    this.wireColour = colour;
    this.#wire();
  }

  #wire() {
    if (this.wireColour) {
      this.stage.setWire(this.wire, this.wireColour);
    }
  }

  setFeatures(isWanted, colour) {
    this.features = isWanted;
    this.featureColour = colour;
    this.#showFeatures();
  }

  /** Lines of each kind of cells, made when they are wanted first: it takes a moment. */
  #showFeatures() {
    for (const entity of ['elements', 'faces']) {
      const layers = this.all.filter((layer) => layer.entity === entity && layer.kind === 'surface');
      const name = `feature/${entity}`;
      if (!this.features || !layers.some((layer) => layer.isVisible)) {
        this.stage.setVisible(name, false);
      } else {
        this.#buildFeatures(name, layers);
      }
    }
  }

  #buildFeatures(name, layers) {
    this.featureLines ??= new Map();
    if (!this.featureLines.has(name)) {
      const surfaces = layers.filter((layer) => layer.isVisible).map((layer) =>
        (this.kept.size ? trianglesOfGroup(layer.cells, layer.number) : layer));
      this.featureLines.set(name, featureEdgesOf(surfaces, this.model.mesh.nodes.coordinates));
    }
    const nodes = this.#onKeptSide(this.featureLines.get(name));
    this.stage.put(name, { kind: 'lines', positions: this.#positionsOf(nodes) });
    this.stage.paint(name, { colour: this.featureColour });
  }

  #onKeptSide(lines) {
    if (!this.plane) {
      return lines;
    }
    const behind = [];
    for (let i = 0; i < lines.length; i += 2) {
      const ends = [0, 1].map((end) => this.#distance(this.model.mesh.nodes.coordinates, lines[i + end]));
      // Lines in the plane itself belong to what it leaves away.
      if (Math.max(...ends) <= 0 && Math.min(...ends) < 0) {
        behind.push(lines[i], lines[i + 1]);
      }
    }
    return Int32Array.from(behind);
  }

  #distance(points, i) {
    const { normal, offset } = this.plane;
    return normal[0] * points[3 * i] + normal[1] * points[3 * i + 1] + normal[2] * points[3 * i + 2] - offset;
  }

  /**
   * Leaves away the cells before a plane.
   * @param {{normal: number[], offset: number}|null} plane in the unit of the mesh; what has a larger product
   *   with the normal than the offset is before it
   */
  setClip(plane) {
    this.plane = plane;
    this.kept.clear();
    for (const cells of plane ? this.model.mesh.cells : []) {
      const centres = this.#centresOf(cells);
      const kept = new Uint8Array(centres.length / 3);
      for (let cell = 0; cell < kept.length; ++cell) {
        kept[cell] = this.#distance(centres, cell) <= 0 ? 1 : 0;
      }
      this.kept.set(cells.entity, kept);
    }
    for (const layer of this.all.filter((other) => other.nodes)) {
      layer.nodes = null;
      if (layer.isVisible) {
        this.#build(layer);
      }
    }
    this.#showFeatures();
  }

  #centresOf(cells) {
    if (!this.centres.has(cells.entity)) {
      this.centres.set(cells.entity, centresOf(cells, this.model.mesh.nodes.coordinates));
    }
    return this.centres.get(cells.entity);
  }

  /** The cell or node at a place of the canvas, as {entity, index, node, point}; null for none. */
  pick(x, y) {
    const hit = this.stage.pick(x, y);
    const layer = hit && this.find(hit.layer);
    if (!layer) {
      return null;
    }
    const perCell = layer.kind === 'surface' ? 3 : layer.kind === 'lines' ? 2 : 1;
    const corners = layer.nodes.slice(hit.index * perCell, (hit.index + 1) * perCell);
    return {
      entity: layer.entity, index: layer.owners[hit.index], node: this.#nearest(corners, hit.point),
      point: hit.point,
    };
  }

  #nearest(nodes, point) {
    const { coordinates } = this.model.mesh.nodes;
    const distance = (node) => Math.hypot(...point.map((at, axis) => at - coordinates[3 * node + axis]));
    return [...nodes].reduce((best, node) => (distance(node) < distance(best) ? node : best));
  }

  pointOf(node) {
    return [...this.model.mesh.nodes.coordinates.subarray(3 * node, 3 * node + 3)];
  }

  /** A node, or a cell by its outline, as something to be marked. */
  outlineOf(entity, index) {
    if (entity === 'nodes') {
      return { points: [this.pointOf(index)], lines: [] };
    }
    const { group, place } = placeOf(this.cellsOf(entity), index);
    const nodes = [...group.nodes.subarray(place * group.nodesPerCell, (place + 1) * group.nodesPerCell)];
    return {
      points: nodes.map((node) => this.pointOf(node)), lines: outlineOf(group.shape, group.nodesPerCell),
    };
  }
}
