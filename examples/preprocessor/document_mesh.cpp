// The mesh of a document.
#include "exchange/check.h"
#include "preprocessor/document.h"

#include <utility>

namespace orvml_examples {

namespace {

/// The type group arrays of one kind as the document hands them out.
struct StoredCells {
  int* connectivities = nullptr;
  ElemType* shapes = nullptr;
  int* nodesPerCell = nullptr;
  int* cellsPerGroup = nullptr;
};

StoredCells storedCells(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  StoredCells stored;
  requireOk(OrvML_IO_GetGenericElements(handle, entity, stored.connectivities, stored.shapes,
                                        stored.nodesPerCell, stored.cellsPerGroup),
            "OrvML_IO_GetGenericElements");
  return stored;
}

void requireGroupsAnswerAlike(void* handle, ORVML_TYPE_OF_ENTITY entity, const Cells& cells) {
  for (std::size_t group = 0; group < cells.shapes.size(); ++group) {
    const int index = static_cast<int>(group);
    require(OrvML_IO_GetGenericElementType(handle, entity, index) == cells.shapes[group] &&
                OrvML_IO_GetNNodeGenericElement(handle, entity, index) == cells.nodesPerCell[group],
            "the queries of one type group disagree with its arrays");
  }
}

}  // namespace

void Document::setMesh(Mesh mesh) {
  adopted_ = std::move(mesh);
  const int numberOfNodes = adopted_.numberOfNodes();
  OrvML_IO_SetNodesCoords(handle_, numberOfNodes, adopted_.coordinates.data());
  double* coordinates = nullptr;
  requireOk(OrvML_IO_GetNodesCoords(handle_, coordinates), "OrvML_IO_GetNodesCoords");
  require(coordinates == adopted_.coordinates.data() && numberOf(ORVML_NODES) == numberOfNodes,
          "the document did not adopt the coordinates");
  setCells(ORVML_EDGES, adopted_.edges);
  setCells(ORVML_FACES, adopted_.faces);
  setCells(ORVML_ELEMENTS, adopted_.elements);
}

void Document::setCells(ORVML_TYPE_OF_ENTITY entity, Cells& cells) {
  if (cells.connectivities.empty()) {
    return;
  }
  OrvML_IO_SetGenericElements(handle_, entity, cells.count(), cells.connectivities.data(),
                              static_cast<int>(cells.shapes.size()), cells.shapes.data(),
                              cells.nodesPerCell.data(), cells.cellsPerGroup.data());
  const StoredCells stored = storedCells(handle_, entity);
  require(numberOf(entity) == cells.count() &&
              stored.connectivities == cells.connectivities.data() &&
              stored.cellsPerGroup == cells.cellsPerGroup.data(),
          "the document did not adopt the cells");
}

int Document::numberOf(ORVML_TYPE_OF_ENTITY entity) const {
  return entity == ORVML_NODES ? OrvML_IO_GetNumberOfNodes(handle_)
                               : OrvML_IO_GetNumberOfGenericElements(handle_, entity);
}

Cells Document::cells(ORVML_TYPE_OF_ENTITY entity) const {
  Cells copied;
  const int groups = OrvML_IO_GetNumberOfGenericElementTypes(handle_, entity);
  if (groups == 0) {
    return copied;
  }
  const StoredCells stored = storedCells(handle_, entity);
  copied.shapes.assign(stored.shapes, stored.shapes + groups);
  copied.nodesPerCell.assign(stored.nodesPerCell, stored.nodesPerCell + groups);
  copied.cellsPerGroup.assign(stored.cellsPerGroup, stored.cellsPerGroup + groups);
  std::size_t size = 0;
  for (std::size_t group = 0; group < copied.shapes.size(); ++group) {
    size += static_cast<std::size_t>(copied.nodesPerCell[group]) *
            static_cast<std::size_t>(copied.cellsPerGroup[group]);
  }
  copied.connectivities.assign(stored.connectivities, stored.connectivities + size);
  require(copied.count() == numberOf(entity), "the number of cells is not that of the type groups");
  requireGroupsAnswerAlike(handle_, entity, copied);
  return copied;
}

Mesh Document::mesh() const {
  Mesh copied;
  double* coordinates = nullptr;
  requireOk(OrvML_IO_GetNodesCoords(handle_, coordinates), "OrvML_IO_GetNodesCoords");
  require(coordinates != nullptr && dimension() == Mesh::kDimension,
          "the document has no nodes with three coordinates");
  const int size = numberOf(ORVML_NODES) * Mesh::kDimension;
  copied.coordinates.assign(coordinates, coordinates + size);
  copied.edges = cells(ORVML_EDGES);
  copied.faces = cells(ORVML_FACES);
  copied.elements = cells(ORVML_ELEMENTS);
  return copied;
}

}  // namespace orvml_examples
