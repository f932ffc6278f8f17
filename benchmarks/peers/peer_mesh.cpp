#include "peers/peer_mesh.h"

#include "references/loaded.h"

namespace orvml_io_bench {

namespace {

/// The transposed form of a row-major matrix.
template <class T>
std::vector<T> transposed(const std::vector<T>& rowMajor, std::size_t columns) {
  const std::size_t rows = rowMajor.size() / columns;
  std::vector<T> columnMajor(rowMajor.size());
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t column = 0; column < columns; ++column) {
      columnMajor[column * rows + row] = rowMajor[row * columns + column];
    }
  }
  return columnMajor;
}

std::vector<PeerMesh::Group> groupsOf(const Cells& cells) {
  std::vector<PeerMesh::Group> groups;
  auto next = cells.connectivities.begin();
  for (std::size_t i = 0; i < cells.shapes.size(); ++i) {
    PeerMesh::Group group{cells.shapes[i], cells.nodesPerCell[i], cells.cellsPerGroup[i], {}, {}};
    const auto end = next + static_cast<std::ptrdiff_t>(group.nodesPerCell) * group.numberOfCells;
    group.nodes.assign(next, end);
    for (int& node : group.nodes) {
      ++node;
    }
    group.nodesByCorner = transposed(group.nodes, static_cast<std::size_t>(group.nodesPerCell));
    next = end;
    groups.push_back(std::move(group));
  }
  return groups;
}

}  // namespace

PeerMesh::PeerMesh(const Content& content)
    : numberOfNodes(content.numberOfNodes()),
      numberOfCells(content.cells.count()),
      meshDimension(std::string(content.cells.group) == "Faces" ? 2 : 3),
      coordinates(content.coordinates),
      coordinatesByAxis(transposed(content.coordinates, Content::kDimension)),
      groups(groupsOf(content.cells)),
      nodeAttributes(content.nodeAttributes),
      scalars(content.scalars),
      vectors(content.vectors) {
  for (const Vector& attribute : content.cells.attributes) {
    cellAttributes.push_back(
        {attribute.name, attribute.ints, {attribute.ints.begin(), attribute.ints.end()}});
  }
}

std::uint64_t PeerMesh::checksum() const {
  std::uint64_t sum = checksumOf(coordinates.data(), coordinates.size());
  for (const Group& group : groups) {
    sum += checksumOf(group.nodes.data(), group.nodes.size());
  }
  for (const CellAttribute& attribute : cellAttributes) {
    sum += checksumOf(attribute.ints.data(), attribute.ints.size());
  }
  for (const auto* arrays : {&nodeAttributes, &vectors}) {
    for (const Vector& vector : *arrays) {
      sum += checksumOf(vector.doubles.data(), vector.doubles.size());
    }
  }
  for (const auto& [name, value] : scalars) {
    sum += checksumOf(&value, 1);
  }
  return sum;
}

}  // namespace orvml_io_bench
