#!/usr/bin/env python3
"""The published tables of conversions and of orders of nodes are what the command does."""
import unittest

import numpy as np

import conversion_matrix
import node_orders
from cells_of_vtk import CONTAINERS, VTK_TYPES, random_cell
from shell import INT, Cells, Document, Shell, TypeGroup


def written_numbers(lines):
    """The numbers of fields that go on over several lines, without names and marks."""
    words = " ".join(lines).replace(",", " ").replace("+", " ").split()
    return [int(word) for word in words if word.isdigit()]


class Orders(Shell):
    """What the command writes for a cell whose nodes are numbered in their order."""

    def nodes_of(self, form, ending):
        shape, nodes = form
        self.write("part.h5", Document(
            dimension=3, coordinates=random_cell(np.random.default_rng(1), shape, nodes),
            cells={CONTAINERS.get(shape, "Elements"): Cells(
                [TypeGroup(shape, nodes, 1)], np.arange(nodes).astype(INT), {})}))
        self.assertEqual(self.run_line(f"orvml convert part.h5 part.{ending} --text")[0], 0)
        lines = (self.folder / f"part.{ending}").read_text().splitlines()
        return [number - 1 for number in getattr(self, f"nodes_in_{ending}")(lines, nodes)]

    @staticmethod
    def nodes_in_msh(lines, nodes):
        begin = lines.index("$Elements")
        return [int(word) for word in lines[begin + 3].split()][1:]

    @staticmethod
    def nodes_in_inp(lines, nodes):
        begin = next(i for i, line in enumerate(lines) if line.startswith("*ELEMENT"))
        end = next((i for i in range(begin + 1, len(lines)) if lines[i].startswith("*")), len(lines))
        return written_numbers(lines[begin + 1:end])[1:]

    @staticmethod
    def nodes_in_nas(lines, nodes):
        begin = next(i for i, line in enumerate(lines) if line.startswith("C") and line != "CEND")
        return written_numbers([line[8:72] for line in lines[begin:lines.index("ENDDATA")]])[2:]

    def test_orders_are_those_of_the_table(self):
        for name, ending in (("Gmsh", "msh"), ("CalculiX", "inp"), ("Nastran", "nas")):
            for form, order in node_orders.ORDERS[name].items():
                with self.subTest(format=name, form=form):
                    self.assertEqual(self.nodes_of(form, ending), order)

    def test_other_forms_that_are_written_as_they_are_keep_their_order(self):
        as_they_are = {"msh": set(VTK_TYPES) - {(1, 4), (2, 7), (3, 6), (5, 24), (6, 12), (8, 19)},
                       "inp": {(2, 3), (2, 6), (3, 4), (3, 8), (4, 4), (4, 10), (5, 8), (5, 20),
                               (6, 6), (6, 15), (1, 2)},
                       "nas": {(2, 3), (2, 6), (3, 4), (3, 8), (4, 4), (4, 10), (5, 8), (6, 6),
                               (8, 5), (8, 13), (1, 2)}}
        names = {"msh": "Gmsh", "inp": "CalculiX", "nas": "Nastran"}
        for ending, forms in as_they_are.items():
            for form in sorted(forms - set(node_orders.ORDERS[names[ending]])):
                with self.subTest(format=ending, form=form):
                    self.assertEqual(self.nodes_of(form, ending), list(range(form[1])))


class Pages(unittest.TestCase):
    maxDiff = None

    def test_matrix_is_what_comes_back(self):
        self.assertEqual(conversion_matrix.page(), conversion_matrix.PAGE.read_text())

    def test_orders_and_pictures_are_those_of_the_tables(self):
        for path, content in node_orders.generated().items():
            with self.subTest(file=path.name):
                self.assertEqual(content, path.read_text())


if __name__ == "__main__":
    unittest.main()
