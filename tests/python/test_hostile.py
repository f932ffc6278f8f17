"""Damaged, deformed and malicious files: whatever is in them, reading ends with a document or an Error.

The files are those that the tests of the flat functions make: each of them leaves what it attacks the
readers with in a folder when it is asked to. HDF5 itself falls on some damages of its own structures,
so that those tests have no part in it.
"""
import os
import pathlib
import subprocess
import sys

import pytest

import orvml

SOURCE = pathlib.Path(__file__).resolve().parents[2]
TESTS = os.environ.get("ORVML_HOSTILE_TESTS")

# Sanitizers take several times as long; those of C++ see each file in the tests of C++.
EVERY = 3 if os.environ.get("ORVML_SANITIZERS") else 1

USE = """
import resource, sys
import numpy as np
import orvml

def use(document):
    for part in (document.nodes, document.edges, document.faces, document.elements):
        for values in part.attributes.values():
            values.sum()
    for cells in (document.edges, document.faces, document.elements):
        for group in cells:
            group.node_indices.sum()
        try:
            cells.quality(), cells.sizes(), len(cells.to_pandas())
        except (orvml.Error, ValueError, ImportError):
            pass
    document.points.sum()
    repr(document), document._repr_html_()
    orvml.check(document), orvml.fingerprint(document), orvml.diff(document, document)
    try:
        document.to_vtk()
    except (ValueError, ImportError):
        pass
    try:
        orvml.write(sys.argv[1], document, flush=False)
    except orvml.Error:
        pass

for path in map(str.strip, sys.stdin):
    print(path, flush=True)
    for tolerant in (False, True):
        for read in (orvml.read_exchange, orvml.open_exchange):
            try:
                exchange = read(path, tolerant=tolerant)
            except orvml.Error:
                continue
            for document in (exchange.input, exchange.output):
                if document is not None:
                    use(document)
    for question in (orvml.describe, orvml.check):
        try:
            question(path)
        except orvml.Error:
            pass
print("done", resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)
"""


def use_all(files, tmp_path):
    run = subprocess.run([sys.executable, "-c", USE, str(tmp_path / "written.h5")],
                         input="\n".join(map(str, files)), capture_output=True, text=True)
    lines = run.stdout.splitlines()
    assert run.returncode == 0, f"ended with {run.returncode} at {lines[-1:]}: {run.stderr[-2000:]}"
    assert run.stderr == ""
    assert lines[-1].startswith("done") and len(lines) == len(files) + 1


@pytest.mark.skipif(TESTS is None, reason="only where the tests of the flat functions are built")
def test_the_catalogue_of_attacks_ends_well(tmp_path):
    files = tmp_path / "files"
    files.mkdir()
    subprocess.run([TESTS, "--gtest_brief=1", "--gtest_filter=-*Damage*:*Truncat*:*Isolated*"],
                   env=dict(os.environ, ORVML_IO_TESTS_KEEP=str(files)), check=True, cwd=tmp_path,
                   stdout=subprocess.DEVNULL)
    kept = sorted(files.iterdir())
    assert len(kept) > 300, len(kept)
    use_all(kept[::EVERY], tmp_path)


def test_the_corpus_of_the_fuzzers_ends_well(tmp_path):
    corpus = [path for folder in ("regressions", "files", "raw") for path
              in sorted((SOURCE / "tests/corpus" / folder).rglob("*")) if path.is_file()]
    assert len(corpus) > 20
    use_all(corpus[::EVERY], tmp_path)


def test_a_file_cut_anywhere_ends_well(cube_file, tmp_path):
    content = cube_file.read_bytes()
    files = []
    for size in range(0, len(content), 97):
        files.append(tmp_path / f"{size}.h5")
        files[-1].write_bytes(content[:size])
    use_all(files, tmp_path)
