// What a mesh can be coloured by, and what is known of a node or a cell.

/** What a person looks for first stands first; attributes in the order of their names. */
const ROLES = ['difference', 'measure', 'attribute'];
export const ENTITIES = ['elements', 'faces', 'edges', 'nodes'];

function fieldsOfPart(entity, fields) {
  return fields.map((field) => ({ ...field, entity, id: `${entity}/${field.role}/${field.name}` }));
}

function rank(field) {
  return ROLES.indexOf(field.role) * ENTITIES.length + ENTITIES.indexOf(field.entity);
}

/** All fields of a document, each with an `id` that is the same in another document. */
export function fieldsOf(model) {
  const { nodes, cells } = model.mesh;
  return [
    ...fieldsOfPart('nodes', nodes.fields),
    ...cells.flatMap((part) => fieldsOfPart(part.entity, part.fields)),
  ].sort((a, b) => rank(a) - rank(b));
}

/** The fields of several documents, each once. */
export function fieldsOfAll(models) {
  const byId = new Map();
  for (const field of models.flatMap(fieldsOf)) {
    if (!byId.has(field.id)) {
      byId.set(field.id, field);
    }
  }
  return [...byId.values()];
}

const UNITS = { 'smallest angle': '°', 'largest angle': '°' };

export function unitOf(name) {
  return UNITS[name] ?? '';
}

/** "all values of nodes or cells", from each model that has the field. */
export function listsOf(models, id) {
  return models.flatMap((model) => fieldsOf(model).filter((field) => field.id === id))
    .map((field) => field.values);
}

/** The number in the document of what has a place in the mesh of the page. */
export function numberOf(part, index) {
  return part.numbers ? part.numbers[index] : index;
}

/** Where what has a number in the document is in the mesh of the page; -1 where it is not shown. */
export function indexOf(part, number, count) {
  if (part.numbers) {
    return part.numbers.indexOf(number);
  }
  return number >= 0 && number < count ? number : -1;
}

/** The values that fields have of one node or cell, those without a value left out. */
export function valuesAt(fields, index) {
  return fields.filter((field) => index < field.values.length)
    .map((field) => ({ name: field.name, role: field.role, value: field.values[index] }));
}
