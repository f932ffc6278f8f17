"""What is said of documents: findings, differences, digests."""
import numpy as np
import pytest

import orvml
from conftest import make_cube


def test_a_sound_document_has_no_errors(cube, cube_file):
    for given in (cube, cube_file, str(cube_file)):
        report = orvml.check(given)
        assert report.is_clean and report.worst == "note", report


def test_findings_say_what_where_and_how_to_cure_it(cube):
    cube.elements[0].node_indices[2, 1] = 99
    report = orvml.check(cube, places=3)

    finding = next(f for f in report.findings if f.code == "orvml.mesh.index-out-of-range")
    assert finding.severity == "error" and finding.object == "/OrvInput/Elements"
    assert finding.places == (("element", 2),) and finding.count == 1
    assert finding.sentence.startswith("/OrvInput/Elements") and finding.cure
    assert report.worst == "error" and not report.is_clean


def test_quality_is_measured_when_it_is_asked_for(cube):
    assert orvml.check(cube).quality == ()
    quality = orvml.check(cube, quality=True, threads=2).quality

    assert [(q.entity, q.shape.name, q.cells) for q in quality] == [
        ("faces", "TRIANGLE", 12), ("elements", "TETRAHEDRON", 6)]
    figure = quality[1].figures[0]
    assert figure.name == "scaled Jacobian" and list(figure.percentiles) == [1, 5, 25, 50, 75, 95, 99]
    assert figure.minimum == pytest.approx(cube.elements.quality().min())
    assert len(figure.worst) == 6


def test_differences_are_told_and_tolerated(cube):
    other = cube.copy()
    other.points[3, 1] += 1e-6
    other.parameters["growth"] = 2
    del other.vector_parameters["counts"]
    report = orvml.diff(cube, other)

    assert not report.are_same and report.are_equal_by_contract is False
    assert [(d.object, d.change) for d in report.differences] == [
        ("/Nodes/coordinates", "values"), ("/parameters/growth", "values"),
        ("/ParametersVector/counts", "only-in-first")]
    assert report.differences[0].count == 1 and report.differences[0].worst == 10
    assert len(orvml.diff(cube, other, absolute=1).differences) == 1
    assert len(orvml.diff(cube, other, tolerance_of={"coordinates": 1e-3, "growth": (0, 0.5)}
                          ).differences) == 1
    with pytest.raises(ValueError):
        orvml.diff(cube, other, absolute=-1)


def test_renumbered_meshes_are_matched(cube):
    order = np.random.default_rng(3).permutation(8)
    new = np.argsort(order)
    other = orvml.Input(cube.points[order], faces=[("triangle", new[np.asarray(cube.faces[0])])],
                        elements=[("tetrahedron", new[np.asarray(cube.elements[0])])])
    report = orvml.diff(orvml.Input(cube.points, faces=list(cube.faces), elements=list(cube.elements)),
                        other, match_within=1e-9)

    assert report.are_same and report.match.nodes.matched == 8
    assert report.match.nodes.is_renumbered and report.match.elements.only_in_second == 0


def test_fingerprints_are_of_the_content(cube, cube_file):
    of_memory = orvml.fingerprint(cube)

    assert of_memory == orvml.fingerprint(cube_file) == orvml.fingerprint(orvml.open(cube_file))
    assert str(of_memory) == of_memory.document and len(of_memory.document) == 32
    cube.nodes.attributes["id"].must_be_transmitted = False
    changed = orvml.fingerprint(cube)
    assert changed.document != of_memory.document
    assert changed.node_attributes != of_memory.node_attributes
    assert changed.nodes == of_memory.nodes


def test_the_fingerprint_is_the_one_that_the_page_defines(cube, cube_file):
    import exchange_reader
    import fingerprint

    document = exchange_reader.read_file(cube_file)["OrvInput"]
    assert orvml.fingerprint(make_cube()).document == fingerprint.of(document, b"input")["document"]
