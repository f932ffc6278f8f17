"""Thirty other formats through meshio, and what is lost on the way."""
import subprocess
import sys
import warnings

import numpy as np
import pytest

import orvml
from conftest import make_cube

meshio = pytest.importorskip("meshio")
ours = pytest.importorskip("orvml.meshio")

FORMS = [("line", 2), ("line", 3), ("triangle", 3), ("triangle", 6), ("quadrilateral", 4),
         ("quadrilateral", 8), ("quadrilateral", 9), ("tetrahedron", 4), ("tetrahedron", 10),
         ("hexahedron", 8), ("hexahedron", 20), ("hexahedron", 27), ("prism", 6), ("prism", 18),
         ("pyramid", 5)]


def entity_of(shape):
    return ("edges" if shape == "line" else
            "faces" if shape in ("triangle", "quadrilateral") else "elements")


@pytest.fixture
def plain_cube():
    """A cube that loses nothing."""
    cube = make_cube(orvml.Output)
    cube.module = cube.module_format_version = cube.creator = ""
    cube.parameters.clear()
    cube.vector_parameters.clear()
    cube.nodes.attributes["id"].must_be_transmitted = False
    return cube


@pytest.mark.parametrize("shape, nodes", FORMS)
def test_every_form_goes_there_and_back(shape, nodes):
    document = orvml.Output(np.random.default_rng(1).random((nodes, 3)),
                            **{entity_of(shape): [(shape, [np.arange(nodes)])]})
    mesh = ours.to_meshio(document, strict=True)
    assert mesh.cells[0].data.tolist() == [list(range(nodes))]
    assert orvml.diff(ours.from_meshio(mesh, strict=True), document).are_same


@pytest.mark.parametrize("shape, nodes", [("prism", 15), ("pyramid", 13), ("triangle", 7),
                                          ("hexahedron", 24), ("sphere", 1)])
def test_forms_that_meshio_does_not_have_are_warned_about(shape, nodes):
    document = orvml.Output(np.zeros((nodes, 3)), elements=[
        ("tetrahedron", [[0, 0, 0, 0]]), (shape, [np.zeros(nodes, int)])])
    document.elements.attributes["material"] = [4, 5]
    with pytest.warns(ours.ConversionWarning, match=f"elements: 1 of {shape} with {nodes} nodes have "
                                                    "no cell in meshio"):
        mesh = ours.to_meshio(document)
    assert [b.type for b in mesh.cells] == ["tetra"]
    assert mesh.cell_data["material"][0].tolist() == [4]
    with pytest.raises(orvml.Error) as raised:
        ours.to_meshio(document, strict=True)
    assert raised.value.code == "orvml.convert.loses"


def test_arrays_are_shared(cube):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        mesh = ours.to_meshio(cube)
    assert np.shares_memory(mesh.points, cube.points)
    assert np.shares_memory(mesh.cells[1].data, cube.elements[0].node_indices)
    assert np.shares_memory(mesh.point_data["temperature"], cube.nodes.attributes["temperature"])


def test_attributes_of_one_kind_are_padded_and_come_back(plain_cube):
    mesh = ours.to_meshio(plain_cube, strict=True)
    assert [b.type for b in mesh.cells] == ["triangle", "tetra"]
    assert mesh.cell_data["side"][1].tolist() == [-1] * 6
    assert [set(part) for part in mesh.cell_data[ours.CONTAINER]] == [{2}, {3}]

    back = ours.from_meshio(mesh, strict=True)
    assert list(back.elements.attributes) == ["material"]
    assert orvml.diff(back, plain_cube).are_same


def test_the_container_tells_what_the_shape_does_not():
    odd = orvml.Output(np.zeros((3, 3)), elements=[("triangle", [[0, 1, 2]])])
    back = ours.from_meshio(ours.to_meshio(odd, strict=True), strict=True)
    assert back.elements.size == 1 and back.faces.size == 0


def test_losses_towards_meshio_are_each_told_once(cube):
    with pytest.warns(ours.ConversionWarning) as told:
        ours.to_meshio(cube)
    assert [str(w.message) for w in told] == [
        "the parameter 'size' has no place in meshio", "the parameter 'growth' has no place in meshio",
        "the parameter 'sizes' has no place in meshio", "the parameter 'counts' has no place in meshio",
        "module and creator have no place in meshio",
        "the attribute 'id' no longer says that it must be transmitted"]


