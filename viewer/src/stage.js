// Draws layers of triangles, lines and points with WebGL, and looks at them. It draws when something changed and
// not otherwise, so that an open page costs nothing.
import * as THREE from 'three';
import { OrbitControls } from 'three/addons/controls/OrbitControls.js';

THREE.ColorManagement.enabled = false; // what is given as a colour is what is seen

const VERTEX = `
in vec3 position;
in float share;
in float corner;
uniform mat4 modelViewMatrix;
uniform mat4 projectionMatrix;
uniform float pointSize;
out vec3 seen;
out vec3 corners;
out float value;
flat out int sides;
void main() {
  int bits = int(corner + 0.5);
  int number = bits & 3;
  corners = vec3(number == 0, number == 1, number == 2);
  sides = bits >> 2;
  value = share;
  vec4 place = modelViewMatrix * vec4(position, 1.0);
  seen = place.xyz;
  gl_Position = projectionMatrix * place;
  gl_PointSize = pointSize;
}`;

const COLOUR = `
precision highp float;
in vec3 seen;
in vec3 corners;
in float value;
flat in int sides;
uniform vec3 colour;
uniform bool isColoured;
uniform sampler2D ramp;
out vec4 result;
vec3 ownColour() {
  if (!isColoured) return colour;
  return value > 2.0 ? vec3(0.59) : texture(ramp, vec2(value, 0.5)).rgb;
}`;

const SURFACE = `${COLOUR}
uniform float wire;
uniform vec3 wireColour;
void main() {
  vec3 normal = normalize(cross(dFdx(seen), dFdy(seen)));
  vec3 lamp = normalize(vec3(0.35, 0.55, 1.0));
  normal *= sign(normal.z);
  float light = 0.62 + 0.32 * max(dot(normal, lamp), 0.0) + 0.1 * normal.y;
  vec3 lit = ownColour() * light * 1.04;
  // The side from corner i lies where the corner before it has no share.
  vec3 change = max(fwidth(corners), vec3(1e-6));
  vec3 away = corners / change;
  float nearest = 1e3;
  if ((sides & 1) != 0) nearest = min(nearest, away.z);
  if ((sides & 2) != 0) nearest = min(nearest, away.x);
  if ((sides & 4) != 0) nearest = min(nearest, away.y);
  // Where cells are as small as the lines, these would hide them.
  float pixels = 1.0 / max(change.x, max(change.y, change.z));
  float line = wire * smoothstep(1.5, 12.0, pixels) * (1.0 - smoothstep(0.35, 1.35, nearest));
  result = vec4(mix(lit, wireColour, line), 1.0);
}`;

const PLAIN = `${COLOUR}
uniform bool isRound;
void main() {
  if (isRound && length(gl_PointCoord - 0.5) > 0.5) discard;
  result = vec4(ownColour(), 1.0);
}`;

function materialOf(kind) {
  return new THREE.RawShaderMaterial({
    glslVersion: THREE.GLSL3,
    vertexShader: VERTEX,
    fragmentShader: kind === 'surface' ? SURFACE : PLAIN,
    side: THREE.DoubleSide,
    polygonOffset: kind === 'surface',
    polygonOffsetFactor: 1,
    polygonOffsetUnits: 1,
    uniforms: {
      pointSize: { value: 5 },
      isRound: { value: kind === 'points' },
      colour: { value: new THREE.Color(0.7, 0.75, 0.8) },
      isColoured: { value: false },
      ramp: { value: null },
      wire: { value: 0 },
      wireColour: { value: new THREE.Color(0, 0, 0) },
    },
  });
}

const OBJECTS = { surface: THREE.Mesh, lines: THREE.LineSegments, points: THREE.Points };

/** The box of the finite ones of some coordinates, three each. */
function boxOf(coordinates) {
  const box = new THREE.Box3();
  const point = new THREE.Vector3();
  for (let i = 0; i + 2 < coordinates.length; i += 3) {
    point.set(coordinates[i], coordinates[i + 1], coordinates[i + 2]);
    if (Number.isFinite(point.x + point.y + point.z)) {
      box.expandByPoint(point);
    }
  }
  return box;
}

/** How far the outermost of some coordinates is from a place; 0 without any. */
function reachOf(coordinates, place) {
  let reach = 0;
  for (let i = 0; i + 2 < coordinates.length; i += 3) {
    const distance = Math.hypot(
      coordinates[i] - place.x, coordinates[i + 1] - place.y, coordinates[i + 2] - place.z);
    reach = distance > reach && Number.isFinite(distance) ? distance : reach;
  }
  return reach;
}

