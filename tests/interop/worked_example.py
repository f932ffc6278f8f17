#!/usr/bin/env python3
"""Holds the worked example of the documentation against a file that the library writes.

    worked_example.py LIBRARY_SIDE            compares; fails when a page differs
    worked_example.py LIBRARY_SIDE --update   writes the example into the pages

docs/format.md shows the bytes of each value, docs/worked-example.md all bytes of the file. The times
that HDF5 puts beside each dataset are shown as "tt".
"""
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

import h5py
import numpy as np

import exchange_reader
import record
from document import DOUBLE, INT, Cells, Document, TypeGroup, Vector

DOCS = pathlib.Path(__file__).resolve().parents[2] / "docs"
BEGIN, END = "<!-- worked example: begin -->\n", "<!-- worked example: end -->\n"
BYTES_PER_LINE = 16
# The pages show the bytes that this series lays out; another may place the same objects elsewhere.
HDF5_SERIES = (1, 10)

# HDF5's message with the time of a change: type 18, 8 bytes, version 1, then the seconds.
TIME_MESSAGE = re.compile(rb"\x12\x00\x08\x00.\x00\x00\x00\x01\x00\x00\x00(.{4})", re.S)


def example():
    return Document(
        creator=b"worked example", module=b"ORVML_OCTREE_MESHER", module_version=b"1.0",
        dimension=2,
        coordinates=np.array([[0, 0], [1, 0], [1, 1], [0, 1], [2, 0.5]], DOUBLE),
        node_attributes={b"size": Vector(np.array([0.1, 0.2, 0.2, 0.1, 0.25]), True)},
        cells={"Faces": Cells([TypeGroup(3, 4, 1), TypeGroup(2, 3, 1)],
                              np.array([0, 1, 2, 3, 1, 4, 2], INT))},
        parameters={b"ORVML_OCTREEMESHER_GENERAL_MESH_SIZE": 0.25},
        vectors={b"layers": Vector(np.array([3, 5], INT))})


class FileBytes:
    """The bytes of a file, with the ones that differ from run to run marked."""

    def __init__(self, path):
        self.data = path.read_bytes()
        self.times = {position for match in TIME_MESSAGE.finditer(self.data)
                      for position in range(*match.span(1))}

    def line(self, start, length):
        digits = ["tt" if position in self.times else f"{self.data[position]:02x}"
                  for position in range(start, start + length)]
        text = "".join(chr(byte) if 32 <= byte < 127 else "."
                       for byte in self.data[start:start + length])
        text = "".join("." if start + i in self.times else text[i] for i in range(length))
        return f"{start:08x}  {' '.join(digits):<{3 * BYTES_PER_LINE - 1}}  |{text}|"

    def lines(self, start, length, per_line=BYTES_PER_LINE):
        return [self.line(position, min(per_line, start + length - position))
                for position in range(start, start + length, per_line)]

    def all_lines(self):
        """All lines, a run of equal ones shortened to its first and "*"."""
        shown, previous = [], None
        for start in range(0, len(self.data), BYTES_PER_LINE):
            length = min(BYTES_PER_LINE, len(self.data) - start)
            content = self.data[start:start + length]
            if content != previous or not length == BYTES_PER_LINE:
                shown.append(self.line(start, length))
            elif shown[-1] != "*":
                shown.append("*")
            previous = content
        return shown + [f"{len(self.data):08x}"]


def attribute_place(data, name, value):
    """The offset of an attribute's value. HDF5's message of an attribute is version 1, a reserved
    byte, three sizes (name, type, extents) and these three and the value, each filled to 8 bytes."""
    name_bytes = name + b"\0"
    message = re.compile(rb"\x01\0" + re.escape(struct.pack("<H", len(name_bytes))) + rb"(.{4})" +
                         re.escape(name_bytes), re.S)
    places = []
    for match in message.finditer(data):
        sizes = (len(name_bytes), *struct.unpack("<HH", match.group(1)))
        places.append(match.start() + 8 + sum((size + 7) // 8 * 8 for size in sizes))
    places = [place for place in places if data[place:place + len(value)] == value]
    if len(places) != 1:
        raise ValueError(f"{name} stands in {len(places)} places")
    return places[0]


def shown_attributes(item, file_bytes):
    names = [h5py.h5a.open(item.id, index=i).name for i in range(h5py.h5a.get_num_attrs(item.id))]
    for name in names:
        stored = item.attrs[name.decode()]
        if isinstance(stored, np.ndarray):
            value, shown = stored.astype(INT).tobytes(), f"int {{1}}: {stored[0]}"
        else:
            value = exchange_reader.read_text(item, name.decode()) + b"\0"
            shown = f"text: {value[:-1].decode()}"
        place = attribute_place(file_bytes.data, name, value)
        yield f"{item.name} attribute {name.decode()}, {shown}"
        yield from file_bytes.lines(place, len(value))


def shown_records(dataset, file_bytes):
    chunk = dataset.id.get_chunk_info(0)
    for i, one in enumerate(dataset[()]):
        place = chunk.byte_offset + 88 * i
        yield f"{dataset.name}, record {i}: name {one['name'].decode()}, value {one['value']}"
        yield from file_bytes.lines(place, 80)
        yield from file_bytes.lines(place + 80, 8)


def shown_dataset(dataset, file_bytes):
    if dataset.dtype.names:
        yield from shown_records(dataset, file_bytes)
        return
    extents = ", ".join(str(extent) for extent in dataset.shape)
    kind = "int" if dataset.dtype.kind == "i" else "double"
    values = " ".join(str(row.tolist()) if row.ndim else str(row) for row in dataset[()])
    yield f"{dataset.name}, {kind} {{{extents}}}: {values}"
    yield from file_bytes.lines(dataset.id.get_offset(), dataset.nbytes)


def shown_objects(path, file_bytes):
    """A heading and the bytes for each attribute and dataset."""
    with h5py.File(path, "r") as file:
        lines = [*shown_attributes(file["/"], file_bytes)]

        def visit(_, item):
            if isinstance(item, h5py.Dataset):
                lines.extend(shown_dataset(item, file_bytes))
            lines.extend(shown_attributes(item, file_bytes))

        file.visititems(visit)
    return [line if line[0] == "/" else "  " + line for line in lines]


def write_example(library_side, folder):
    path, record_path = folder / "example.h5", folder / "record"
    record_path.write_text("\n".join(record.of_documents({"OrvInput": example()})) + "\n")
    subprocess.run([library_side, "write", record_path, path], check=True,
                   stdout=subprocess.DEVNULL)
    return path


def with_example(page, lines):
    """The text of a page with the lines between its two marks."""
    text = page.read_text()
    before, after = text.index(BEGIN) + len(BEGIN), text.index(END)
    return text[:before] + "```text\n" + "\n".join(lines) + "\n```\n" + text[after:]


def main(library_side, *options):
    if h5py.version.hdf5_version_tuple[:2] != HDF5_SERIES:
        print(f"not compared: the pages show a file of HDF5 {'.'.join(map(str, HDF5_SERIES))}")
        return 0
    with tempfile.TemporaryDirectory() as folder:
        path = write_example(library_side, pathlib.Path(folder))
        file_bytes = FileBytes(path)
        pages = {DOCS / "format.md": shown_objects(path, file_bytes),
                 DOCS / "worked-example.md": file_bytes.all_lines()}
    different = False
    for page, lines in pages.items():
        text = with_example(page, lines)
        if "--update" in options:
            page.write_text(text)
        elif text != page.read_text():
            print(f"{page.name} shows another file than the library writes; "
                  "worked_example.py LIBRARY_SIDE --update writes it anew")
            different = True
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
