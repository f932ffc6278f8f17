#!/usr/bin/env python3
"""What `orvml convert` takes for a mesh of tetrahedra, beside writing the same bytes and beside meshio,
in interleaved rounds. Prints a table.

    conversions.py COMMAND FOLDER [NODES [ROUNDS]]

The process of the command is timed as a whole: it maps the exchange file, converts and writes. The same
bytes are written from memory to a new file. meshio gets the arrays of the exchange file by h5py; what its
process takes to start does not count, and the last column is its writing alone.
"""
import mmap
import os
import pathlib
import statistics
import subprocess
import sys
import time

import h5py
import meshio
import numpy as np

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests/interop"))
import exchange_writer  # noqa: E402
from document import INT, Cells, Document, TypeGroup, Vector  # noqa: E402

BLOCK = 1 << 20


def block_of_tetrahedra(nodes):
    """A cube of cells, each cut into six tetrahedra."""
    side = round(nodes ** (1 / 3))
    axis = np.arange(side, dtype=float)
    points = np.stack(np.meshgrid(axis, axis, axis, indexing="ij"), axis=-1).reshape(-1, 3)
    corner = np.arange(side**3).reshape(side, side, side)
    c = [corner[i:side - 1 + i, j:side - 1 + j, k:side - 1 + k].ravel()
         for i in (0, 1) for j in (0, 1) for k in (0, 1)]
    cuts = [(0, 4, 6, 7), (0, 6, 2, 7), (0, 2, 3, 7), (0, 3, 1, 7), (0, 1, 5, 7), (0, 5, 4, 7)]
    tetrahedra = np.concatenate([np.stack([c[i] for i in cut], axis=1) for cut in cuts])
    return points, tetrahedra.astype(INT)


def timed(work):
    begin = time.perf_counter()
    work()
    return time.perf_counter() - begin


def write_bytes(source, target):
    with open(source, "rb") as file, mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as pages:
        sum(pages[::4096])  # so that reading the source is not what is measured
        begin = time.perf_counter()
        descriptor = os.open(target, os.O_WRONLY | os.O_CREAT | os.O_TRUNC)
        with memoryview(pages) as bytes_:
            for first in range(0, len(bytes_), BLOCK):
                os.write(descriptor, bytes_[first:first + BLOCK])
        os.close(descriptor)
        return time.perf_counter() - begin


def read_for_meshio(path):
    with h5py.File(path, "r") as file:
        nodes, elements = file["OrvOutput/Nodes"], file["OrvOutput/Elements"]
        return meshio.Mesh(nodes["coordinates"][:],
                           [("tetra", elements["connectivities"][:].reshape(-1, 4))],
                           point_data={"temperature": nodes["Attributes/temperature"][:].ravel()})


def main(command, folder, nodes=2_000_000, rounds=5):
    folder = pathlib.Path(folder)
    points, tetrahedra = block_of_tetrahedra(int(nodes))
    exchange_writer.write_file(folder / "part.h5", {"OrvOutput": Document(
        dimension=3, coordinates=points,
        node_attributes={b"temperature": Vector(points[:, 0] / 3)},
        cells={"Elements": Cells([TypeGroup(4, 4, len(tetrahedra))], tetrahedra.ravel(), {})})})
    print(f"{len(points)} nodes, {len(tetrahedra)} tetrahedra, {rounds} rounds, medians in seconds\n")
    print("| format | bytes | orvml | the same bytes | ratio | meshio | times faster | its writing |")
    print("|---|---|---|---|---|---|---|---|")
    for ending, options in (("vtu", {"compression": None}), ("msh", {"file_format": "gmsh"})):
        ours, bytes_, reads, theirs = [], [], [], []
        for _ in range(int(rounds)):
            target = folder / f"ours.{ending}"
            target.unlink(missing_ok=True)
            ours.append(timed(lambda: subprocess.run(
                [command, "convert", folder / "part.h5", target], check=True, capture_output=True)))
            bytes_.append(write_bytes(target, folder / "bytes"))
            os.unlink(folder / "bytes")
            begin = time.perf_counter()
            mesh = read_for_meshio(folder / "part.h5")
            reads.append(time.perf_counter() - begin)
            theirs.append(timed(lambda: meshio.write(folder / f"theirs.{ending}", mesh, binary=True,
                                                     **options)))
            os.unlink(folder / f"theirs.{ending}")
        own, plain, other = (statistics.median(times) for times in (
            ours, bytes_, [read + write for read, write in zip(reads, theirs)]))
        print(f"| .{ending} | {target.stat().st_size} | {own:.2f} | {plain:.2f} | {own / plain:.2f} | "
              f"{other:.2f} | {other / own:.1f} | {statistics.median(theirs):.2f} |")


if __name__ == "__main__":
    main(*sys.argv[1:])