def test_losses_from_meshio_are_told():
    mesh = meshio.Mesh(np.zeros((3, 3)), [("triangle", [[0, 1, 2]]), ("hexahedron64", np.zeros((1, 64), int))],
                       point_data={"velocity": np.zeros((3, 3)), "large": np.array([0, 1, 2**40]),
                                   "column": np.ones((3, 1))},
                       cell_data={"a": [np.ones(1), np.ones(1)]}, point_sets={"left": [0]})
    with pytest.warns(ours.ConversionWarning) as told:
        document = ours.from_meshio(mesh)
    assert [str(w.message) for w in told] == [
        "1 cells of the type 'hexahedron64' are no cells of the format",
        "nodes: the data 'velocity' of float64, shape (3, 3), have not one number for each",
        "nodes: the data 'large' have integers of more than 32 bits",
        "the point_sets of the mesh have no place in the format"]
    assert list(document.nodes.attributes) == ["column"]
    assert document.faces.attributes["a"].tolist() == [1]


def test_it_is_a_format_of_meshio(plain_cube, tmp_path):
    mesh = ours.to_meshio(plain_cube)
    meshio.write(tmp_path / "cube.orvml", mesh)
    assert orvml.diff(tmp_path / "cube.orvml", plain_cube).are_same
    assert meshio.read(tmp_path / "cube.orvml").cells[1].data.shape == (6, 4)
    meshio.write(tmp_path / "cube.h5", mesh, file_format="orvml")
    assert orvml.describe(tmp_path / "cube.h5").output.elements.size == 6
    assert len(meshio.read(tmp_path / "cube.h5").points) == 8
    with pytest.raises(orvml.Error) as raised:
        meshio.read(__file__, file_format="orvml")
    assert raised.value.code == "orvml.file.not-hdf5"


def run(*arguments):
    done = subprocess.run([sys.executable, "-m", "orvml._meshio_command", *map(str, arguments)],
                          capture_output=True, text=True)
    return done.returncode, done.stdout, done.stderr


@pytest.mark.parametrize("ending", ["vtk", "vtu", "xdmf", "med", "mesh", "inp", "stl", "ply"])
def test_the_command_converts_there_and_back(plain_cube, tmp_path, ending):
    orvml.write(tmp_path / "cube.h5", plain_cube)
    for source, target in (("cube.h5", f"there.{ending}"), (f"there.{ending}", "back.h5")):
        code, _, told = run("convert", tmp_path / source, tmp_path / target)
        assert code == 0, told
    back = orvml.read(tmp_path / "back.h5")
    assert back.faces.size == 12
    if ending in ("vtk", "vtu", "xdmf"):
        assert np.array_equal(back.points, plain_cube.points)
        assert back.elements[0].node_indices.tolist() == plain_cube.elements[0].node_indices.tolist()
        assert back.elements.attributes["material"].tolist() == [1, 1, 1, 2, 2, 2]


def test_the_command_tells_losses_and_is_strict_when_asked(cube_file, tmp_path):
    code, printed, told = run("convert", cube_file, tmp_path / "a.vtu")
    assert code == 0 and not printed
    assert "orvml-meshio: the parameter 'size' has no place in meshio\n" in told

    code, _, told = run("convert", "--strict", cube_file, tmp_path / "b.vtu")
    assert code == 3 and "no place in meshio" in told and not (tmp_path / "b.vtu").exists()


@pytest.mark.parametrize("ending, sentence", [
    ("stl", "6 of 6 cells of the type 'tetra' are not in the file"),
    ("mesh", "8 of 8 values of the data 'temperature' of the points are not in the file")])
def test_what_the_writers_of_meshio_leave_out_is_told(plain_cube, tmp_path, ending, sentence):
    orvml.write(tmp_path / "cube.h5", plain_cube)
    target = tmp_path / f"out.{ending}"
    code, _, told = run("convert", "--strict", tmp_path / "cube.h5", target)
    assert code == 3 and sentence in told
    assert [path.name for path in tmp_path.iterdir()] == ["cube.h5"]

    code, _, told = run("convert", tmp_path / "cube.h5", target)
    assert code == 0 and f"orvml-meshio: {sentence}\n" in told and target.exists()


