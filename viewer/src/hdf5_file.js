// An HDF5 file that nobody vouches for, opened in memory. Types and extents are looked at before anything is
// read, and what all reading together may take is bounded by the size of the file.
import h5wasm from 'h5wasm';

/** Why one object of a file is left out; the sentence goes on after its path. */
export class Unreadable extends Error {}

/** The file made HDF5 itself fail, which cannot be used any more until the page is loaded again. */
export class ReaderFailed extends Error {}

const MOST_VALUES = 0x7fffffff;
const STORED_SHARE = 4; // honest files have several links to one dataset now and then
const UNSTORED_BYTES = 64 * 1024 * 1024; // fill values and chunks that were never written
const BEST_COMPRESSION = 1100; // deflate, the best of the usual filters, reaches 1,030
const MOST_BYTES = 2 ** 31; // of all datasets together
const TEXT_BYTES = 65536; // in which an attribute's text is looked for
const MOST_TEXT = 79; // bytes; the format cuts it there
const KIND = { integer: 0, float: 1, string: 3, compound: 6 };

let broken = false;
let opened = 0;

/** HDF5 finds no file but the opened one: a dataset may name another, even a device that asks the user. */
function isolate(module) {
  for (const device of ['tty', 'tty1', 'random', 'urandom']) {
    if (module.FS.analyzePath(`/dev/${device}`).exists) {
      module.FS.unlink(`/dev/${device}`);
    }
  }
  // What cannot be read is told by those who call; HDF5 would print pages of it to the console.
  const errors = module.FS.getStream(2);
  errors.stream_ops = { ...errors.stream_ops, write: (_stream, _buffer, _offset, length) => length };
}

let started;

function reader() {
  started ??= h5wasm.ready.then((module) => {
    isolate(module);
    return module;
  });
  return started;
}

/** Integers of any size as 32 bits, those beyond as the nearest that fits. */
function integersOf(buffer, size, isSigned) {
  if (size === 1) {
    return Int32Array.from(isSigned ? new Int8Array(buffer) : new Uint8Array(buffer));
  }
  if (size === 2) {
    return Int32Array.from(isSigned ? new Int16Array(buffer) : new Uint16Array(buffer));
  }
  const words = new Int32Array(buffer);
  if (size === 4) {
    return isSigned ? words : words.map((word) => (word < 0 ? MOST_VALUES : word));
  }
  const values = new Int32Array(words.length / 2);
  for (let i = 0; i < values.length; ++i) {
    const [low, high] = [words[2 * i], words[2 * i + 1]];
    if (isSigned && high < 0) {
      values[i] = high === -1 && low < 0 ? low : -MOST_VALUES - 1;
    } else {
      values[i] = high === 0 && low >= 0 ? low : MOST_VALUES;
    }
  }
  return values;
}

function floatsOf(buffer, size) {
  return size === 8 ? new Float64Array(buffer) : Float64Array.from(new Float32Array(buffer));
}

/** Bytes up to the first null byte as text; what is no UTF-8 becomes replacement characters. */
export function textOf(bytes, most = bytes.length) {
  const end = bytes.indexOf(0);
  return new TextDecoder().decode(bytes.subarray(0, Math.min(end < 0 ? bytes.length : end, most)));
}

export class Hdf5File {
  #module;
  #file;
  #path = `/opened-${++opened}.h5`; // several may be open
  #left;
  #leftInMemory = MOST_BYTES;

  /**
   * Opens a file.
   * @param {Uint8Array} bytes not to be changed until close()
   * @returns {Promise<Hdf5File|null>} null when HDF5 cannot open it
   */
  static async open(bytes) {
    const module = await reader();
    if (broken) {
      throw new ReaderFailed('load the page again');
    }
    const file = new Hdf5File(module, bytes);
    if (file.#file >= 0n) {
      return file;
    }
    file.close();
    return null;
  }

  constructor(module, bytes) {
    this.#module = module;
    this.#left = STORED_SHARE * bytes.length + UNSTORED_BYTES;
    module.FS.writeFile(this.#path, bytes, { canOwn: true });
    this.#file = this.#call(() => module.open(this.#path, module.H5F_ACC_RDONLY, false, -1, -1));
  }

  close() {
    if (!broken && this.#file >= 0n) {
      this.#call(() => this.#module.close_file(this.#file));
    }
    this.#file = -1n;
    if (this.#module.FS.analyzePath(this.#path).exists) {
      this.#module.FS.unlink(this.#path);
    }
  }

  /** Calls HDF5. Its wrapper throws "error - ..." for what is not there; all else has no way back. */
  #call(work) {
    try {
      return work();
    } catch (error) {
      if (error instanceof Unreadable || String(error?.message).startsWith('error - ')) {
        throw error;
      }
      broken = true;
      throw new ReaderFailed('HDF5 failed', { cause: error });
    }
  }

