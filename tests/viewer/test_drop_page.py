"""The page onto which a file is dropped: what it reads is what the report of the same file has."""
import h5py
import numpy as np
import pytest

import orvml
from conftest import VIEWER, box_of_hexahedra


def give(browser, path):
    """Chooses a file, as dropping one does."""
    browser.open(VIEWER)
    browser.find("input[type=file]").send_keys(str(path))
    browser.wait("window.meshPage?.isReady || /[^…]$/.test(document.querySelector('.told')?.textContent ?? '')")
    return browser


def test_says_what_it_is_for(browser):
    page = browser.open(VIEWER)
    assert "Drop an exchange file here" in page.find(".target").text
    assert page.console() == [] and page.requests() == []


FACTS = """
  const model = meshPage.models[0];
  const fields = (part) => Object.fromEntries(part.fields.map((f) => [`${f.role} ${f.name}`, [...f.values]]));
  return {
    points: [...model.mesh.nodes.coordinates], nodes: fields(model.mesh.nodes), counts: model.counts,
    shapes: model.shapes, parameters: model.parameters, vectors: model.vectorParameters,
    identification: model.identification, kind: model.kind, dimension: model.dimension,
    cells: Object.fromEntries(model.mesh.cells.map((part) =>
      [part.entity, {groups: part.groups.map((g) => [g.shape, [...g.nodes]]), fields: fields(part)}])),
  };"""


def test_shows_what_the_report_shows(browser, box_page, box_file):
    told = browser.open(box_page).run(FACTS)
    read = give(browser, box_file).run(FACTS)
    np.testing.assert_allclose(read.pop("points"), told.pop("points"), atol=1e-8)
    for entity, part in told["cells"].items():
        fields = read["cells"][entity]["fields"]
        for name, values in part["fields"].items():
            np.testing.assert_allclose(fields.pop(name), values, rtol=1e-5, atol=1e-7, err_msg=name)
        assert fields == {}
        part["fields"] = {}
    assert read == told
    assert browser.console() == [] and browser.requests() == []


def test_can_be_used_as_a_report(browser, box_file):
    page = give(browser, box_file)
    page.choose(page.named("Coloured by"), "elements/attribute/region")
    assert (page.canvas()[..., 3] > 200).mean() > 0.1
    page.unfold("Clip plane")
    page.choose(page.named("Plane"), "x")
    assert page.console() == [] and page.requests() == []


def test_shows_either_document_or_both(browser, tmp_path):
    surface = orvml.Input([[0, 0, 0], [1, 0, 0], [0, 1, 0]], faces=[("triangle", [[0, 1, 2]])])
    orvml.write(tmp_path / "both.h5", surface, box_of_hexahedra())
    page = give(browser, tmp_path / "both.h5")
    kinds = "meshPage.models.map(({kind}) => kind)"
    assert page.ask(kinds) == ["output"]
    for choice, shown in (("input", ["input"]), ("both", ["output", "input"]), ("output", ["output"])):
        page.choose(page.named("Document"), choice)
        page.wait("meshPage.isReady")
        assert page.ask(kinds) == shown and len(page.all("canvas")) == len(shown)
    assert page.console() == [] and page.requests() == []


def test_reads_compressed_and_big_endian_files(browser, box_file, tmp_path):
    with h5py.File(box_file) as old, h5py.File(tmp_path / "other.h5", "w") as new:
        def take(name, found):
            if isinstance(found, h5py.Dataset):
                kept = {"compression": "gzip"} if found.shape and found.size > 4 else {}
                kind = found.dtype.newbyteorder(">") if found.dtype.kind in "if" else found.dtype
                target = new.create_dataset(name, data=found[()].astype(kind), **kept)
            else:
                target = new.require_group(name)
            for key, value in found.attrs.items():
                target.attrs[key] = value
        old.visititems(take)
        for key, value in old.attrs.items():
            new.attrs[key] = value
    told = give(browser, box_file).run(FACTS)
    assert give(browser, tmp_path / "other.h5").run(FACTS) == told


@pytest.mark.parametrize("content, sentence", (
    (b"", "."), (b"no file of HDF5 at all", "."), (b"\x89HDF\r\n\x1a\n" + bytes(200), ".")),
    ids=("empty", "text", "damaged"))
def test_tells_what_is_wrong_with_a_file(browser, tmp_path, content, sentence):
    (tmp_path / "bad.h5").write_bytes(content)
    page = give(browser, tmp_path / "bad.h5")
    assert page.ask("window.meshPage") is None
    told = page.find(".told").text
    assert len(told) > 10 and told.endswith(sentence)


def test_a_bad_file_does_not_take_the_mesh_away(browser, box_file, tmp_path):
    page = give(browser, box_file)
    (tmp_path / "bad.h5").write_bytes(b"bad")
    page.run("const data = new DataTransfer(); data.items.add(new File(['bad'], 'bad.h5'));"
             "dispatchEvent(new DragEvent('drop', {dataTransfer: data, cancelable: true}))")
    page.wait("/[^…]$/.test(document.querySelector('.told')?.textContent ?? '')")
    assert "bad.h5" in page.find(".told").text
    assert len(page.all("canvas")) == 1


def test_foreign_files_are_no_exchange_files(browser, tmp_path):
    with h5py.File(tmp_path / "foreign.h5", "w") as file:
        file["data"] = np.arange(5)
    assert "exchange file" in give(browser, tmp_path / "foreign.h5").find(".told").text


def test_names_are_text(browser, tmp_path):
    document = box_of_hexahedra()
    document.parameters["<img src=x onerror='window.hacked = 1'>"] = 1
    document.module = "</script><script>window.hacked = 2</script>"
    orvml.write(tmp_path / "<b>name.h5", document)
    page = give(browser, tmp_path / "<b>name.h5")
    assert page.ask("window.hacked") is None
    assert page.find("h1").text == "<b>name.h5"
    assert page.console() == [] and page.requests() == []
