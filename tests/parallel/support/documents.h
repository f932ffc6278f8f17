#pragma once

#include <orvml/document.hpp>
#include <orvml/parallel/slice.hpp>

#include <mpi.h>

#include <string>
#include <vector>

namespace orvml_parallel_tests {

/// A box of `x` by `y` by `z` hexahedra with the quadrilaterals of its bottom as faces, a line of
/// edges, attributes of ints and doubles on all, parameters and vector parameters. Deterministic,
/// so that every rank can make it.
orvml::Output boxOf(int x, int y, int z);

/// Tetrahedra, a hexahedron, prisms and pyramids in several groups, two of one shape, and faces of
/// two shapes.
orvml::Output mixedShapes();

/// Documents that differ in what they lack.
orvml::Output withoutMesh();
orvml::Output withoutCells();
orvml::Output oneCell();
/// Points, of which only their number is told, beside lines.
orvml::Output cellsWithoutNodes();

struct NamedDocument {
  std::string name;
  orvml::Output (*make)();
};

/// All of these, and a small and a larger box.
std::vector<NamedDocument> documents();

/// Puts the slices of all ranks together, on every rank. Collective.
orvml::Output assembled(const orvml::parallel::Slice& slice);

/// The values of all ranks one after the other, on every rank. Collective.
std::vector<int> gathered(const std::vector<int>& values);
std::vector<double> gathered(const std::vector<double>& values);

}  // namespace orvml_parallel_tests
