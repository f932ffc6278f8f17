#include "inputs/document.h"

#include "harness/measurement.h"
#include "orvml_io.h"

#include <cstring>

namespace orvml_io_bench {

namespace {

void setAttributes(void* handle, ORVML_TYPE_OF_ENTITY entity, const std::vector<Vector>& vectors) {
  for (const Vector& vector : vectors) {
    const int status = vector.ints.empty()
                           ? OrvML_IO_SetAttributesEntitiesVector(
                                 handle, entity, vector.name.c_str(), vector.doubles.data(),
                                 static_cast<int>(vector.doubles.size()), vector.mustBeTransmitted)
                           : OrvML_IO_SetAttributesEntitiesVector(
                                 handle, entity, vector.name.c_str(), vector.ints.data(),
                                 static_cast<int>(vector.ints.size()), vector.mustBeTransmitted);
    require(status == 0, "setting an attribute");
  }
}

void setCells(void* handle, Cells& cells) {
  if (cells.shapes.empty()) {
    return;
  }
  const ORVML_TYPE_OF_ENTITY entity =
      std::strcmp(cells.group, "Faces") == 0 ? ORVML_FACES : ORVML_ELEMENTS;
  OrvML_IO_SetGenericElements(handle, entity, cells.count(), cells.connectivities.data(),
                              static_cast<int>(cells.shapes.size()),
                              reinterpret_cast<ElemType*>(cells.shapes.data()),
                              cells.nodesPerCell.data(), cells.cellsPerGroup.data());
  setAttributes(handle, entity, cells.attributes);
}

}  // namespace

Document::Document(Content& content)
    : handle_(OrvML_IO_NewOrvInputHandle("ORVML_OCTREE_MESHER", "1.0", "benchmark",
                                         Content::kDimension)) {
  OrvML_IO_SetNodesCoords(handle_, content.numberOfNodes(), content.coordinates.data());
  setAttributes(handle_, ORVML_NODES, content.nodeAttributes);
  setCells(handle_, content.cells);
  for (const auto& [name, value] : content.scalars) {
    (void)OrvML_IO_SetParameter(handle_, name.c_str(), value);
  }
  for (const Vector& vector : content.vectors) {
    (void)OrvML_IO_SetParameterVector(handle_, vector.name.c_str(), vector.doubles.data(),
                                      static_cast<int>(vector.doubles.size()));
  }
}

Document::~Document() {
  for (const ORVML_TYPE_OF_ENTITY entity : {ORVML_NODES, ORVML_FACES, ORVML_ELEMENTS}) {
    if (handle_ != nullptr) {
      (void)OrvML_IO_DeleteAttributesEntitiesVector(handle_, entity);
    }
  }
  OrvML_IO_DeleteOrvInputHandle(handle_);
}

Document Document::read(const std::string& path) {
  void* handle = nullptr;
  require(OrvML_IO_ReadOrvInput(path.c_str(), handle) == 0 && handle != nullptr, "reading a file");
  return Document(handle);
}

}  // namespace orvml_io_bench