/**
 * The ball that all of some meshes lie in.
 * @param {Float64Array[]} lists coordinates of each mesh, three each
 * @returns {{centre: THREE.Vector3, radius: number}} the radius is never 0
 */
export function ballOf(lists) {
  const box = new THREE.Box3();
  lists.forEach((coordinates) => box.union(boxOf(coordinates)));
  const centre = box.isEmpty() ? new THREE.Vector3() : box.getCenter(new THREE.Vector3());
  return { centre, radius: Math.max(...lists.map((coordinates) => reachOf(coordinates, centre))) || 1 };
}

/** From where standard views look. */
export const VIEWS = {
  'corner': [1, -1.25, 0.8], 'front': [0, -1, 0], 'back': [0, 1, 0], 'left': [-1, 0, 0], 'right': [1, 0, 0],
  'top': [0, 0, 1], 'bottom': [0, 0, -1],
};

const FIELD_OF_VIEW = 30;

/** Milliseconds after which an eye that does not move is still. */
const STILL_AFTER = 160;

export class Stage {
  /**
   * @param {HTMLCanvasElement} canvas
   * @param {{centre: THREE.Vector3, radius: number}} ball that is looked at, in the unit of the mesh
   * @param {boolean} isFlat whether it lies in the plane and is looked at from above at first
   * Throws where the browser has no WebGL.
   */
  constructor(canvas, { centre, radius }, isFlat) {
    this.canvas = canvas;
    // Asked here: the renderer would tell the console, and a page without WebGL is nothing to complain about.
    const context = canvas.getContext('webgl2', { antialias: true, alpha: true, preserveDrawingBuffer: true });
    if (!context) {
      throw new Error('this browser has no WebGL');
    }
    this.renderer = new THREE.WebGLRenderer({ canvas, context });
    this.renderer.setClearColor(0, 0); // what the page has behind it is seen
    this.renderer.outputColorSpace = THREE.LinearSRGBColorSpace;
    // Drawn about the origin and of unit size: 32 bits of the graphics card are few.
    this.centre = centre;
    this.radius = radius;
    this.scene = new THREE.Scene();
    this.layers = new Map();
    this.marks = new THREE.Group();
    this.scene.add(this.marks);
    this.perspective = new THREE.PerspectiveCamera(FIELD_OF_VIEW, 1, 0.001, 100);
    this.orthographic = new THREE.OrthographicCamera(-1, 1, 1, -1, -50, 50);
    this.camera = this.perspective;
    this.listeners = new Set();
    this.#control();
    this.look(isFlat ? 'top' : 'corner');
  }

  #control() {
    const target = this.controls?.target.clone() ?? new THREE.Vector3();
    this.controls?.dispose();
    this.camera.up.set(0, 0, 1);
    this.controls = new OrbitControls(this.camera, this.canvas);
    this.controls.target.copy(target);
    this.controls.zoomToCursor = true;
    this.controls.minDistance = 0.002;
    this.controls.maxDistance = 40;
    this.controls.addEventListener('change', () => this.#moved());
  }

