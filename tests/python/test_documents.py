"""Documents are made of whatever is like an array, and share it."""
import copy
import pickle

import numpy as np
import pytest

import orvml


def address(array):
    return array.__array_interface__["data"][0]


def test_a_document_is_made_of_lists():
    part = orvml.Input([[0, 0], [1, 0], [0, 1]], faces=[("triangle", [[0, 1, 2]])])

    assert part.kind == "input" and part.dimension == 2
    assert part.points.dtype == np.float64 and part.points.shape == (3, 2)
    assert part.faces[0].shape is orvml.Shape.TRIANGLE
    assert part.faces[0].node_indices.dtype == np.int32
    assert part.faces.size == 1 and part.edges.size == 0


def test_arrays_that_fit_are_shared_and_not_copied():
    points = np.zeros((4, 3))
    nodes = np.array([[0, 1, 2, 3]], np.int32)
    values = np.arange(4.0)

    part = orvml.Output(points, elements=[("tetrahedron", nodes)])
    part.nodes.attributes["size"] = values

    assert address(part.points) == address(points)
    assert address(part.elements[0].node_indices) == address(nodes)
    assert address(part.nodes.attributes["size"]) == address(values)
    assert part.points.flags.writeable


def test_arrays_that_do_not_fit_are_converted():
    points = np.asfortranarray(np.arange(12, dtype=">f4").reshape(4, 3))
    part = orvml.Input(points, elements=[("tetrahedron", np.array([[3, 2, 1, 0]], np.uint64)[:, ::-1])])

    assert part.points.flags.c_contiguous and part.points.dtype == np.float64
    assert np.array_equal(part.points, points)
    assert part.elements[0].node_indices.tolist() == [[0, 1, 2, 3]]


def test_misaligned_arrays_are_copied(tmp_path):
    raw = np.zeros(8 * 6 + 1, np.uint8)[1:].view(np.float64).reshape(2, 3)
    assert not raw.flags.aligned

    part = orvml.Input(raw)

    assert part.points.flags.aligned
    orvml.write(tmp_path / "part.h5", part)


def test_objects_that_offer_an_array_are_taken():
    class Offers:
        def __array__(self, dtype=None, copy=None):
            return np.ones((2, 3), dtype)

    assert orvml.Input(Offers()).points.tolist() == [[1, 1, 1], [1, 1, 1]]


@pytest.mark.parametrize("error, sentence, make", [
    (ValueError, "points has the shape (3,), expected (n, 2) or (n, 3)",
     lambda: orvml.Input([1.0, 2.0, 3.0])),
    (ValueError, "points has the shape (2, 4), expected (n, 2) or (n, 3)",
     lambda: orvml.Input(np.zeros((2, 4)))),
    (ValueError, "points has the shape (2, 2), expected (n, 3)",
     lambda: orvml.Input(np.zeros((2, 2)), dimension=3)),
    (TypeError, "points holds <U1, expected numbers", lambda: orvml.Input([["a", "b"]])),
    (TypeError, "points holds complex128, expected numbers",
     lambda: orvml.Input(np.zeros((1, 3), complex))),
    (ValueError, "dimension is 4, expected 2 or 3", lambda: orvml.Input(dimension=4)),
    (TypeError, "dimension is 2.5, expected an integer", lambda: orvml.Input(dimension=2.5)),
    (ValueError, "faces[0] has the shape (3,), expected (cells, nodes per cell)",
     lambda: orvml.Input(faces=[("triangle", [0, 1, 2])])),
    (TypeError, "faces[0] holds float64, expected integers",
     lambda: orvml.Input(faces=[("triangle", [[0.0, 1.0, 2.0]])])),
    (ValueError, "elements[1] holds 2147483648, expected integers of 32 bits",
     lambda: orvml.Input(elements=[("tetrahedron", np.zeros((0, 4))),
                                   ("tetrahedron", [[0, 1, 2, 2**31]])])),
    (ValueError, "edges[0] has the shape 'octagon', expected one of none, line, triangle, "
     "quadrilateral, tetrahedron, hexahedron, prism, point, pyramid, sphere, circle",
     lambda: orvml.Input(edges=[("octagon", [[0, 1]])])),
    (TypeError, "edges[0] has the shape 1.5, expected a Shape or its name",
     lambda: orvml.Input(edges=[(1.5, [[0, 1]])])),
    (TypeError, "faces[0] is int, expected a shape and an array", lambda: orvml.Input(faces=[7])),
    (TypeError, "parameters['size'] is 'large', expected a number",
     lambda: orvml.Input(parameters={"size": "large"})),
    (ValueError, "vector_parameters['v'] has the shape (1, 2), expected (n,)",
     lambda: orvml.Input(vector_parameters={"v": [[1, 2]]})),
    (TypeError, "parameters['size'] is array([1, 2]), expected a number",
     lambda: orvml.Input(parameters={"size": np.array([1, 2])})),
    (ValueError, "points has masked values, expected none",
     lambda: orvml.Input(np.ma.array([[0.0, 1, 2]], mask=[[0, 1, 0]]))),
    (TypeError, "faces is ndarray, expected pairs of a shape and an array",
     lambda: orvml.Input(faces=np.array([[0, 1, 2]]))),
    (TypeError, "faces is NoneType, expected pairs of a shape and an array",
     lambda: orvml.Input(faces=None)),
    (ValueError, "faces[0] has the shape (3, 0), expected (cells, nodes per cell)",
     lambda: orvml.Input(faces=[("triangle", np.zeros((3, 0), int))])),
    (ValueError, "faces[0] has the shape 1099511627776, expected a number of 32 bits",
     lambda: orvml.Input(faces=[(2**40, [[0, 1]])])),
    (ValueError, "faces[0] holds 9223372036854775807, expected integers of 32 bits",
     lambda: orvml.Input(faces=[("triangle", [[0, 1, 2**70]])])),
    (TypeError, "module is b'x', expected str", lambda: orvml.Input(module=b"x")),
    (TypeError, "a document is an orvml.Input or an orvml.Output", lambda: orvml.Document()),
])
def test_arguments_that_make_no_document_are_named(error, sentence, make):
    with pytest.raises(error) as raised:
        make()
    assert str(raised.value) == sentence


