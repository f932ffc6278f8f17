#pragma once

#include "orvml_io.h"
#include "support/document_builder.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace orvml_io_tests {

/// The cells of one kind, each array exactly as long as the groups claim.
struct CellSet {
  std::vector<ElemType> shapes;
  std::vector<int> nodesPerCell;
  std::vector<int> cellsPerGroup;
  std::vector<int> connectivities;
};

/// A mesh as plain values.
struct Mesh {
  int dimension = 0;
  int numberOfNodes = 0;
  std::vector<double> coordinates;
  std::array<std::optional<CellSet>, 3> cells;  // edges, faces, volume elements
};

/// Makes up a mesh: up to five nodes of any doubles, each container missing or of up to four
/// groups, shapes in and outside the table, some of the counts negative, node indices up to the
/// ends of the range. The same seed gives the same mesh.
Mesh randomMesh(int dimension, std::uint32_t seed);

/// Makes a document that adopts the arrays of the mesh, which must outlive it.
Handle documentOf(Mesh& mesh);

}  // namespace orvml_io_tests