  #moved() {
    this.camera.updateMatrixWorld(); // who listens asks where the axes point now
    this.#moveCoarsely();
    this.draw();
    for (const listener of this.listeners) {
      listener(this);
    }
  }

  /** Draws what has a coarser form in that, until the eye has been still for a moment. */
  #moveCoarsely() {
    if (![...this.layers.values()].some((object) => object.userData.coarse)) {
      return;
    }
    this.isMoving = true;
    clearTimeout(this.stillness);
    this.stillness = setTimeout(() => {
      this.isMoving = false;
      this.draw();
    }, STILL_AFTER);
  }

  /** Coordinates of the mesh as they are drawn. */
  placed(coordinates) {
    const placed = new Float32Array(coordinates.length);
    const centre = this.centre.toArray();
    for (let i = 0; i < placed.length; ++i) {
      placed[i] = (coordinates[i] - centre[i % 3]) / this.radius;
    }
    return placed;
  }

  /**
   * Puts a layer on the stage or replaces it.
   * @param {string} name
   * @param {object} layer `kind` ("surface", "lines" or "points"), `positions` as placed() gives them, `corners`
   *   of surfaces: for each of three, its number and from bit 2 on the sides that are edges of the mesh
   */
  put(name, { kind, positions, corners = null }) {
    this.remove(name);
    const count = positions.length / 3;
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute('position', new THREE.BufferAttribute(positions, 3));
    geometry.setAttribute('share', new THREE.BufferAttribute(new Float32Array(count), 1));
    geometry.setAttribute('corner', new THREE.BufferAttribute(corners ?? new Uint8Array(count), 1));
    geometry.boundingSphere = new THREE.Sphere(new THREE.Vector3(), 1.001);
    const object = new OBJECTS[kind](geometry, materialOf(kind));
    object.userData.isShown = true;
    this.scene.add(object);
    this.layers.set(name, object);
    this.draw();
  }

  /**
   * Gives a surface a coarser form that is drawn while the eye moves.
   * @param {string} name
   * @param {{positions: Float32Array, corners: Uint8Array, picked: Int32Array}} form `picked` says for each
   *   corner which one of the whole surface it has its colour from
   */
  putCoarse(name, { positions, corners, picked }) {
    const object = this.layers.get(name);
    this.#removeCoarse(object);
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute('position', new THREE.BufferAttribute(positions, 3));
    geometry.setAttribute('share', new THREE.BufferAttribute(new Float32Array(picked.length), 1));
    geometry.setAttribute('corner', new THREE.BufferAttribute(corners, 1));
    geometry.boundingSphere = object.geometry.boundingSphere;
    object.userData.coarse = new THREE.Mesh(geometry, object.material);
    object.userData.picked = picked;
    this.scene.add(object.userData.coarse);
    this.#shareColours(object);
  }

  #removeCoarse({ userData }) {
    if (userData.coarse) {
      this.scene.remove(userData.coarse);
      userData.coarse.geometry.dispose();
      userData.coarse = null;
    }
  }

  #shareColours({ geometry, userData }) {
    if (userData.coarse) {
      const whole = geometry.getAttribute('share').array;
      const attribute = userData.coarse.geometry.getAttribute('share');
      userData.picked.forEach((corner, i) => { attribute.array[i] = whole[corner]; });
      attribute.needsUpdate = true;
    }
  }

  remove(name) {
    const object = this.layers.get(name);
    if (object) {
      this.#removeCoarse(object);
      this.scene.remove(object);
      object.geometry.dispose();
      object.material.dispose();
      this.layers.delete(name);
      this.draw();
    }
  }

  /**
   * Colours a layer.
   * @param {string} name
   * @param {{colour?: number[], shares?: Float32Array, texture?: THREE.Texture}} paint one colour of three shares
   *   of 1, or for each corner where its colour lies in the texture
   */
  paint(name, { colour, shares, texture }) {
    const object = this.layers.get(name);
    if (!object) {
      return;
    }
    const { uniforms } = object.material;
    if (colour) {
      uniforms.colour.value.setRGB(...colour);
    }
    uniforms.isColoured.value = Boolean(shares);
    if (shares) {
      const attribute = object.geometry.getAttribute('share');
      attribute.array.set(shares);
      attribute.needsUpdate = true;
      uniforms.ramp.value = texture;
      this.#shareColours(object);
    }
    this.draw();
  }

  /** Whether and how dark the edges of surfaces are drawn. */
  setWire(strength, colour) {
    for (const object of this.layers.values()) {
      object.material.uniforms.wire.value = strength;
      object.material.uniforms.wireColour.value.setRGB(...colour);
    }
    this.draw();
  }

  /** The page has its background behind the canvas. */
  setBackground() {
    this.draw();
  }

  setVisible(name, isVisible) {
    const object = this.layers.get(name);
    if (object && object.userData.isShown !== isVisible) {
      object.userData.isShown = isVisible;
      this.draw();
    }
  }

  /** Marks places: points, and lines between them, seen through everything. */
  mark({ points, lines }, colour) {
    this.unmark();
    const placed = this.placed(points.flat());
    const material = { color: new THREE.Color(...colour), depthTest: false, transparent: true };
    if (lines.length) {
      const positions = new Float32Array(6 * lines.length);
      lines.forEach((pair, i) => pair.forEach((end, j) =>
        positions.set(placed.subarray(3 * end, 3 * end + 3), 6 * i + 3 * j)));
      const geometry = new THREE.BufferGeometry();
      geometry.setAttribute('position', new THREE.BufferAttribute(positions, 3));
      this.marks.add(new THREE.LineSegments(geometry, new THREE.LineBasicMaterial(material)));
    }
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute('position', new THREE.BufferAttribute(placed, 3));
    this.marks.add(new THREE.Points(geometry,
      new THREE.PointsMaterial({ ...material, size: lines.length ? 5 : 9, sizeAttenuation: false })));
    for (const object of this.marks.children) {
      object.renderOrder = 10;
    }
    this.draw();
  }

  unmark() {
    for (const object of [...this.marks.children]) {
      this.marks.remove(object);
      object.geometry.dispose();
      object.material.dispose();
    }
    this.draw();
  }

  /** Moves the eye so that some points fill a part of the view; all of the mesh without any. */
  flyTo(points = []) {
    const box = boxOf(this.placed(points.flat()));
    const target = box.isEmpty() ? new THREE.Vector3() : box.getCenter(new THREE.Vector3());
    const radius = box.isEmpty() ? 1 : Math.min(Math.max(4 * box.getSize(new THREE.Vector3()).length(), 0.05), 1);
    const direction = this.camera.position.clone().sub(this.controls.target).normalize();
    this.#place(target, direction, radius);
  }

  look(name) {
    this.#place(new THREE.Vector3(), new THREE.Vector3(...VIEWS[name]).normalize(), 1);
  }

  /** How far a ball is looked at to be seen whole, in a view that may be higher than wide. */
  #distanceOf(radius) {
    const aspect = this.perspective.aspect;
    const half = Math.tan((FIELD_OF_VIEW / 2) * (Math.PI / 180));
    return radius / (Math.sin(Math.atan(half * Math.min(1, aspect)))) * 1.03;
  }

  #place(target, direction, radius) {
    if (this.camera === this.orthographic) {
      this.camera.zoom = 1 / radius / 1.05;
      this.camera.updateProjectionMatrix();
    }
    const distance = this.camera === this.orthographic ? 10 : this.#distanceOf(radius);
    this.controls.target.copy(target);
    this.camera.position.copy(target).addScaledVector(direction, distance);
    this.camera.updateMatrixWorld();
    this.controls.update();
    this.#moved();
  }

  turn(right, up) {
    const offset = this.camera.position.clone().sub(this.controls.target);
    const place = new THREE.Spherical().setFromVector3(new THREE.Vector3(offset.x, offset.z, -offset.y));
    place.theta += right;
    place.phi = Math.min(Math.max(place.phi - up, 0.001), Math.PI - 0.001);
    const turned = new THREE.Vector3().setFromSpherical(place);
    this.camera.position.copy(this.controls.target)
      .add(new THREE.Vector3(turned.x, -turned.z, turned.y));
    this.controls.update();
    this.#moved();
  }

  pan(right, up) {
    const height = this.camera === this.orthographic
      ? 2 / this.camera.zoom
      : 2 * Math.tan((FIELD_OF_VIEW / 2) * (Math.PI / 180)) *
        this.camera.position.distanceTo(this.controls.target);
    const sideways = new THREE.Vector3().setFromMatrixColumn(this.camera.matrixWorld, 0);
    const upwards = new THREE.Vector3().setFromMatrixColumn(this.camera.matrixWorld, 1);
    const step = sideways.multiplyScalar(right * height).addScaledVector(upwards, up * height);
    this.camera.position.add(step);
    this.controls.target.add(step);
    this.controls.update();
    this.#moved();
  }

  /** @param {number} factor above 1 to come nearer */
  zoom(factor) {
    if (this.camera === this.orthographic) {
      this.camera.zoom *= factor;
      this.camera.updateProjectionMatrix();
    } else {
      const offset = this.camera.position.clone().sub(this.controls.target);
      this.camera.position.copy(this.controls.target).addScaledVector(offset, 1 / factor);
    }
    this.controls.update();
    this.#moved();
  }

  get isOrthographic() {
    return this.camera === this.orthographic;
  }

  setOrthographic(isWanted) {
    if (isWanted === this.isOrthographic) {
      return;
    }
    const target = this.controls.target.clone();
    const offset = this.camera.position.clone().sub(target);
    const from = this.camera;
    this.camera = isWanted ? this.orthographic : this.perspective;
    if (isWanted) {
      const half = offset.length() * Math.tan((FIELD_OF_VIEW / 2) * (Math.PI / 180));
      this.camera.zoom = 1 / (half * Math.min(1, this.perspective.aspect));
      offset.setLength(10);
    } else {
      const half = 1 / from.zoom / Math.min(1, this.perspective.aspect);
      offset.setLength(half / Math.tan((FIELD_OF_VIEW / 2) * (Math.PI / 180)));
    }
    this.camera.position.copy(target).add(offset);
    this.#control();
    this.controls.target.copy(target);
    this.resize();
    this.controls.update();
    this.#moved();
  }

  /** Looks from where another stage looks, which has the same ball. */
  follow(other) {
    this.setOrthographic(other.isOrthographic);
    this.camera.position.copy(other.camera.position);
    this.controls.target.copy(other.controls.target);
    this.camera.zoom = other.camera.zoom;
    this.camera.updateProjectionMatrix();
    this.camera.lookAt(this.controls.target);
    this.camera.updateMatrixWorld();
    this.#moved();
  }

  /** The axes of the mesh in the view: for x, y and z how far right and up each points. */
  axes() {
    const turned = this.camera.matrixWorldInverse.copy(this.camera.matrixWorld).invert();
    return [[1, 0, 0], [0, 1, 0], [0, 0, 1]].map((axis) => {
      const seen = new THREE.Vector3(...axis).transformDirection(turned);
      return [seen.x, seen.y, seen.z];
    });
  }

  /**
   * What is seen at a point of the canvas.
   * @param {number} x, y in CSS pixels from its upper left corner
   * @returns {{layer: string, index: number, point: number[]}|null} the triangle, line or point of the layer,
   *   and where, in the unit of the mesh
   */
  pick(x, y) {
    const { width, height } = this.canvas.getBoundingClientRect();
    const caster = new THREE.Raycaster();
    caster.setFromCamera(new THREE.Vector2((2 * x) / width - 1, 1 - (2 * y) / height), this.camera);
    const view = this.isOrthographic ? 1 / this.camera.zoom
      : this.camera.position.distanceTo(this.controls.target) * Math.tan((FIELD_OF_VIEW / 2) * (Math.PI / 180));
    caster.params.Line.threshold = (6 * view) / height;
    caster.params.Points.threshold = (6 * view) / height;
    const named = new Map([...this.layers].map(([name, object]) => [object, name]));
    const visible = [...this.layers].filter(([name, object]) => object.userData.isShown && !name.startsWith('feature'))
      .map(([, object]) => object);
    const [hit] = caster.intersectObjects(visible, false);
    if (!hit) {
      return null;
    }
    const index = hit.faceIndex ?? (hit.object.isLineSegments ? hit.index / 2 : hit.index);
    const point = hit.point.multiplyScalar(this.radius).add(this.centre).toArray();
    return { layer: named.get(hit.object), index, point };
  }

  resize() {
    const { clientWidth: width, clientHeight: height } = this.canvas;
    if (!width || !height) {
      return;
    }
    this.renderer.setPixelRatio(Math.min(window.devicePixelRatio, 2));
    this.renderer.setSize(width, height, false);
    const aspect = width / height;
    this.perspective.aspect = aspect;
    this.perspective.updateProjectionMatrix();
    const half = 1 / Math.min(1, aspect);
    Object.assign(this.orthographic, { top: half, bottom: -half, right: half * aspect, left: -half * aspect });
    this.orthographic.updateProjectionMatrix();
    this.draw();
  }

  draw() {
    this.pending ??= requestAnimationFrame(() => this.drawNow());
  }

  drawNow() {
    if (this.pending) {
      cancelAnimationFrame(this.pending);
    }
    this.pending = undefined;
    for (const object of this.layers.values()) {
      const { isShown, coarse } = object.userData;
      object.visible = isShown && !(coarse && this.isMoving);
      if (coarse) {
        coarse.visible = isShown && Boolean(this.isMoving);
      }
    }
    this.renderer.render(this.scene, this.camera);
  }
}

/** A texture of one line of RGBA. */
export function textureFrom(bytes, isSmooth) {
  const texture = new THREE.DataTexture(bytes, bytes.length / 4, 1);
  const filter = isSmooth ? THREE.LinearFilter : THREE.NearestFilter;
  Object.assign(texture, { minFilter: filter, magFilter: filter, needsUpdate: true });
  return texture;
}
