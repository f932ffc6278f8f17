"""Pages that Python makes: orvml.report(), document.report(), and what a notebook shows."""
import html
import os
import re

import numpy as np
import pytest

import orvml
from conftest import box_of_hexahedra


def test_reports_are_of_files_and_of_documents(browser, box, box_file, tmp_path):
    assert orvml.report(tmp_path / "file.html", box_file) == ()
    assert box.report(tmp_path / "document.html", title="Box") == ()
    for name, title, size in (("file", "box.h5", True), ("document", "Box", False)):
        page = browser.open(tmp_path / f"{name}.html")
        assert page.find("h1").text == title
        model = page.ask("({...meshPage.models[0], mesh: null})")
        assert model["counts"] == {"nodes": 60, "edges": 1, "faces": 12, "elements": 24}
        assert bool(model["file"]) is size
        assert isinstance(model["findings"], list)
    assert os.stat(tmp_path / "file.html").st_mode & 0o777 == 0o666 & ~_umask()


def _umask():
    mask = os.umask(0)
    os.umask(mask)
    return mask


def test_two_documents_are_compared(browser, box, tmp_path):
    other = box.copy()
    other.elements.attributes["load"][3] = 7
    orvml.report(tmp_path / "both.html", box, other, check=False)
    page = browser.open(tmp_path / "both.html")
    assert len(page.all("canvas")) == 2
    assert page.ask("meshPage.models[0].findings") is None
    objects = [name.text for name in page.all(".finding code")]
    assert len(objects) == 1 and objects[0].endswith("/load")


def test_tells_what_a_page_leaves_out(tmp_path):
    n = 64
    points = np.stack(np.meshgrid(*[np.arange(n + 1.0)] * 3, indexing="ij"), -1).reshape(-1, 3)
    number = np.arange(len(points)).reshape((n + 1,) * 3)
    corners = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)]
    cells = np.stack([number[a:n + a, b:n + b, c:n + c].ravel() for a, b, c in corners], 1)
    notes = orvml.report(tmp_path / "large.html", orvml.Output(points, elements=[("hexahedron", cells)]))
    assert len(notes) == 1 and "outer faces" in notes[0]


def test_refuses_what_is_no_document(tmp_path):
    with pytest.raises(ValueError, match="expected one, or two"):
        orvml.report(tmp_path / "page.html")
    with pytest.raises(TypeError):
        orvml.report(tmp_path / "page.html", 7)
    with pytest.raises(orvml.Error):
        orvml.report(tmp_path / "page.html", tmp_path / "missing.h5")
    assert list(tmp_path.iterdir()) == []


def test_a_page_that_cannot_be_written_leaves_the_old_one(box, tmp_path):
    folder = tmp_path / "page.html"
    folder.mkdir()
    with pytest.raises(OSError):
        box.report(folder)
    assert [path.name for path in tmp_path.iterdir()] == ["page.html"]


def test_notebooks_show_the_mesh(browser, box, tmp_path):
    shown = box._repr_html_()
    frame = re.search(r'<iframe srcdoc="([^"]*)"([^>]*)>', shown)
    assert 'sandbox="allow-scripts' in frame.group(2) and "allow-same-origin" not in frame.group(2)
    assert html.unescape(frame.group(1)).startswith("<!DOCTYPE html>")
    (tmp_path / "cell.html").write_text(f"<!DOCTYPE html><meta charset='utf-8'><body>{shown}")
    browser.resize(1000, 800)
    browser.driver.get((tmp_path / "cell.html").as_uri())
    browser.driver.switch_to.frame(browser.find("iframe"))
    browser.wait("document.querySelector('canvas')")
    assert browser.find("h1").text == "ORVML_OCTREE_MESHER"
    browser.driver.switch_to.default_content()
    assert browser.console() == []


def test_notebooks_keep_no_large_pages():
    points = np.zeros((3, 3))
    points[1, 0] = points[2, 1] = 1
    large = orvml.Input(points, faces=[("triangle", np.tile([[0, 1, 2]], (100_001, 1)))])
    assert "<iframe" not in large._repr_html_() and "100,001" in large._repr_html_()
    assert "<iframe" not in orvml.Input()._repr_html_()


def test_names_are_text(browser, tmp_path):
    document = box_of_hexahedra()
    document.module = '"><script>parent.hacked = 1</script>'
    (tmp_path / "cell.html").write_text(f"<!DOCTYPE html><body>{document._repr_html_()}")
    browser.driver.get((tmp_path / "cell.html").as_uri())
    assert browser.ask("window.hacked") is None
    assert len(browser.all("script")) == 0
