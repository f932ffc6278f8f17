#pragma once

#include "orvml_io.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>

namespace orvml_io_tests {

/// The exported functions that fix one kind of element by their name.
struct ElementKind {
  const char* name;
  ORVML_TYPE_OF_ENTITY entity;
  int (*get)(void*, int*&);
  int (*getGroups)(void*, int*&, ElemType*&, int*&, int*&);
  int (*count)(void*);
  int (*typeCount)(void*);
  void (*setGroups)(void*, int, int*, int, ElemType*, int*, int*);
  void (*setSingleShape)(void*, int, int*, ElemType, int);
  void (*deleteContent)(void*&);
  void (*remove)(void*);

  friend std::ostream& operator<<(std::ostream& stream, const ElementKind& kind) {
    return stream << kind.name;
  }
};

inline constexpr ElementKind kEdgeKind = {"Edges",
                                          ORVML_EDGES,
                                          OrvML_IO_GetEdges,
                                          OrvML_IO_GetEdges,
                                          OrvML_IO_GetNumberOfEdges,
                                          OrvML_IO_GetNumberOfElementTypesInEdges,
                                          OrvML_IO_SetEdges,
                                          OrvML_IO_SetEdges,
                                          OrvML_IO_DeleteEdgesContent,
                                          OrvML_IO_DeleteEdges};
inline constexpr ElementKind kFaceKind = {"Faces",
                                          ORVML_FACES,
                                          OrvML_IO_GetFaces,
                                          OrvML_IO_GetFaces,
                                          OrvML_IO_GetNumberOfFaces,
                                          OrvML_IO_GetNumberOfElementTypesInFaces,
                                          OrvML_IO_SetFaces,
                                          OrvML_IO_SetFaces,
                                          OrvML_IO_DeleteFacesContent,
                                          OrvML_IO_DeleteFaces};
inline constexpr ElementKind kVolumeElementKind = {"VolumeElements",
                                                   ORVML_ELEMENTS,
                                                   OrvML_IO_GetElements,
                                                   OrvML_IO_GetElements,
                                                   OrvML_IO_GetNumberOfElements,
                                                   OrvML_IO_GetNumberOfElementTypesInElements,
                                                   OrvML_IO_SetElements,
                                                   OrvML_IO_SetElements,
                                                   OrvML_IO_DeleteElementsContent,
                                                   OrvML_IO_DeleteElements};

/// A test that holds for every kind of element.
class EveryElementKind : public ::testing::TestWithParam<ElementKind> {};

/// What the getter with four outputs hands out.
struct HandedOutGroups {
  int result = -2;  // no getter answers it
  int* connectivities = nullptr;
  ElemType* elementTypes = nullptr;
  int* numberOfNodesByElement = nullptr;
  int* numberOfElementsByType = nullptr;
};

inline HandedOutGroups groupsOf(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  HandedOutGroups groups;
  groups.result =
      OrvML_IO_GetGenericElements(handle, entity, groups.connectivities, groups.elementTypes,
                                  groups.numberOfNodesByElement, groups.numberOfElementsByType);
  return groups;
}

/// Tells whether the document has the container of a kind: only a container takes attributes.
inline bool hasContainer(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  const int value = 0;
  const bool taken =
      OrvML_IO_SetAttributesEntitiesVector(handle, entity, "probe", &value, 1, false) == 0;
  OrvML_IO_DeleteAttribute(handle, "probe", entity);
  return taken;
}

/// Which containers a document has: nodes, edges, faces, volume elements.
using Containers = std::array<bool, 4>;

inline Containers containersOf(void* handle) {
  return {hasContainer(handle, ORVML_NODES), hasContainer(handle, ORVML_EDGES),
          hasContainer(handle, ORVML_FACES), hasContainer(handle, ORVML_ELEMENTS)};
}

inline constexpr Containers kNoContainers = {false, false, false, false};
inline constexpr Containers kAllContainers = {true, true, true, true};

}  // namespace orvml_io_tests

/// Runs the tests of a suite of EveryElementKind for edges, faces and volume elements.
#define ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(suite)                                               \
  INSTANTIATE_TEST_SUITE_P(Kinds, suite,                                                           \
                           ::testing::Values(orvml_io_tests::kEdgeKind, orvml_io_tests::kFaceKind, \
                                             orvml_io_tests::kVolumeElementKind),                  \
                           orvml_io_tests::RowName())
