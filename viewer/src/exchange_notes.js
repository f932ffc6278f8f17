// What a page leaves out of a file, told in whole sentences.
import { printable } from './dom.js';
import { Unreadable } from './hdf5_file.js';

const MOST_NOTES = 100;

/** Objects of one group that are read: a page with more is of no use. */
const MOST_NAMES = 1000;

/** What a page leaves out, once each. */
export class Notes {
  #texts = new Set();
  #more = 0;

  add(text) {
    if (this.#texts.size < MOST_NOTES) {
      this.#texts.add(text);
    } else {
      ++this.#more;
    }
  }

  get texts() {
    return this.#more ? [...this.#texts, `${this.#more} more things are left out.`] : [...this.#texts];
  }
}

/** A name from a file as a part of a sentence. */
export function named(name) {
  return `"${printable(name)}"`;
}

/** A number of things, such as "2 nodes". */
export function counted(count, what) {
  return `${count.toLocaleString('en-US')} ${what}${count === 1 ? '' : 's'}`;
}

/** What the step gives; undefined, and a note, where its object cannot be read. */
export function attempt(notes, path, step) {
  try {
    return step();
  } catch (error) {
    if (!(error instanceof Unreadable)) {
      throw error;
    }
    notes.add(`${printable(path)} ${error.message}, and is left out.`);
    return undefined;
  }
}

/** The first ones of a list of names, and a note about the others. */
export function bounded(notes, path, names) {
  if (names.length > MOST_NAMES) {
    notes.add(`Of the ${counted(names.length, 'object')} in ${path} the first ${MOST_NAMES} are read.`);
  }
  return names.slice(0, MOST_NAMES);
}
