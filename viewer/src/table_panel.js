// Parameters and attributes as tables that can be searched.
import { h, named, section } from './dom.js';
import { counted, shown } from './numbers.js';

/** Beyond that many rows a page becomes slow and nobody reads on. */
const MOST_ROWS = 300;

/**
 * @param {string} title what the rows are
 * @param {string[]} heads
 * @param {{text: string, cells: (Node|string)[]}[]} rows `text` is what is searched
 */
function searchable(title, heads, rows) {
  const body = h('tbody');
  const told = h('p', { class: 'quiet', role: 'status' });
  const search = h('input', {
    type: 'search', placeholder: `Search ${counted(rows.length)} ${title}`, 'aria-label': `Search ${title}`,
    oninput: () => show(),
  });
  const show = () => {
    const wanted = search.value.toLowerCase();
    const found = rows.filter((row) => row.text.toLowerCase().includes(wanted));
    body.replaceChildren(...found.slice(0, MOST_ROWS).map((row) =>
      h('tr', null, ...row.cells.map((cell, i) => h(i ? 'td' : 'th', i ? null : { scope: 'row' }, cell)))));
    told.textContent = found.length > MOST_ROWS ? `The first ${MOST_ROWS} of ${counted(found.length)}.`
      : wanted ? `${counted(found.length)} of ${counted(rows.length)}` : '';
  };
  show();
  const table = h('table', null, h('thead', null, h('tr', null,
    ...heads.map((head) => h('th', { scope: 'col' }, head)))), body);
  return h('div', { class: 'searchable' }, rows.length > 6 ? search : null,
    h('div', { class: 'scroll', tabindex: 0, role: 'region', 'aria-label': title }, table), told);
}

function parameterRows(model) {
  const scalars = model.parameters.map(({ name, value }) => ({
    text: name, cells: [named(name), shown(value, 9)],
  }));
  const vectors = model.vectorParameters.map(({ name, type, size, values }) => ({
    text: name,
    cells: [named(name), `${values.map((value) => shown(value, 9)).join(', ')}${size > values.length ? ', …' : ''} ` +
      `(${counted(size)} ${type}s)`],
  }));
  return [...scalars, ...vectors];
}

export function parametersSection(app) {
  if (!app.models.some((model) => parameterRows(model).length)) {
    return null;
  }
  return section('Parameters', false, ...app.views.map((view) => app.underName(view,
    searchable('parameters', ['Name', 'Value'], parameterRows(view.model)))));
}

function colourButton(app, attribute) {
  const id = `${attribute.entity}/attribute/${attribute.name}`;
  return app.colours.fields.some((field) => field.id === id)
    ? h('button', { type: 'button', onclick: () => app.colours.choose(id) }, 'Colour') : '';
}

function attributeRows(app, model) {
  return model.attributes.map((attribute) => {
    const { entity, name, type, mustBeTransmitted, minimum, maximum } = attribute;
    const range = minimum === null ? '–' : `${shown(minimum)} to ${shown(maximum)}`;
    return {
      text: `${name} ${entity}`,
      cells: [named(name), entity, type, range, mustBeTransmitted ? 'yes' : 'no', colourButton(app, attribute)],
    };
  });
}

export function attributesSection(app) {
  if (!app.models.some((model) => model.attributes.length)) {
    return null;
  }
  return section('Attributes', false, ...app.views.map((view) => app.underName(view,
    searchable('attributes', ['Name', 'Of', 'Type', 'Range', 'Transmitted', ''],
      attributeRows(app, view.model)))));
}
