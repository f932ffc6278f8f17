"""Memory and descriptors stay what they are, whatever is repeated."""
import gc
import os
import weakref

import h5py
import numpy as np
import pytest

import orvml
from conftest import make_cube

PAGE = os.sysconf("SC_PAGE_SIZE")


def resident():
    with open("/proc/self/statm") as numbers:
        return int(numbers.read().split()[1]) * PAGE


def descriptors():
    return len(os.listdir("/proc/self/fd"))


def touch(document):
    return document.points.sum() + document.elements[0].node_indices.sum()


@pytest.mark.parametrize("times, repeat", [
    (10_000, lambda path: touch(orvml.read(path))),
    (10_000, lambda path: touch(orvml.open(path))),
    (2_000, lambda path: orvml.describe(path)),
    (2_000, lambda path: orvml.write(path, make_cube(), flush=False)),
    (2_000, lambda path: orvml.check(path, quality=True)),
    (2_000, lambda path: pytest.raises(orvml.Error, orvml.read, path, "output")),
], ids=["read", "open", "describe", "write", "check", "error"])
def test_repeating_costs_no_memory_and_no_descriptor(cube_file, times, repeat):
    if os.environ.get("ORVML_SANITIZERS"):
        times //= 10
    for _ in range(500):
        repeat(cube_file)
    gc.collect()
    before = resident(), descriptors()
    for _ in range(times):
        repeat(cube_file)
    gc.collect()

    assert descriptors() == before[1]
    # Of ten thousand times a hundred bytes each would be a million. Sanitizers keep what is freed.
    if not os.environ.get("ORVML_SANITIZERS"):
        assert resident() - before[0] < 600_000


@pytest.mark.parametrize("read", [orvml.read, orvml.open])
def test_documents_go_as_soon_as_nobody_has_them(tmp_path, read):
    path = tmp_path / "large.h5"
    large = orvml.Input(np.zeros((1_000_000, 3)), elements=[("tetrahedron", [[0, 1, 2, 3]])])
    large.nodes.attributes["size"] = np.zeros(1_000_000)
    orvml.write(path, large, flush=False)
    gc.collect()
    gc.disable()
    try:
        document = read(path)
        touch(document)
        gone = [weakref.ref(part) for part in (document, document.points, document.elements,
                                               document.nodes.attributes["size"])]
        del document
        assert [part() for part in gone] == [None] * 4
        with h5py.File(path, "r+"):
            pass  # who has it mapped keeps others from writing
        before = resident()
        for _ in range(20):
            touch(read(path))
        assert os.environ.get("ORVML_SANITIZERS") or resident() - before < 40e6  # one is 32 MB
    finally:
        gc.enable()


def test_one_document_of_a_file_does_not_keep_the_other(tmp_path):
    path = tmp_path / "both.h5"
    orvml.write(path, orvml.Input(np.zeros((3_000_000, 3))), orvml.Output([[0, 0, 0]]), flush=False)
    orvml.read(path)
    gc.collect()
    before = resident()
    small = orvml.read(path, "output")
    assert small.nodes.size == 1
    assert os.environ.get("ORVML_SANITIZERS") or resident() - before < 20e6  # the other is 72 MB
