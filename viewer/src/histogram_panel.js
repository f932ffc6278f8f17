// How quality and sizes are distributed, over all cells of a document.
import { cssColour, rampColour } from './colours.js';
import { h, s, section } from './dom.js';
import { ENTITIES } from './fields.js';
import { counted, shown, shownWithin } from './numbers.js';

const WIDTH = 320;
const HEIGHT = 84;

function bars(histogram) {
  const most = Math.max(...histogram.counts, 1);
  const width = WIDTH / histogram.counts.length;
  return histogram.counts.map((count, i) => {
    // A single cell among a million still has to be seen.
    const height = count ? Math.max(1.5, (HEIGHT * count) / most) : 0;
    return s('rect', {
      x: (i * width).toFixed(2), y: (HEIGHT - height).toFixed(2), width: (width - 0.8).toFixed(2),
      height: height.toFixed(2), fill: cssColour(rampColour(i / (histogram.counts.length - 1))),
    }, s('title', null, `${counted(count)} from ${shown(at(histogram, i))} to ${shown(at(histogram, i + 1))}`));
  });
}

function at({ minimum, maximum, counts }, i) {
  return Number((minimum + ((maximum - minimum) * i) / counts.length).toPrecision(4));
}

function figure(app, histogram) {
  const { measure, unit, minimum, maximum, cells, without, beyond, entity } = histogram;
  const ends = [minimum, maximum].map((value) =>
    shownWithin(value, maximum - minimum) + (unit === 'degrees' ? '°' : unit));
  const told = `${measure} of ${counted(cells)} ${entity}: ${ends[0]} to ${ends[1]}` +
    (beyond ? `; ${counted(beyond)} are above that` : '') + (without ? `; ${counted(without)} have none` : '');
  const id = `${entity}/measure/${measure}`;
  const colour = app.colours.fields.some((field) => field.id === id) ? h('button', {
    type: 'button', onclick: () => app.colours.choose(id), 'aria-label': `Colour by ${measure} of ${entity}`,
  }, 'Colour') : null;
  return h('figure', { class: 'histogram' },
    h('figcaption', null, h('span', null, `${measure} of ${entity}`), colour),
    s('svg', { viewBox: `0 0 ${WIDTH} ${HEIGHT}`, role: 'img', 'aria-label': told, preserveAspectRatio: 'none' },
      ...bars(histogram)),
    h('div', { class: 'ticks' }, h('span', null, ends[0]), h('span', null, `${beyond ? 'above ' : ''}${ends[1]}`)));
}

export function histogramSection(app) {
  if (!app.models.some((model) => model.histograms.length)) {
    return null;
  }
  return section('Quality and sizes', false, ...app.views.map((view) => app.underName(view,
    h('div', { class: 'histograms' }, ...ENTITIES.flatMap((entity) => view.model.histograms
      .filter((one) => one.entity === entity).map((one) => figure(app, one)))))));
}
