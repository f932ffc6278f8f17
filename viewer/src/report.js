// The page with a mesh in it.
import { App } from './app.js';
import { h } from './dom.js';
import { unpack } from './unpack.js';

const root = document.getElementById('app');
const [data, arrays] = ['report', 'arrays'].map((id) => document.getElementById(id));

const damaged = () => { throw new Error('The page is damaged: its data cannot be unpacked.'); };

unpack(data.textContent, arrays.textContent).catch(damaged).then((report) => {
  arrays.remove(); // its text takes more memory than the mesh
  window.meshPage = new App(root, report);
}).catch((error) => {
  root.replaceChildren(h('p', { class: 'failure', role: 'alert' }, `The mesh cannot be shown. ${error.message}`));
});
