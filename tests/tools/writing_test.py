#!/usr/bin/env python3
"""What `orvml edit` and `new` write, read without the library."""
import json
import os
import struct
import unittest

import h5py
import numpy as np

import exchange_reader
from shell import INT, SOURCE, Shell, documents, exchange_writer, tetrahedron

import jsonschema

CORNERS = [(0, 0, 0), (2, 0, 0), (0, 1, 0), (0, 0, 0.5)]
FACES = [(0, 2, 1), (0, 1, 3), (1, 2, 3), (0, 3, 2)]


class Writing(Shell):
    def read(self, name="part.h5", kind="OrvInput"):
        return exchange_reader.read_file(self.folder / name)[kind]

    def assert_refused(self, line, sentence, code=2):
        found, printed, told = self.run_line(line)
        self.assertEqual((found, printed), (code, ""), told)
        self.assertIn(sentence, told)
        self.assertIn("\n  cure: ", told)


class Edit(Writing):
    def setUp(self):
        super().setUp()
        self.write("part.h5", tetrahedron())

    def test_parameters_are_set_and_removed_and_the_rest_stays(self):
        self.assert_prints("orvml edit part.h5 --param growth=1.25 --param 'a=b=-1e-3' "
                           "--remove parameters/size", "")
        document = self.read()
        self.assertEqual(document.parameters, {b"growth": 1.25, b"a=b": -1e-3})
        self.assertEqual(document.creator, b"shell test")
        np.testing.assert_array_equal(document.coordinates, tetrahedron().coordinates)
        np.testing.assert_array_equal(document.cells["Faces"].attributes[b"size"].values,
                                      [0.5, 0.25, 1, 2])

    def test_types_of_vectors(self):
        for text, expected in (("new=1,2", documents.ints(1, 2)),
                               ("new=1,2.5", documents.doubles(1, 2.5)),
                               ("new=double:1,2", documents.doubles(1, 2)),
                               ("sizes=1,2", documents.doubles(1, 2)),
                               ("sizes=int:1,2", documents.ints(1, 2)),
                               ("new=", documents.ints()), ("new=nan,-inf", documents.doubles(np.nan, -np.inf)),
                               ("new=2147483648", documents.doubles(2.0**31))):
            with self.subTest(text=text):
                self.write("part.h5", tetrahedron())
                self.assert_prints(f"orvml edit part.h5 --vector '{text}'", "")
                found = self.read().vectors[text.split("=")[0].encode()].values
                self.assertEqual(found.dtype, expected.values.dtype)
                np.testing.assert_array_equal(found, expected.values)

    def test_attributes_are_set_for_all_or_each_and_keep_their_flag(self):
        self.assert_prints("orvml edit part.h5 --attribute faces/size=3 --transmit", "")
        self.assert_prints("orvml edit part.h5 --attribute faces/size=4,5,6,7 "
                           "--attribute elements/colour=9", "")
        cells = self.read().cells
        size = cells["Faces"].attributes[b"size"]
        self.assertEqual((size.values.tolist(), size.must_be_transmitted), ([4, 5, 6, 7], True))
        colour = cells["Elements"].attributes[b"colour"]
        self.assertEqual((colour.values.tolist(), colour.values.dtype, colour.must_be_transmitted),
                         ([9], INT, False))

    def test_what_extract_prints_can_be_set(self):
        self.assert_prints("orvml extract part.h5 Faces/Attributes/size >'a = b' && "
                           "orvml edit part.h5 --attribute 'faces/copy=@a = b' && "
                           "orvml extract part.h5 size --format text >/dev/null || "
                           "orvml extract part.h5 copy", "0.5\n0.25\n1\n2\n", told=self.ambiguous())

    @staticmethod
    def ambiguous():
        return ("orvml: error: part.h5: 'size' may be /OrvInput/Faces/Attributes/size, "
                "/OrvInput/parameters/size\n  cure: give more of the path\n")

    def test_only_the_chosen_document_changes(self):
        exchange_writer.write_file(self.folder / "both.h5",
                                   {"OrvInput": tetrahedron(), "OrvOutput": tetrahedron()})
        self.assert_refused("orvml edit both.h5 --param growth=2", "both.h5: there are an input and")
        self.assert_prints("orvml edit --output both.h5 --param growth=2", "")
        self.assertEqual([self.read("both.h5", kind).parameters[b"growth"]
                          for kind in ("OrvInput", "OrvOutput")], [1.5, 2])

    def test_refusals_leave_the_file_as_it_is(self):
        before = (self.folder / "part.h5").read_bytes()
        for arguments, sentence in (
                ("", "nothing is to be changed"), ("--param growth", "'growth' sets nothing"),
                ("--param growth=fast", "'fast' is no number"),
                ("--param growth=1,5", "'1,5' is no number"),
                ("--vector sizes=int:0.5", "'0.5' is no integer of 32 bits"),
                ("--attribute size=1", "'size' does not say of what it is an attribute"),
                ("--attribute faces/size=1,2", "part.h5: the attribute 'size' has 2 values, Faces has 4"),
                ("--vector a=@missing", "missing: cannot be read"),
                ("--param a/b=1", "[orvml.name.not-allowed]"),
                (f"--param {'n' * 80}=1", "[orvml.name.too-long]"),
                ("--remove nothing", "part.h5: there is no 'nothing'"),
                ("--remove coordinates", "part.h5: /OrvInput/Nodes/coordinates is a part of the mesh")):
            with self.subTest(arguments=arguments):
                self.assert_refused(f"orvml edit part.h5 {arguments}", sentence)
                self.assertEqual((self.folder / "part.h5").read_bytes(), before)
        self.assertEqual(sorted(os.listdir(self.folder)), ["part.h5", "passing"])

    def test_what_would_be_lost_is_no_file_to_edit(self):
        self.damage("part.h5", lambda file: file["OrvInput"].create_group("Extras"))
        self.assert_refused("orvml edit part.h5 --param growth=2", "would be lost")
        self.write("part.h5", tetrahedron())
        self.damage("part.h5", lambda file: exchange_writer.write_text(
            file, b"ORVMESHLIBRARY_FORMAT_VERSION", b"1.3"))
        self.assert_refused("orvml edit part.h5 --param growth=2", "[orvml.file.legacy-layout]")
        self.write("part.h5", tetrahedron())
        self.damage("part.h5", lambda file: file["OrvInput"].__setitem__(
            "ParametersVector/large", np.array([2**40])))
        self.assert_refused("orvml edit part.h5 --param growth=2", "[orvml.values.clamped]")

    def test_permissions_and_links_stay(self):
        os.chmod(self.folder / "part.h5", 0o640)
        os.symlink("part.h5", self.folder / "link.h5")
        self.assert_prints("orvml edit link.h5 --param growth=2", "")
        self.assertTrue((self.folder / "link.h5").is_symlink())
        self.assertEqual((self.folder / "part.h5").stat().st_mode & 0o777, 0o640)
        self.assertEqual(self.read().parameters[b"growth"], 2)

    def test_pipes(self):
        self.assert_prints("cat part.h5 | orvml edit - --param growth=2 >other.h5", "")
        self.assertEqual(self.read("other.h5").parameters[b"growth"], 2)


