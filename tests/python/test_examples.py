"""The examples and the pages do what they say."""
import contextlib
import io
import os
import pathlib
import re
import runpy
import subprocess
import sys

import pytest

import orvml
from conftest import SOURCE, make_cube


def test_dask_computes_the_statistics_of_a_folder(tmp_path):
    pytest.importorskip("dask")
    for i in (1, 2, 3):
        cube = make_cube(orvml.Output)
        cube.nodes.attributes.clear()
        cube.points = cube.points * i
        cube.nodes.attributes["height"] = cube.points[:, 2]
        orvml.write(tmp_path / f"{i}.h5", cube)
    program = SOURCE / "examples/python/statistics_of_a_folder.py"

    table = runpy.run_path(str(program))["main"](tmp_path)
    assert table["volume"].tolist() == pytest.approx([1, 8, 27])
    assert table["greatest height"].tolist() == [1, 2, 3] and set(table["elements"]) == {6}

    run = subprocess.run([sys.executable, "-B", program, tmp_path], capture_output=True, text=True)
    assert run.returncode == 0, run.stderr
    assert [line.split()[0] for line in run.stdout.splitlines()][2:] == ["1.h5", "2.h5", "3.h5"]


BLOCK = re.compile(r"^```(python|text)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


@contextlib.contextmanager
def folder(path):
    before = os.getcwd()
    os.chdir(path)
    try:
        yield
    finally:
        os.chdir(before)


def test_the_page_prints_what_it_says(tmp_path):
    for module in ("vtkmodules", "matplotlib", "meshio", "pandas"):
        pytest.importorskip(module)
    blocks = BLOCK.findall((SOURCE / "docs/python.md").read_text())
    assert len(blocks) > 10
    names = {}
    printed = io.StringIO()
    with folder(tmp_path), contextlib.redirect_stdout(printed):
        for language, block in blocks:
            if language == "python":
                exec(compile(block, "docs/python.md", "exec"), names)
            else:
                assert printed.getvalue() == block, "\n" + block
                printed.seek(0)
                printed.truncate()
    assert not printed.getvalue()
    assert pathlib.Path(tmp_path / "cube.png").stat().st_size > 1000


def texts_of(cell):
    """What a cell of a notebook shows, apart from pictures."""
    found = []
    for output in cell.get("outputs", ()):
        if output["output_type"] == "error":
            found.append(f"{output['ename']}: {output['evalue']}")
        elif "text" in output:
            found.append("".join(output["text"]))
        else:
            data = output["data"]
            # NumPy 2 names the type of a number.
            text = re.sub(r"np\.float64\(([^()]*)\)", r"\1", "".join(data["text/plain"]))
            found.append("picture" if "image/png" in data else text)
    return found


def test_the_notebook_shows_what_it_shows(tmp_path):
    for module in ("nbclient", "ipykernel", "vtkmodules", "matplotlib", "pandas"):
        pytest.importorskip(module)
    import nbformat
    from nbclient import NotebookClient

    page = SOURCE / "docs/tutorial.ipynb"
    stored = nbformat.read(page, as_version=4)
    fresh = nbformat.read(page, as_version=4)
    # The kernel is this Python, wherever the machine's own kernel leads.
    kernel = tmp_path / "kernels" / "python3"
    kernel.mkdir(parents=True)
    (kernel / "kernel.json").write_text(
        '{"argv": ["%s", "-B", "-m", "ipykernel_launcher", "-f", "{connection_file}"], '
        '"display_name": "Python 3", "language": "python"}' % sys.executable)
    os.environ["JUPYTER_PATH"] = str(tmp_path)
    NotebookClient(fresh, kernel_name="python3", timeout=300,
                   resources={"metadata": {"path": str(tmp_path)}}).execute()
    if os.environ.get("ORVML_RECORD_NOTEBOOK"):
        for cell in fresh.cells:
            cell.metadata.clear()
        nbformat.write(fresh, page)
        stored = fresh
    for cell, again in zip(stored.cells, fresh.cells):
        assert texts_of(cell) == texts_of(again), cell["source"]
    assert [t for cell in stored.cells for t in texts_of(cell)].count("picture") == 3