  /** What the call gives; null for what is not there. */
  #tryCall(work) {
    try {
      return this.#call(work);
    } catch (error) {
      if (error instanceof ReaderFailed) {
        throw error;
      }
      return null;
    }
  }

  /** The names in a group, in the order of their characters; null when there is no such group. */
  namesIn(path) {
    const names = this.#tryCall(() => this.#module.get_names(this.#file, path, false));
    return names && names.map((name) => name.replace(/\p{Surrogate}/gu, '\ufffd')).sort();
  }

  /**
   * Whether a path leads to a link. One in namesIn() does not when its name is no UTF-8: that comes with
   * other characters in place of its bytes.
   */
  hasLink(path) {
    return this.#tryCall(() => this.#module.get_type(this.#file, path)) !== -1;
  }

  /** What a dataset holds; null when there is none. */
  metadata(path) {
    return this.#tryCall(() => this.#module.get_dataset_metadata(this.#file, path));
  }

  /** Whether a dataset holds numbers. */
  isNumeric({ type }) {
    return type === KIND.integer || type === KIND.float;
  }

  #allocate(bytes) {
    const pointer = this.#call(() => this.#module._malloc(Math.max(bytes, 1)));
    if (pointer === 0) {
      throw new Unreadable('needs more memory than there is');
    }
    return pointer;
  }

  /** Copies what `read` writes to some memory of HDF5. */
  #bytesOf(bytes, read, release = () => {}) {
    const pointer = this.#allocate(bytes);
    try {
      if (this.#call(() => read(BigInt(pointer))) < 0) {
        throw new Unreadable('cannot be read');
      }
      const copy = this.#module.HEAPU8.slice(pointer, pointer + bytes);
      release(copy, BigInt(pointer));
      return copy;
    } finally {
      if (!broken) {
        this.#module._free(pointer);
      }
    }
  }

  /** Takes from what the file may make the page use. */
  #take(path, metadata, values) {
    const bytes = values * metadata.size;
    const isFiltered = metadata.chunks &&
      (this.#tryCall(() => this.#module.get_dataset_filters(this.#file, path))?.length ?? 0) > 0;
    const stored = isFiltered ? bytes / BEST_COMPRESSION : bytes;
    if (!(values <= MOST_VALUES && stored <= this.#left && bytes <= this.#leftInMemory)) {
      throw new Unreadable('claims more values than a file of this size holds');
    }
    this.#left -= stored;
    this.#leftInMemory -= bytes;
    return bytes;
  }

  /** The first values of a dataset as bytes, all of them unless `count` says how many rows. */
  #datasetBytes(path, metadata, count) {
    if (metadata.virtual_sources) {
      throw new Unreadable('takes its values from elsewhere');
    }
    if (!metadata.shape) {
      throw new Unreadable('has no extents');
    }
    if (count === undefined) {
      const bytes = this.#take(path, metadata, metadata.total_size);
      return this.#bytesOf(bytes, (to) =>
        this.#module.get_dataset_data(this.#file, path, null, null, null, to));
    }
    const counts = metadata.shape.map((_, axis) => BigInt(axis === 0 ? count : 1));
    const bytes = this.#take(path, metadata, count);
    return this.#bytesOf(bytes, (to) => this.#module.get_dataset_data(
      this.#file, path, counts, counts.map(() => 0n), counts.map(() => 1n), to));
  }

  #metadataOfNumbers(path) {
    const metadata = this.metadata(path);
    if (!metadata) {
      throw new Unreadable('is no dataset that can be opened');
    }
    if (!this.isNumeric(metadata)) {
      throw new Unreadable('holds no numbers');
    }
    const sizes = metadata.type === KIND.integer ? [1, 2, 4, 8] : [4, 8];
    if (!sizes.includes(metadata.size)) {
      throw new Unreadable(`holds numbers of ${metadata.size} bytes, which this page does not read`);
    }
    return metadata;
  }

  #decoded(bytes, { type, size, signed }) {
    return type === KIND.integer ? integersOf(bytes.buffer, size, signed) : floatsOf(bytes.buffer, size);
  }

  /**
   * All numbers of a dataset.
   * @returns {{shape: number[], values: Int32Array|Float64Array}}
   */
  numbers(path) {
    const metadata = this.#metadataOfNumbers(path);
    return {
      shape: metadata.shape,
      values: this.#decoded(this.#datasetBytes(path, metadata), metadata),
    };
  }

  /** As numbers(), of integers alone. */
  integers(path) {
    const metadata = this.metadata(path);
    if (metadata && metadata.type !== KIND.integer) {
      throw new Unreadable('holds no integers');
    }
    return this.numbers(path);
  }

  /** As numbers(), of floating-point numbers alone. */
  floats(path) {
    const metadata = this.metadata(path);
    if (metadata && metadata.type !== KIND.float) {
      throw new Unreadable('holds no floating-point numbers');
    }
    return this.numbers(path);
  }

  /**
   * The number of values of a list, and the first of them.
   * @returns {{size: number, values: Int32Array|Float64Array}}
   */
  beginning(path, most) {
    const metadata = this.#metadataOfNumbers(path);
    const size = metadata.shape?.[0];
    if (size === undefined || metadata.total_size !== size) {
      throw new Unreadable('is no list of values');
    }
    const bytes = this.#datasetBytes(path, metadata, Math.min(size, most));
    return { size, values: this.#decoded(bytes, metadata) };
  }

  /**
   * The records of a table of names and numbers.
   * @returns {{name: string, value: number}[]}
   */
  records(path) {
    const metadata = this.metadata(path);
    const members = metadata?.type === KIND.compound ? metadata.compound_type.members : [];
    const [name, value] = members;
    if (members.length !== 2 || name.type !== KIND.string || name.vlen || value.type !== KIND.float ||
        ![4, 8].includes(value.size) || metadata.shape?.length !== 1) {
      throw new Unreadable('is no table of names and numbers');
    }
    const bytes = this.#datasetBytes(path, metadata);
    // HDF5 converts a type whose numbers all have one order.
    const isLittle = value.littleEndian || !metadata.littleEndian;
    const view = new DataView(bytes.buffer);
    return Array.from({ length: metadata.total_size }, (_, record) => {
      const at = record * metadata.size;
      return {
        name: textOf(bytes.subarray(at + name.offset, at + name.offset + name.size)),
        value: value.size === 8
          ? view.getFloat64(at + value.offset, isLittle) : view.getFloat32(at + value.offset, isLittle),
      };
    });
  }

  #attribute(path, name) {
    const metadata = this.#tryCall(() => this.#module.get_attribute_metadata(this.#file, path, name));
    return metadata && metadata.total_size === 1 && metadata.size <= TEXT_BYTES ? metadata : null;
  }

  #attributeBytes(path, name, metadata, release) {
    try {
      return this.#bytesOf(metadata.size, (to) =>
        this.#module.get_attribute_data(this.#file, path, name, to), release);
    } catch (error) {
      if (error instanceof ReaderFailed) {
        throw error;
      }
      return null;
    }
  }

  /** The text of an attribute; null when there is none. */
  text(path, name) {
    const metadata = this.#attribute(path, name);
    if (metadata?.type !== KIND.string) {
      return null;
    }
    if (!metadata.vlen) {
      const bytes = this.#attributeBytes(path, name, metadata);
      return bytes && textOf(bytes, MOST_TEXT);
    }
    let found = null;
    this.#attributeBytes(path, name, metadata, (copy, to) => {
      const pointer = new Uint32Array(copy.buffer)[0];
      found = pointer ? textOf(this.#module.HEAPU8.subarray(pointer, pointer + TEXT_BYTES), MOST_TEXT) : '';
      this.#call(() => this.#module.reclaim_vlen_memory(this.#file, path, name, to));
    });
    return found;
  }

  /** The integer of an attribute; null when there is none. */
  integer(path, name) {
    const metadata = this.#attribute(path, name);
    if (metadata?.type !== KIND.integer || ![1, 2, 4, 8].includes(metadata.size)) {
      return null;
    }
    const bytes = this.#attributeBytes(path, name, metadata);
    return bytes && integersOf(bytes.buffer, metadata.size, metadata.signed)[0];
  }
}