DOCUMENT = {
    "kind": "output", "module": "m", "moduleFormatVersion": "1", "creator": "c", "dimension": 2,
    "nodes": {"coordinates": [[0, 0], [1, 0], [1, 1], [0, "inf"]],
              "attributes": {"id": [1, 2, 3, 4]}},
    "edges": {"groups": [{"shape": "line", "cells": [[0, 1], [1, 2]]}]},
    "faces": {"groups": [{"shape": "triangle", "cells": [[0, 1, 2]]},
                         {"shape": "quadrilateral", "cells": [[0, 1, 2, 3]]}],
              "attributes": {"size": {"type": "double", "values": [1, 2], "mustBeTransmitted": True}}},
    "parameters": {"growth": 1.5, "Größe": "-inf"},
    "vectorParameters": {"axis": [0.5, 1], "layers": {"type": "double", "values": [1]}}}


class NewFromJson(Writing):
    def validate(self, document):
        jsonschema.Draft202012Validator(json.loads(
            (SOURCE / "docs/schema/document.schema.json").read_text())).validate(document)

    def test_document_has_all_that_the_text_says(self):
        self.validate(DOCUMENT)
        (self.folder / "part.json").write_text(json.dumps(DOCUMENT))
        self.assert_prints("orvml new part.h5 --from part.json", "")
        document = self.read(kind="OrvOutput")
        self.assertEqual((document.module, document.module_version, document.creator,
                          document.dimension), (b"m", b"1", b"c", 2))
        np.testing.assert_array_equal(document.coordinates, [[0, 0], [1, 0], [1, 1], [0, np.inf]])
        self.assertEqual(document.node_attributes[b"id"].values.dtype, INT)
        faces = document.cells["Faces"]
        self.assertEqual([(group.shape, group.nodes_per_cell, group.cells) for group in faces.groups],
                         [(2, 3, 1), (3, 4, 1)])
        self.assertEqual(faces.connectivities.tolist(), [0, 1, 2, 0, 1, 2, 3])
        self.assertTrue(faces.attributes[b"size"].must_be_transmitted)
        self.assertEqual(document.cells["Edges"].connectivities.tolist(), [0, 1, 1, 2])
        self.assertEqual(document.parameters, {b"growth": 1.5, "Größe".encode(): -np.inf})
        self.assertEqual([vector.values.dtype.kind for _, vector in sorted(document.vectors.items())],
                         ["f", "f"])

    def test_command_line_goes_before_the_text(self):
        (self.folder / "part.json").write_text(json.dumps(DOCUMENT))
        self.assert_prints("orvml new - --module other --param growth=2 --from - <part.json >part.h5", "")
        document = self.read(kind="OrvOutput")
        self.assertEqual((document.module, document.module_version, document.parameters[b"growth"]),
                         (b"other", b"1", 2))

    def test_texts_that_are_no_document_are_refused_with_the_place(self):
        for changes, sentence in (
                ({"dimension": 4}, "/dimension is neither 2 nor 3"),
                ({"dimension": "3"}, "/dimension is no integer"),
                ({"nothing": 1}, "has the member 'nothing', which means nothing"),
                ({"nodes": {"coordinates": [[0, 0], [1]]}}, "/nodes/coordinates/1 has not as many"),
                ({"nodes": {}}, "/nodes has no coordinates"), ({"nodes": 3}, "/nodes is no object"),
                ({"faces": {"groups": [{"shape": "blob", "cells": []}]}}, "/faces/groups/0/shape is no shape"),
                ({"faces": {"groups": [{"shape": "triangle", "cells": []}]}}, "/faces/groups/0 has no cell"),
                ({"faces": {"groups": [{"shape": "line", "cells": [[0, 1], [0, 1, 2]]}]}},
                 "/faces/groups/0/cells/1 has not as many nodes"),
                ({"faces": {"groups": [{"shape": "line", "cells": [[0, 2**31]]}]}},
                 "/faces/groups/0/cells/0/1 is no integer of 32 bits"),
                ({"edges": {"groups": [], "attributes": {"a": [1]}}}, "part.json: the attribute 'a' has 1 value"),
                ({"parameters": {"a": "big"}}, "/parameters/a is no number"),
                ({"vectorParameters": {"a": {"values": [1], "type": "bool"}}}, "/type is neither"),
                ({"parameters": {"": 1}}, "[orvml.name.not-allowed]"),
                ({"creator": "c" * 80}, "[orvml.text.too-long]")):
            with self.subTest(changes=changes):
                document = dict(DOCUMENT, **changes)
                (self.folder / "part.json").write_text(json.dumps(document))
                self.assert_refused("orvml new part.h5 --from part.json", sentence)
                self.assertFalse((self.folder / "part.h5").exists())
        for text in ("", "{", "[]", '{"dimension": 3} more', "\xff"):
            (self.folder / "part.json").write_bytes(text.encode("latin1"))
            self.assert_refused("orvml new part.h5 --from part.json", "part.json: ")

    def test_deeply_nested_text_is_refused(self):
        (self.folder / "part.json").write_text('{"a":' * 20000 + "1" + "}" * 20000)
        self.assert_refused("orvml new part.h5 --from part.json", "part.json: ")


