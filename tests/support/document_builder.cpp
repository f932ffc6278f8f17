#include "support/document_builder.h"

#include <utility>

namespace orvml_io_tests {

namespace {

int size32(std::size_t size) { return static_cast<int>(size); }

}  // namespace

BuiltDocument::BuiltDocument(void* handle, int dimension) : dimension_(dimension), handle_(handle) {
  OrvML_IO_SetMeshDimension(handle, dimension);
}

BuiltDocument BuiltDocument::input(int dimension) {
  return BuiltDocument(OrvML_IO_NewOrvInputHandle(), dimension);
}

BuiltDocument BuiltDocument::output(int dimension) {
  return BuiltDocument(OrvML_IO_NewOrvOutputHandle(), dimension);
}

BuiltDocument::~BuiltDocument() {
  if (handle_.get() == nullptr) {
    return;
  }
  for (const auto entity : {ORVML_NODES, ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    OrvML_IO_DeleteAttributesEntitiesVector(handle_.get(), entity);
  }
}

int* BuiltDocument::keep(std::vector<int> values) {
  ints_.push_back(std::move(values));
  return ints_.back().data();
}

BuiltDocument& BuiltDocument::identification(const char* module, const char* version,
                                             const char* creator) {
  OrvML_IO_SetOrvMeshLibraryModuleName(module, handle());
  OrvML_IO_SetOrvMeshLibraryModuleFormatVersion(version, handle());
  OrvML_IO_SetOrvMeshLibraryIOCreator(creator, handle());
  return *this;
}

BuiltDocument& BuiltDocument::nodes(std::vector<double> coordinates) {
  const int count = size32(coordinates.size()) / dimension_;
  doubles_.push_back(std::move(coordinates));
  OrvML_IO_SetNodesCoords(handle(), count, doubles_.back().data());
  return *this;
}

BuiltDocument& BuiltDocument::cells(ORVML_TYPE_OF_ENTITY entity, std::vector<ElemType> shapes,
                                    std::vector<int> nodesPerCell, std::vector<int> cellsPerGroup,
                                    std::vector<int> connectivities) {
  int count = 0;
  for (const int cells : cellsPerGroup) {
    count += cells;
  }
  const int groups = size32(shapes.size());
  shapes_.push_back(std::move(shapes));
  int* nodes = keep(std::move(nodesPerCell));
  int* counts = keep(std::move(cellsPerGroup));
  OrvML_IO_SetGenericElements(handle(), entity, count, keep(std::move(connectivities)), groups,
                              shapes_.back().data(), nodes, counts);
  return *this;
}

BuiltDocument& BuiltDocument::scalar(const char* name, double value) {
  OrvML_IO_SetParameter(handle(), name, value);
  return *this;
}

BuiltDocument& BuiltDocument::vector(const char* name, const std::vector<int>& values) {
  OrvML_IO_SetParameterVector(handle(), name, values.data(), size32(values.size()));
  return *this;
}

BuiltDocument& BuiltDocument::vector(const char* name, const std::vector<double>& values) {
  OrvML_IO_SetParameterVector(handle(), name, values.data(), size32(values.size()));
  return *this;
}

BuiltDocument& BuiltDocument::attribute(ORVML_TYPE_OF_ENTITY entity, const char* name,
                                        const std::vector<int>& values, bool mustBeTransmitted) {
  OrvML_IO_SetAttributesEntitiesVector(handle(), entity, name, values.data(), size32(values.size()),
                                       mustBeTransmitted);
  return *this;
}

BuiltDocument& BuiltDocument::attribute(ORVML_TYPE_OF_ENTITY entity, const char* name,
                                        const std::vector<double>& values, bool mustBeTransmitted) {
  OrvML_IO_SetAttributesEntitiesVector(handle(), entity, name, values.data(), size32(values.size()),
                                       mustBeTransmitted);
  return *this;
}

BuiltDocument fullDocument() {
  BuiltDocument document = BuiltDocument::input(3);
  document.identification("ORVML_OCTREE_MESHER", "2.1", "tests")
      .nodes({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1})
      .cells(ORVML_EDGES, {LINEAR}, {2}, {3}, {0, 1, 1, 2, 2, 0})
      .cells(ORVML_FACES, {TRIANGLE}, {3}, {4}, {0, 1, 2, 0, 1, 3, 1, 2, 3, 0, 2, 3})
      .cells(ORVML_ELEMENTS, {TETRAHEDRA}, {4}, {2}, {0, 1, 2, 3, 1, 2, 3, 4})
      .scalar("size", 0.25)
      .scalar("angle", 40.0)
      .vector("layers", std::vector<int>{3, 2, 1})
      .vector("volumes_sizes", std::vector<double>{0.5, 0.25})
      .attribute(ORVML_NODES, "size", std::vector<double>{1, 2, 3, 4, 5}, true)
      .attribute(ORVML_NODES, "forced", std::vector<int>{0, 1, 0, 1, 0})
      .attribute(ORVML_EDGES, "line", std::vector<int>{7, 8, 9}, true)
      .attribute(ORVML_FACES, "surface", std::vector<int>{1, 2, 3, 4}, true)
      .attribute(ORVML_ELEMENTS, "quality", std::vector<double>{0.5, 0.75});
  return document;
}

BuiltDocument documentWithMixedShapes() {
  BuiltDocument document = BuiltDocument::input(2);
  document.identification("m", "1", "c")
      .nodes({0, 0, 1, 0, 2, 0, 0, 1, 1, 1, 2, 1, 1, 2})
      .cells(ORVML_FACES, {TRIANGLE, QUADRILATERAL}, {3, 4}, {3, 2},
             {0, 1, 3, 1, 4, 3, 3, 4, 6, 1, 2, 5, 4, 0, 1, 4, 3})
      .scalar("size", 1.0);
  return document;
}

}  // namespace orvml_io_tests
