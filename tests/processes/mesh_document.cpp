#include "processes/mesh_document.h"

#include "orvml_io.h"

#include <vector>

namespace orvml_io_tests {

namespace {

constexpr int kDimension = 3;

std::vector<double> coordinatesOf(const MeshDocument& document) {
  std::vector<double> coordinates;
  for (int i = 0; i < document.numberOfNodes * kDimension; ++i) {
    coordinates.push_back(document.numberOfNodes + 0.25 * i);
  }
  return coordinates;
}

std::vector<int> valuesOf(const MeshDocument& document) {
  std::vector<int> values;
  for (int i = 0; i < document.numberOfNodes; ++i) {
    values.push_back(document.numberOfNodes * 1000 + i);
  }
  return values;
}

template <class T>
void append(const T* values, int count, std::string& text) {
  for (int i = 0; i < count; ++i) {
    text += " " + std::to_string(values[i]);
  }
}

}  // namespace

std::string describe(const MeshDocument& document) {
  std::string text = std::to_string(document.numberOfNodes) + " nodes";
  append(coordinatesOf(document).data(), document.numberOfNodes * kDimension, text);
  text += " " + document.attribute;
  append(valuesOf(document).data(), document.numberOfNodes, text);
  return text;
}

int write(const char* path, Kind kind, const MeshDocument& document) {
  const std::vector<double> coordinates = coordinatesOf(document);
  const std::vector<int> values = valuesOf(document);
  void* handle = kind == Kind::input ? OrvML_IO_NewOrvInputHandle() : OrvML_IO_NewOrvOutputHandle();
  OrvML_IO_SetMeshDimension(handle, kDimension);
  OrvML_IO_SetNodesCoords(handle, document.numberOfNodes, coordinates.data());
  (void)OrvML_IO_SetParameter(handle, "size", 0.5);
  (void)OrvML_IO_SetAttributesEntitiesVector(handle, ORVML_NODES, document.attribute.c_str(),
                                             values.data(), document.numberOfNodes, true);
  const int status = kind == Kind::input ? OrvML_IO_WriteOrvInput(path, handle)
                                         : OrvML_IO_WriteOrvOutput(path, handle);
  (void)OrvML_IO_DeleteAttributesEntitiesVector(handle, ORVML_NODES);
  OrvML_IO_DeleteOrvInputHandle(handle);
  return status;
}

std::string describe(void* handle) {
  if (handle == nullptr) {
    return "none";
  }
  const int numberOfNodes = OrvML_IO_GetNumberOfNodes(handle);
  double* coordinates = nullptr;
  (void)OrvML_IO_GetNodesCoords(handle, coordinates);
  std::string text = std::to_string(numberOfNodes) + " nodes";
  append(coordinates, coordinates == nullptr ? 0 : numberOfNodes * kDimension, text);
  for (const char* name : kAttributeNames) {
    const auto* values = static_cast<int*>(OrvML_IO_GetAttribute(handle, name, ORVML_NODES));
    if (values != nullptr) {
      text += std::string(" ") + name;
      append(values, numberOfNodes, text);
    }
  }
  return text;
}

}  // namespace orvml_io_tests
