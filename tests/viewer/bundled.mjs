// Modules of the page as the build makes them, with the packages that ORVML_VIEWER_MODULES has.
import { mkdtempSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

/** A folder that is removed when the tests end. */
export function temporaryFolder() {
  const folder = mkdtempSync(join(tmpdir(), 'orvml-viewer-'));
  process.on('exit', () => rmSync(folder, { recursive: true, force: true }));
  return folder;
}

/**
 * Bundles one module of viewer/src.
 * @returns {Promise<(copy?: number) => Promise<object>>} imports it; each copy has a state of its own
 */
export async function bundled(name) {
  const modules = process.env.ORVML_VIEWER_MODULES;
  if (!modules) {
    throw new Error('ORVML_VIEWER_MODULES has to name the folder node_modules of the viewer');
  }
  const { build } = createRequire(join(modules, 'any.js'))('esbuild');
  const outfile = join(temporaryFolder(), `${name}.mjs`);
  await build({
    entryPoints: [fileURLToPath(new URL(`../../viewer/src/${name}.js`, import.meta.url))],
    outfile, bundle: true, format: 'esm', platform: 'browser', nodePaths: [modules], logLevel: 'warning',
  });
  return (copy = 0) => import(`${pathToFileURL(outfile)}?${copy}`);
}