def test_rows_of_different_lengths_are_refused():
    with pytest.raises((TypeError, ValueError), match="^points "):
        orvml.Input([[0, 0, 0], [1, 1]])


def test_attributes_have_one_value_each(cube):
    with pytest.raises(ValueError) as raised:
        cube.nodes.attributes["size"] = [1.0, 2.0]
    assert str(raised.value) == "nodes.attributes['size'] has the shape (2,), expected (8,)"
    with pytest.raises(TypeError, match="has a name of int, expected str"):
        cube.nodes.attributes[3] = np.zeros(8)


def test_attributes_are_arrays_with_a_flag(cube):
    identities = cube.nodes.attributes["id"]

    assert isinstance(identities, np.ndarray) and identities.dtype == np.int32
    assert identities.must_be_transmitted
    assert identities[2:4].must_be_transmitted
    assert not cube.nodes.attributes["temperature"].must_be_transmitted
    assert type(identities + 1) is np.ndarray
    assert not hasattr(identities.sum(), "must_be_transmitted")
    assert identities.sum() == 28


def test_the_flag_goes_with_the_array(cube):
    cube.nodes.attributes["copy"] = cube.nodes.attributes["id"]
    assert cube.nodes.attributes["copy"].must_be_transmitted

    cube.nodes.attributes["copy"].must_be_transmitted = False
    assert not cube.nodes.attributes["copy"].must_be_transmitted
    assert cube.nodes.attributes["id"].must_be_transmitted


def test_truth_values_and_integers_become_ints_and_others_doubles(cube):
    cube.nodes.attributes["a"] = np.arange(8) > 3
    cube.nodes.attributes["b"] = np.arange(8, dtype=np.float16)

    assert cube.nodes.attributes["a"].dtype == np.int32
    assert cube.nodes.attributes["b"].dtype == np.float64


def test_nodes_and_cells_may_change_as_long_as_no_attribute_is_lost_unseen(cube):
    cube.points = cube.points * 2
    assert cube.points[7].tolist() == [2, 2, 2]
    with pytest.raises(ValueError, match="its attributes temperature, id have 8: remove them first"):
        cube.points = np.zeros((5, 3))
    with pytest.raises(ValueError, match="its attributes material have 6"):
        cube.elements = []

    cube.nodes.attributes.clear()
    cube.points = np.zeros((5, 3))
    assert cube.nodes.size == 5


def test_groups_can_be_listed_and_their_cells_counted(cube):
    group = cube.elements[0]

    assert len(cube.elements) == 1 and len(group) == 6 and group.nodes_per_cell == 4
    assert group[0].tolist() == [0, 1, 3, 7]
    assert np.asarray(group).shape == (6, 4)
    assert [g.shape for g in cube.faces] == [orvml.Shape.TRIANGLE]


def test_numbers_that_name_no_shape_are_carried():
    assert orvml.Input(faces=[(77, [[0, 1]])]).faces[0].shape == 77


def test_copies_share_nothing(cube):
    other = cube.copy()
    other.points[0] = 9
    other.parameters["size"] = 3
    other.elements.attributes.clear()
    other.elements = [("tetrahedron", [[0, 1, 2, 4]])]
    other.elements.attributes["material"] = [5]

    assert cube.points[0].tolist() == [0, 0, 0] and cube.parameters["size"] == 0.5
    assert other.nodes.attributes["id"].must_be_transmitted
    assert other.elements._nodes is other.nodes


