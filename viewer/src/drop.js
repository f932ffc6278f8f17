// The page onto which an exchange file is dropped. What is read stays in the browser.
import { App } from './app.js';
import { h, icon, printable } from './dom.js';
import { readExchange } from './exchange_file.js';

const root = document.getElementById('app');

/** The file is held in memory whole, beside what is made of it, and a page has some gigabytes at most. */
const MOST_BYTES = 1e9;

const told = h('p', { class: 'told', role: 'status', 'aria-live': 'polite' });
const input = h('input', {
  type: 'file', accept: '.h5,.hdf5,.orvml,application/x-hdf5', class: 'unseen', id: 'file',
  onchange: () => open(input.files[0]),
});

function showStart() {
  root.replaceChildren(h('main', { class: 'drop' },
    h('h1', null, 'Mesh viewer'),
    h('label', { class: 'target', for: 'file' }, icon('save'),
      h('span', null, 'Drop an exchange file here, or choose one'),
      h('span', { class: 'quiet' }, 'It is read in this browser. Nothing leaves this machine.')),
    input, told));
}

/** Shows one of the documents of a file, or both beside each other. */
function show(report, choice) {
  const documents = report.documents.filter((document) => choice === 'both' || document.kind === choice);
  window.meshPage = new App(root, { ...report, documents });
  const choices = [...report.documents.map((document) => document.kind), 'both'];
  const select = h('select', {
    'aria-label': 'Document', onchange: () => show(report, select.value),
  }, ...choices.map((kind) => h('option', { value: kind, selected: kind === choice }, kind)));
  root.querySelector('.top').append(h('p', { class: 'files' },
    report.documents.length > 1 ? select : null,
    h('button', { type: 'button', onclick: () => location.reload() }, 'Another file')));
}

async function open(file) {
  if (!file) {
    return;
  }
  told.textContent = `Reading ${printable(file.name)} …`;
  root.append(told); // over a mesh that is shown already
  try {
    if (file.size > MOST_BYTES) {
      throw new Error(`The file has more than ${MOST_BYTES / 1e9} GB, which a browser does not hold; ` +
        'the command "orvml report" shows it.');
    }
    const report = await readExchange(new Uint8Array(await file.arrayBuffer()), file.name);
    show(report, report.documents[0].kind);
  } catch (error) {
    if (!window.meshPage) {
      showStart();
    }
    told.textContent = error.message;
  }
}

addEventListener('dragover', (event) => {
  event.preventDefault();
  document.body.classList.add('dragged');
});
addEventListener('dragleave', () => document.body.classList.remove('dragged'));
addEventListener('drop', (event) => {
  event.preventDefault();
  document.body.classList.remove('dragged');
  open(event.dataTransfer.files[0]);
});
showStart();
