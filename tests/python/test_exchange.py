"""Random documents through write and read, with h5py as the independent reader, and the other way."""
import pathlib
import tempfile

import numpy as np
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as arrays

import conftest  # noqa: F401, it knows where the modules of h5py's side are
import documents
import exchange_reader
import exchange_writer
import orvml
from document import INT, Cells

GROUPS = {"input": "OrvInput", "output": "OrvOutput"}
COUNT = st.integers(0, 6)

# What a name may be: 1 to 79 bytes of UTF-8 without "/" and null, and not "." alone.
NAMES = st.text(st.characters(blacklist_characters="/\0", blacklist_categories=["Cs"]),
                min_size=1, max_size=20).filter(lambda name: name != "." and len(name.encode()) < 80)
TEXTS = st.text(st.characters(blacklist_characters="\0", blacklist_categories=["Cs"]),
                max_size=15).filter(lambda text: len(text.encode()) < 80)
DOUBLES = st.floats(width=64)
INTS = st.integers(-2**31, 2**31 - 1)


def vectors(size):
    return st.one_of(arrays.arrays(np.float64, size, elements=DOUBLES),
                     arrays.arrays(np.int32, size, elements=INTS))


@st.composite
def groups(draw):
    """Cells of any shape and any indices: the format stores what it is given."""
    made = []
    for _ in range(draw(st.integers(0, 3))):
        shape = draw(st.sampled_from(list(orvml.Shape)))
        extents = draw(st.integers(1, 4)), draw(st.integers(1, 9))
        made.append((shape, draw(arrays.arrays(np.int32, extents, elements=INTS))))
    return made


@st.composite
def random_documents(draw):
    dimension = draw(st.sampled_from([2, 3]))
    kind = draw(st.sampled_from([orvml.Input, orvml.Output]))
    points = draw(arrays.arrays(np.float64, (draw(COUNT), dimension), elements=DOUBLES))
    document = kind(points, **{entity: draw(groups()) for entity in ("edges", "faces", "elements")},
                    module=draw(TEXTS), module_format_version=draw(TEXTS), creator=draw(TEXTS),
                    parameters=draw(st.dictionaries(NAMES, DOUBLES, max_size=3)),
                    vector_parameters=draw(st.dictionaries(NAMES, COUNT.flatmap(vectors),
                                                           max_size=3)))
    for part in (document.nodes, document.edges, document.faces, document.elements):
        # Without nodes or cells a file has no place for attributes.
        for name in draw(st.lists(NAMES, max_size=2, unique=True)) if part.size else ():
            part.attributes.set(name, draw(vectors(part.size)), draw(st.booleans()))
    return document


def same(a, b):
    """Equal in type, extents and every bit."""
    return a.dtype == b.dtype and a.shape == b.shape and a.tobytes() == b.tobytes()


def assert_vectors(expected, found):
    assert {name.encode("utf-8", "surrogateescape") for name in expected} == set(found)
    for name, values in expected.items():
        assert same(np.asarray(values), found[name.encode("utf-8", "surrogateescape")].values)


def assert_attributes(attributes, found):
    assert_vectors(attributes, found)
    for name, values in attributes.items():
        assert values.must_be_transmitted == found[name.encode()].must_be_transmitted


def assert_h5py_agrees(document, path):
    """Whatever Python's own reader of the format makes of a file is what the document holds."""
    found = exchange_reader.read_file(path)[GROUPS[document.kind]]
    assert (document.module, document.module_format_version, document.creator) == (
        found.module.decode(), found.module_version.decode(), found.creator.decode())
    assert document.dimension == found.dimension
    if document.nodes.size:
        assert same(document.points, found.coordinates)
    assert_attributes(document.nodes.attributes, found.node_attributes)
    for name in ("Edges", "Faces", "Elements"):
        cells = getattr(document, name.lower())
        stored = found.cells.get(name, Cells([], np.zeros(0, INT)))
        # Readers have no cells where a file has groups without any.
        assert [(int(g.shape), g.nodes_per_cell, g.size) for g in cells] == [
            (g.shape, g.nodes_per_cell, g.cells) for g in stored.groups if stored.number_of_cells]
        joined = [g.node_indices.reshape(-1) for g in cells] or [np.zeros(0, INT)]
        assert same(np.concatenate(joined), stored.connectivities)
        assert_attributes(cells.attributes, stored.attributes)
    assert {name.encode("utf-8", "surrogateescape"): np.float64(value).tobytes()
            for name, value in document.parameters.items()} == {
        name: np.float64(value).tobytes() for name, value in found.parameters.items()}
    assert_vectors(document.vector_parameters, found.vectors)


MANY = settings(max_examples=150, deadline=None, derandomize=True,
                suppress_health_check=[HealthCheck.too_slow, HealthCheck.data_too_large])


@given(random_documents())
@MANY
def test_h5py_reads_what_is_written(document):
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "random.h5"
        orvml.write(path, document, flush=False)
        assert_h5py_agrees(document, path)


@given(random_documents())
@MANY
def test_what_is_written_is_read_and_mapped_the_same(document):
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "random.h5"
        orvml.write(path, document, flush=False)
        for back in (orvml.read(path), orvml.open(path), orvml.read(path, threads=2)):
            assert orvml.diff(document, back).are_same
            assert orvml.fingerprint(document) == orvml.fingerprint(back)
            assert [np.asarray(g).tolist() for g in back.faces] == [
                np.asarray(g).tolist() for g in document.faces]


@pytest.mark.parametrize("name", documents.all_documents())
def test_what_h5py_writes_is_read(name, tmp_path):
    written = documents.all_documents()[name]
    path = tmp_path / "written.h5"
    exchange_writer.write_file(path, written)
    both = orvml.read_exchange(path)

    assert (both.input is None, both.output is None) == (
        "OrvInput" not in written, "OrvOutput" not in written)
    for document in (both.input, both.output):
        if document is not None:
            assert_h5py_agrees(document, path)
