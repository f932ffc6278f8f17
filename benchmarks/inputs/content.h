#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orvml_io_bench {

/// A named vector of ints or, when it has none, of doubles.
struct Vector {
  std::string name;
  std::vector<int> ints;
  std::vector<double> doubles;
  bool mustBeTransmitted = false;  // attributes only
};

/// The cells of one kind, in type groups.
struct Cells {
  const char* group = "Elements";  // name in the file: "Faces" or "Elements"
  std::vector<int> shapes;         // as ElemType counts them
  std::vector<int> nodesPerCell;
  std::vector<int> cellsPerGroup;
  std::vector<int> connectivities;
  std::vector<Vector> attributes;

  [[nodiscard]] int count() const;
};

/// What a document holds. Each contender writes all of it and reads all of it.
struct Content {
  std::vector<double> coordinates;  // three per node
  std::vector<Vector> nodeAttributes;
  Cells cells;
  std::vector<std::pair<std::string, double>> scalars;  // ascending names
  std::vector<Vector> vectors;                          // ascending names

  static constexpr int kDimension = 3;
  /// The size of all arrays of the mesh.
  [[nodiscard]] std::size_t meshBytes() const;
  [[nodiscard]] int numberOfNodes() const {
    return static_cast<int>(coordinates.size()) / kDimension;
  }
};

/// A volume mesh of tetrahedra, 5.5 for each node, with a double per node and an int per cell.
Content tetrahedralMesh(int numberOfNodes);

/// A surface of triangles (as many as nodes) and quadrilaterals (half as many), with a double per
/// node and an int per cell.
Content mixedSurface(int numberOfNodes);

/// A small mesh with what a document of a real job carries besides: ten scalars and two vectors.
Content smallDocument();

/// One node and so many scalar parameters, vectors of three values or attributes of a thousand.
Content scalarParameters(int count);
Content vectorParameters(int count);
Content nodeAttributes(int count, int valuesOfEach);

/// The same attributes, each of which the meshing module has to send back.
Content transmittedAttributes(int count, int valuesOfEach);

}  // namespace orvml_io_bench
