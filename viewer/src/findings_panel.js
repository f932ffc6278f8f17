// What check() found and what differs from the other document, as lists that lead to the places.
import { h, named, section } from './dom.js';
import { counted } from './numbers.js';

const KIND_OF = { node: 'nodes', edge: 'edges', face: 'faces', element: 'elements' };

function joined(places) {
  const points = [];
  const lines = [];
  for (const place of places) {
    lines.push(...place.lines.map((line) => line.map((end) => end + points.length)));
    points.push(...place.points);
  }
  return { points, lines };
}

function placeButton(view, place) {
  const label = `${place.kind} ${place.index}`;
  if (!place.points.length) {
    return h('span', { class: 'place' }, label);
  }
  return h('button', {
    type: 'button', class: 'place', onclick: () => {
      view.goTo(joined([place]), label);
      view.select(KIND_OF[place.kind], place.index);
    },
  }, label);
}

function findingItem(view, finding) {
  const seen = finding.places.filter((place) => place.points.length);
  const go = seen.length ? h('button', {
    type: 'button', class: 'go', onclick: () => view.goTo(joined(seen), finding.code),
  }, 'Show') : null;
  const more = finding.count > finding.places.length && finding.places.length
    ? h('span', { class: 'quiet' }, `and ${counted(finding.count - finding.places.length)} more`) : null;
  return h('li', { class: `finding ${finding.severity}` },
    h('p', { class: 'head' }, h('span', { class: 'badge' }, finding.severity), h('code', null, finding.code), go),
    h('p', null, named(finding.sentence, 'bdi')),
    finding.places.length ? h('p', { class: 'places' }, ...finding.places.map((p) => placeButton(view, p)), more)
      : null,
    h('p', { class: 'quiet' }, finding.cure));
}

function list(view) {
  const { findings } = view.model;
  if (!findings) {
    return h('p', { class: 'quiet' }, 'Not checked here. The command “orvml check” tells whether it is sound.');
  }
  if (!findings.length) {
    return h('p', { class: 'good' }, 'Nothing was found: the mesh and what belongs to it are sound.');
  }
  return h('ul', { class: 'findings' }, ...findings.map((finding) => findingItem(view, finding)));
}

export function findingsSection(app) {
  const total = app.models.reduce((sum, model) => sum + (model.findings?.length ?? 0), 0);
  const title = total ? `Findings (${total})` : 'Findings';
  const matters = app.models.some((model) => model.findings?.some((finding) => finding.severity !== 'note'));
  return section(title, matters, ...app.views.map((view) => app.underName(view, list(view))));
}

export function differencesSection(app) {
  const { differences } = app.report;
  if (!differences) {
    return null;
  }
  return section(`Differences (${differences.length})`, true, differences.length
    ? h('ul', { class: 'findings' }, ...differences.map((difference) => h('li', { class: 'finding note' },
      h('p', { class: 'head' }, h('span', { class: 'badge' }, difference.change), named(difference.object, 'code')),
      h('p', null, named(difference.sentence)))))
    : h('p', { class: 'good' }, 'Both documents are the same.'));
}