def test_documents_can_be_sent_to_other_processes(cube, cube_file):
    for document in (cube, orvml.read(cube_file), orvml.open(cube_file)):
        back = pickle.loads(pickle.dumps(document))
        assert orvml.diff(cube, back).are_same
        assert copy.copy(document).points is document.points


def test_measures_have_a_value_for_each_cell(cube):
    assert np.allclose(cube.elements.sizes(), 1 / 6)
    assert cube.faces.quality("smallest angle").tolist() == pytest.approx([45] * 12)
    assert np.isnan(orvml.Input([[0, 0, 0]], elements=[("point", [[0]])]).elements.sizes()).all()
    with pytest.raises(ValueError, match="measure is 'beauty', expected one of scaled Jacobian, "):
        cube.elements.quality("beauty")


def test_shapes_have_the_names_of_the_library():
    from orvml import _orvml

    assert [shape.name.lower() for shape in orvml.Shape] == list(_orvml.shape_names)


def test_a_document_says_what_is_inside(cube):
    assert repr(cube) == """<input document of dimension 3
  module             ORVML_OCTREE_MESHER 1.2
  creator            tests
  nodes              8
  faces              12: 12 triangle of 3
  elements           6: 6 tetrahedron of 4
  nodes have         temperature, id
  faces have         side
  elements have      material
  parameters         size = 0.5, growth = 1.25
  vector parameters  sizes (2), counts (3)>"""
    assert repr(cube.elements) == "<6 elements: <6 of tetrahedron with 4 nodes>>"


def test_names_are_text_in_notebooks_and_at_the_prompt(cube):
    cube.parameters = {"</table><script>alert(1)</script>": 1, "line\nbreak\x1b[2J": 2,
                       "\udcff": 3}
    page = cube._repr_html_()

    assert "<script>" not in page and "&lt;script&gt;" in page
    page.encode()
    assert "\x1b" not in repr(cube) and len(repr(cube).splitlines()) == 11


def test_tables_have_a_row_for_each(cube):
    pandas = pytest.importorskip("pandas")

    nodes = cube.nodes.to_pandas()
    assert list(nodes.columns) == ["x", "y", "z", "temperature", "id"] and len(nodes) == 8
    faces = cube.faces.to_pandas()
    assert list(faces.columns) == ["shape", "nodes", "side"]
    assert faces["nodes"][0] == (0, 2, 3) and faces["shape"][0] == "triangle"
    attributes = cube.nodes.attributes.to_pandas()
    assert attributes.attrs["must_be_transmitted"] == ["id"]
    assert isinstance(cube.parameters.to_pandas(), pandas.Series)
    assert cube.parameters.to_pandas()["growth"] == 1.25


def test_what_is_added_in_place_stays_an_attribute(cube):
    cube.nodes.attributes["id"] += 1
    assert cube.nodes.attributes["id"].must_be_transmitted
    assert cube.nodes.attributes["id"].tolist() == list(range(1, 9))


def test_numbers_in_boxes_and_numbers_of_numpy_are_taken():
    part = orvml.Input(np.array([[0, 1.5, 2]], object),
                       faces=[(np.int32(2), np.array([[0, 0, 0]], object)), ("triangle", [])])
    assert part.points.tolist() == [[0, 1.5, 2]] and part.faces.size == 1
    assert orvml.Input([[0, 0]], faces=(orvml.Shape.TRIANGLE, [[0, 0, 0]])).faces.size == 1


@pytest.mark.parametrize("call, sentence", [
    (lambda cube, path: orvml.read(path, threads=1.5), "threads is 1.5, expected an integer"),
    (lambda cube, path: orvml.check(cube, places="a"), "places is 'a', expected an integer"),
    (lambda cube, path: orvml.check(cube, places=2**40),
     "places is 1099511627776, expected an integer of 32 bits"),
    (lambda cube, path: orvml.diff(cube, cube, match_within="a"),
     "match_within is 'a', expected a number"),
    (lambda cube, path: orvml.diff(cube, cube, tolerance_of={"a": "b"}),
     "tolerance_of['a'] is 'b', expected a number"),
])
def test_other_arguments_are_named_too(cube, cube_file, call, sentence):
    with pytest.raises((TypeError, ValueError)) as raised:
        call(cube, cube_file)
    assert str(raised.value) == sentence


def test_vectors_and_flags_are_in_tables(cube):
    pytest.importorskip("pandas")
    assert cube.vector_parameters.to_pandas()["counts"].tolist() == [1, 2, 3]
    assert cube.nodes.to_pandas().attrs["must_be_transmitted"] == ["id"]
