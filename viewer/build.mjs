// Makes the pages: `node build.mjs --modules node_modules --output FOLDER` writes `report.html`, the page that the
// writer puts a mesh into, `report_page.cpp`, the same for the compiler, and `viewer.html`, onto which files are
// dropped. What runs in a page is named by its digest in the page's own security policy, so that nothing else can.
import { createHash } from 'node:crypto';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { parseArgs } from 'node:util';

const here = dirname(fileURLToPath(import.meta.url));
const { values: options } = parseArgs({
  options: {
    modules: { type: 'string', default: join(here, 'node_modules') },
    output: { type: 'string' },
  },
});
if (!options.output) {
  throw new Error('usage: node build.mjs [--modules FOLDER] --output FOLDER');
}
const modules = resolve(options.modules);
// Of that folder, wherever it lies beside this file.
const esbuild = await import(pathToFileURL(createRequire(join(modules, 'index.js')).resolve('esbuild')));

async function bundled(entry) {
  const result = await esbuild.build({
    entryPoints: [join(here, 'src', entry)],
    bundle: true,
    minify: true,
    write: false,
    format: 'iife',
    target: ['es2022'],
    charset: 'ascii',
    nodePaths: [modules],
    legalComments: 'none', // the whole licences stand in front
    logLevel: 'warning',
    define: { 'process.env.NODE_ENV': '"production"' },
    external: ['fs', 'path', 'crypto', 'module', 'url'], // of h5wasm under Node, not in browsers
  });
  const text = result.outputFiles[0].text;
  if (/<!--|<\/script/i.test(text)) {
    throw new Error(`the bundle of ${entry} holds what would end or hide its element`);
  }
  return text.trim();
}

async function styles() {
  const css = readFileSync(join(here, 'src', 'style.css'), 'utf8');
  return (await esbuild.transform(css, { loader: 'css', minify: true })).code.trim();
}

function digest(text) {
  return `'sha256-${createHash('sha256').update(text).digest('base64')}'`;
}

/** The licences of what is in a page, as the comment at its beginning. */
function licences(parts) {
  const texts = parts.map(([name, file]) => `${name}\n\n${readFileSync(file, 'utf8').trim()}`);
  const all = texts.join('\n\n----\n\n');
  // Only this ends a comment; the licences stay what they are.
  if (/--!?>/.test(all)) {
    throw new Error('a licence holds the end of a comment');
  }
  return `<!--\n${all}\n-->`;
}

function policy(script, style, more = '') {
  return [
    "default-src 'none'",
    `script-src ${digest(script)}${more}`,
    `style-src ${digest(style)}`,
    'img-src data: blob:',
    "base-uri 'none'",
    "form-action 'none'",
    "require-trusted-types-for 'script'",
    "trusted-types 'none'",
  ].join('; ');
}

function page(fill) {
  const template = readFileSync(join(here, 'src', 'page.html'), 'utf8');
  return template.replace(/<!--\{(\w+)\}-->/g, (_, name) => fill[name]);
}

/** The page as a C++ string, in parts that a person can scroll through. */
function asCpp(html) {
  const longest = 8000;
  const parts = [];
  for (let at = 0; at < html.length; at += longest) {
    parts.push(`R"~page~(${html.slice(at, at + longest)})~page~"`);
  }
  // The parts are one string all the same, which some compilers want to be told.
  return `#pragma GCC diagnostic ignored "-Woverlength-strings"

#include "report_page.h"

namespace orvml_report {

extern const std::string_view kReportPage(
${parts.join('\n')},
${Buffer.byteLength(html)});

}  // namespace orvml_report
`;
}

const own = ['liborvml_io', join(here, '..', 'LICENSE')];
const three = ['three.js', join(modules, 'three', 'LICENSE')];
const h5wasm = ['h5wasm of the National Institute of Standards and Technology, minified',
  join(modules, 'h5wasm', 'LICENSE.txt')];
const hdf5 = ['HDF5, which h5wasm is made of', join(here, 'licences', 'hdf5.txt')];

const style = await styles();
const report = await bundled('report.js');
const drop = await bundled('drop.js');
mkdirSync(options.output, { recursive: true });

const reportPage = page({
  licences: licences([own, three]),
  policy: policy(report, style),
  title: 'Mesh report',
  style,
  data: '<!--report-->',
  script: report,
});
writeFileSync(join(options.output, 'report.html'), reportPage);
writeFileSync(join(options.output, 'report_page.cpp'), asCpp(reportPage));
writeFileSync(join(options.output, 'viewer.html'), page({
  licences: licences([own, three, h5wasm, hdf5]),
  policy: policy(drop, style, " 'wasm-unsafe-eval'"),
  title: 'Mesh viewer',
  style,
  data: '',
  script: drop,
}));