def test_formats_of_two_files_arrive_whole_and_nothing_is_lost(plain_cube, tmp_path):
    orvml.write(tmp_path / "cube.h5", plain_cube)
    code, _, told = run("convert", "--strict", tmp_path / "cube.h5", tmp_path / "out.xdmf")
    assert (code, told) == (0, "")
    assert sorted(path.name for path in tmp_path.iterdir()) == ["cube.h5", "out.h5", "out.xdmf"]
    assert len(meshio.read(tmp_path / "out.xdmf").points) == 8


def test_a_second_file_never_takes_the_place_of_another(plain_cube, tmp_path):
    orvml.write(tmp_path / "cube.h5", plain_cube)
    before = (tmp_path / "cube.h5").read_bytes()
    code, _, told = run("convert", tmp_path / "cube.h5", tmp_path / "cube.xdmf")
    assert code == 3
    assert told == (f"orvml-meshio: {tmp_path / 'cube.xdmf'} comes with a second file, cube.h5, of "
                    "which there is one already\n")
    assert [path.name for path in tmp_path.iterdir()] == ["cube.h5"]
    assert (tmp_path / "cube.h5").read_bytes() == before


def test_one_of_the_files_is_an_exchange_file(plain_cube, tmp_path):
    meshio.write(tmp_path / "a.vtk", ours.to_meshio(plain_cube))
    code, _, told = run("convert", tmp_path / "a.vtk", tmp_path / "b.vtu")
    assert code == 3 and told == "orvml-meshio: neither IN nor OUT is an exchange file\n"


def test_the_command_ends_with_a_sentence_when_something_fails(cube_file, tmp_path):
    code, _, told = run("convert", tmp_path / "missing.h5", tmp_path / "a.vtu")
    assert code == 3 and told == f"orvml-meshio: {tmp_path / 'missing.h5'}: there is no such file\n"
    (tmp_path / "bad.vtu").write_text("no mesh")
    code, _, told = run("convert", tmp_path / "bad.vtu", tmp_path / "a.h5")
    assert code == 3 and "Traceback" not in told and not (tmp_path / "a.h5").exists()
    assert run("convert")[0] == 2
    assert run("convert", "--help")[0] == 0


def test_attributes_of_several_types_have_one(plain_cube):
    plain_cube.faces.attributes["m"] = [-1] * 12
    plain_cube.elements.attributes["m"] = [0.5] * 6
    mesh = ours.to_meshio(plain_cube, strict=True)
    assert {part.dtype for part in mesh.cell_data["m"]} == {np.dtype(float)}
    assert list(mesh.cell_data)[-1] == ours.CONTAINER
    back = ours.from_meshio(mesh)
    assert back.faces.attributes["m"].tolist() == [-1.0] * 12


def test_padding_of_others_is_data():
    mesh = meshio.Mesh(np.zeros((3, 3)), [("line", [[0, 1]]), ("triangle", [[0, 1, 2]])],
                       cell_data={"m": [np.array([-1]), np.array([3])]})
    document = ours.from_meshio(mesh, strict=True)
    assert document.edges.attributes["m"].tolist() == [-1]


def test_names_that_one_side_cannot_hold_are_told():
    mesh = meshio.Mesh(np.zeros((1, 3)), [], point_data={"a/b": np.ones(1), "n" * 80: np.ones(1)})
    with pytest.warns(ours.ConversionWarning) as told:
        assert not ours.from_meshio(mesh).nodes.attributes
    assert "nodes: the data 'a/b' have a name that no file can hold" in str(told[0].message)
    document = orvml.Output([[0, 0, 0]])
    document.nodes.attributes["\udcff"] = [1]
    with pytest.warns(ours.ConversionWarning, match="is named"):
        assert list(ours.to_meshio(document).point_data) == ["\\udcff"]


def test_warnings_are_of_the_line_that_converts(cube):
    with pytest.warns(ours.ConversionWarning) as told:
        ours.to_meshio(cube)
    assert {warning.filename for warning in told} == {__file__}