def binary_stl():
    facets = b"".join(struct.pack("<12fH", 0, 0, 0, *np.ravel([CORNERS[i] for i in face]), 0)
                      for face in FACES)
    return b"solid, and yet binary".ljust(80) + struct.pack("<I", len(FACES)) + facets


def text_stl():
    facets = "".join("facet normal 0 0 0\n outer loop\n" + "".join(
        f"  vertex {CORNERS[i][0]} {CORNERS[i][1]:e} {CORNERS[i][2]}\r\n" for i in face)
        + " endloop\nendfacet\n" for face in FACES)
    return f"solid part\n{facets}endsolid part\n".encode()


def obj():
    return ("# a part\nmtllib x\n" + "".join(f"v {x} {y} {z} 1.0\n" for x, y, z in CORNERS)
            + "vn 0 0 1\ng side\n" + "f 1/1/1 3//1 2\nf -4 -3 -1\nf 2 3 4\nf 1 4 3\n").encode()


def off():
    return ("OFF # comment\n4 4 0\n" + "".join(f"{x} {y} {z}\n" for x, y, z in CORNERS) + "\n"
            + "".join(f"3 {a} {b} {c} 255 0 0\n" for a, b, c in FACES)).encode()


def ply(form, order=None):
    header = (f"ply\nformat {form} 1.0\ncomment a part\nelement vertex 4\nproperty float y\n"
              "property double x\nproperty float z\nproperty uchar red\nelement face 4\n"
              "property list uchar int vertex_indices\nproperty short flags\nelement edge 1\n"
              "property int vertex1\nend_header\n").encode()
    if order is None:
        body = ("".join(f"{y} {x} {z} 7\n" for x, y, z in CORNERS)
                + "".join(f"3 {a} {b} {c} -1\n" for a, b, c in FACES) + "0\n").encode()
    else:
        body = (b"".join(struct.pack(order + "fdfB", y, x, z, 7) for x, y, z in CORNERS)
                + b"".join(struct.pack(order + "B3ih", 3, *face, -1) for face in FACES)
                + struct.pack(order + "i", 0))
    return header + body


