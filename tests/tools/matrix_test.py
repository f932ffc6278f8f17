#!/usr/bin/env python3
"""The published tables of conversions and of orders of nodes are what the command does."""
import unittest

import conversion_matrix
import node_orders


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