class NewFromSurface(Writing):
    FILES = {"binary.stl": binary_stl(), "text.STL": text_stl(), "part.obj": obj(), "part.off": off(),
             "text.ply": ply("ascii"), "little.ply": ply("binary_little_endian", "<"),
             "big.ply": ply("binary_big_endian", ">")}

    def test_every_format_gives_the_same_surface(self):
        for name, content in self.FILES.items():
            with self.subTest(name=name):
                (self.folder / name).write_bytes(content)
                self.assert_prints(f"orvml new part.h5 --from {name} --module m --param size=0.5", "")
                document = self.read()
                faces = document.cells["Faces"]
                points = document.coordinates[faces.connectivities].reshape(4, 3, 3)
                np.testing.assert_array_equal(points, [[CORNERS[i] for i in face] for face in FACES])
                self.assertEqual((document.number_of_nodes, document.parameters, document.module,
                                  document.creator), (4, {b"size": 0.5}, b"m", b"orvml"))
                self.assertEqual(self.run_line("orvml check part.h5")[0], 0)

    def test_quadrilaterals_get_a_group_of_their_own(self):
        (self.folder / "part.off").write_text(
            "OFF\n5 3 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n2 0 0\n3 0 1 2\n4 0 1 2 3\n3 1 4 2\n")
        self.assert_prints("orvml new part.h5 --from part.off", "")
        faces = self.read().cells["Faces"]
        self.assertEqual([(group.shape, group.cells) for group in faces.groups], [(2, 2), (3, 1)])
        self.assertEqual(faces.connectivities.tolist(), [0, 1, 2, 1, 4, 2, 0, 1, 2, 3])

    def test_format_can_be_said(self):
        (self.folder / "surface").write_bytes(off())
        self.assert_refused("orvml new part.h5 --from surface", "surface: has no ending that tells")
        self.assert_prints("orvml new part.h5 --from surface --format off", "")
        self.assert_prints("orvml new part.h5 --from - --format off <surface", "")

    def test_surfaces_that_are_not_understood_are_refused(self):
        for name, content, sentence in (
                ("a.stl", b"", "line 0: "), ("a.stl", binary_stl()[:-1], "line 1: "),
                ("a.stl", b"solid\nfacet\nvertex 0 0 0\n", "a facet has three corners"),
                ("a.stl", b"solid\nfacet\nvertex 0 0 x\n", "line 3: 'x' is no number"),
                ("a.stl", b"solid\nhello\n", "line 2: there is something else"),
                ("a.obj", b"v 0 0\n", "line 1: a vertex has three coordinates"),
                ("a.obj", b"v 0 0 0\nf 1 2 1\n", "line 2: a face names node 1, counted from 0, of 1"),
                ("a.obj", b"v 0 0 0\nf 1 -2 1\n", "line 2: a face names node -1"),
                ("a.obj", b"v 0 0 0\nf 1 1 1 1 1\n", "line 2: a face of 5 nodes"),
                ("a.obj", b"v 0 0 0\nf 1 0 1\n", "line 2: a face names node -1"),
                ("a.off", b"NOFF\n1 0 0\n", "there is no OFF"),
                ("a.off", b"OFF\n99999 0 0\n", "is no number of things in a file of"),
                ("a.off", b"OFF\n1 1 0\n0 0 0\n3 0 0\n", "fewer nodes than it says"),
                ("a.off", b"OFF\n1 1 0\n0 0 0\n", "the file ends too early"),
                ("a.ply", b"plain\n", "there is no ply"),
                ("a.ply", b"ply\nformat ascii 1.0\n", "the header has no end"),
                ("a.ply", b"ply\nformat odd 1.0\nend_header\n", "'odd' is no format"),
                ("a.ply", ply("binary_little_endian", "<")[:-30], "the file ends too early"),
                ("a.ply", ply("ascii").replace(b"list uchar int", b"list uchar float"), "no integers"),
                ("a.ply", ply("ascii").replace(b"double x", b"double u"), "has no x, y and z"),
                ("a.ply", ply("ascii").replace(b"short", b"thing"), "'thing' is no type")):
            with self.subTest(name=name, content=content[:40]):
                (self.folder / name).write_bytes(content)
                self.assert_refused(f"orvml new part.h5 --from {name}", f"{name}: ")
                self.assertIn(sentence, self.run_line(f"orvml new part.h5 --from {name}")[2])
                self.assertFalse((self.folder / "part.h5").exists())

    def test_damaged_surfaces_never_end_the_command_by_a_signal(self):
        random = np.random.default_rng(20)
        for name, content in self.FILES.items():
            for _ in range(12):
                damaged = np.frombuffer(content, "uint8").copy()
                damaged[random.integers(0, len(damaged), 3)] = random.integers(0, 256, 3)
                (self.folder / name).write_bytes(damaged[:random.integers(1, len(damaged) + 1)])
                with self.subTest(name=name):
                    self.assertIn(self.run_line(f"orvml new part.h5 --from {name}")[0], (0, 2))

    def test_without_a_mesh_there_are_parameters_alone(self):
        self.assert_prints("orvml new part.h5 --param a=1 --vector b=1,2", "")
        document = self.read()
        self.assertEqual((document.number_of_nodes, document.parameters, document.dimension),
                         (0, {b"a": 1.0}, 3))
        with h5py.File(self.folder / "part.h5") as file:
            self.assertNotIn("Nodes", file["OrvInput"])


if __name__ == "__main__":
    unittest.main()
