#include "hostile/every_accessor.h"

#include "model/document.h"
#include "orvml_io.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <string>
#include <vector>

namespace orvml_io_tests {

namespace {

constexpr ORVML_TYPE_OF_ENTITY kEntities[] = {ORVML_NODES, ORVML_EDGES, ORVML_FACES,
                                              ORVML_ELEMENTS};

/// Reads every byte of an array, so that a sanitizer sees whether it is there.
template <class T>
void touch(const T* values, long long length) {
  if (values == nullptr) {
    return;
  }
  volatile unsigned char sink = 0;
  const auto* bytes = reinterpret_cast<const unsigned char*>(values);
  const std::size_t size = static_cast<std::size_t>(length) * sizeof(T);
  for (std::size_t i = 0; i < size; ++i) {
    sink = bytes[i];
  }
  (void)sink;
}

void touchText(const char* text) {
  ASSERT_NE(text, nullptr);
  EXPECT_LT(std::strlen(text), 80U);
}

void callTexts(void* document) {
  touchText(OrvML_IO_GetOrvMeshLibraryModuleName(document));
  touchText(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document));
  char creator[80] = {};
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryIOCreator(document, creator), creator);
  touchText(creator);
}

void callCallbacks(void* document) {
  void* first = nullptr;
  void* second = nullptr;
  OrvML_IO_GetCallbackStatus(document, first, second);
  OrvML_IO_GetCallbackError(document, first, second);
  EXPECT_EQ(first, nullptr);
  EXPECT_EQ(second, nullptr);
}

void callNodes(void* document) {
  double* coordinates = nullptr;
  EXPECT_EQ(OrvML_IO_GetNodesCoords(document, coordinates), 0);
  touch(coordinates, static_cast<long long>(OrvML_IO_GetNumberOfNodes(document)) *
                         OrvML_IO_GetMeshDimension(document));
}

/// The arrays of a container, each null when it was not read.
void callCells(void* document, ORVML_TYPE_OF_ENTITY entity) {
  int* connectivities = nullptr;
  ElemType* shapes = nullptr;
  int* nodes = nullptr;
  int* cells = nullptr;
  EXPECT_EQ(OrvML_IO_GetGenericElements(document, entity, connectivities), 0);
  EXPECT_EQ(OrvML_IO_GetGenericElements(document, entity, connectivities, shapes, nodes, cells), 0);
  EXPECT_GE(OrvML_IO_GetNumberOfGenericElements(document, entity), 0);
  const int groups = OrvML_IO_GetNumberOfGenericElementTypes(document, entity);
  ASSERT_GE(groups, 0);
  touch(shapes, groups);
  long long length = 0;
  for (int i = 0; i < groups; ++i) {
    (void)OrvML_IO_GetGenericElementType(document, entity, i);
    const int nodesOfCell = OrvML_IO_GetNNodeGenericElement(document, entity, i);
    EXPECT_GE(nodesOfCell, 0);
    length += cells == nullptr ? 0 : static_cast<long long>(cells[i]) * nodesOfCell;
  }
  touch(connectivities, length);
}

template <class T>
void touchAttribute(void* document, ORVML_TYPE_OF_ENTITY entity, const char* name) {
  T* values = nullptr;
  int length = 0;
  EXPECT_EQ(OrvML_IO_GetAttributesEntitiesVector(document, entity, name, values, length), 0);
  EXPECT_EQ(OrvML_IO_GetAttribute(document, name, entity), values);
  ASSERT_GE(length, 0);
  touch(values, length);
}

/// No exported function lists the names in a store.
template <class Store>
std::vector<std::string> namesIn(const Store& store) {
  std::vector<std::string> names;
  for (const auto& named : store) {
    names.push_back(named.first);
  }
  return names;
}

void callAttributes(void* document, ORVML_TYPE_OF_ENTITY entity) {
  const orvml_io::OML_AttributesVector* store =
      orvml_io::documentOf(document)->attributesOf(entity);
  if (store != nullptr) {
    for (const std::string& name : namesIn(*store)) {
      if (OrvML_IO_GetAttributeType(document, name.c_str(), entity) == ORVML_INT) {
        touchAttribute<int>(document, entity, name.c_str());
      } else {
        touchAttribute<double>(document, entity, name.c_str());
      }
    }
  }
  const int transmitted = OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(document, entity);
  for (int i = 0; i < transmitted; ++i) {
    EXPECT_NE(OrvML_IO_GetAttributeNameThatMustBeTransmitted(document, entity, i), nullptr);
  }
}

template <class T>
void touchParameter(void* document, const char* name) {
  T* values = nullptr;
  int length = 0;
  EXPECT_EQ(OrvML_IO_GetParameterVector(document, name, values, length), 0);
  ASSERT_GE(length, 0);
  touch(values, length);
}

void callParameters(void* document) {
  const orvml_io::OrvInputAndOrvOutput& internals = *orvml_io::documentOf(document);
  const std::vector<std::string> scalars = namesIn(internals.parametersScalar);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document), scalars.size());
  for (const std::string& name : scalars) {
    double value = 0;
    EXPECT_EQ(OrvML_IO_GetParameter(document, name.c_str(), value), 0);
    EXPECT_TRUE(OrvML_IO_ParameterExists(document, name.c_str()));
  }
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document), internals.parametersVector.count());
  for (const auto& named : internals.parametersVector) {
    if (named.second.code == orvml_io::kIntCode) {
      touchParameter<int>(document, named.first.c_str());
    } else {
      touchParameter<double>(document, named.first.c_str());
    }
  }
}

}  // namespace

void callEveryAccessor(void* document) {
  callTexts(document);
  callCallbacks(document);
  callNodes(document);
  for (const ORVML_TYPE_OF_ENTITY entity : {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    callCells(document, entity);
  }
  for (const ORVML_TYPE_OF_ENTITY entity : kEntities) {
    callAttributes(document, entity);
  }
  callParameters(document);
}

std::array<int, 4> countsOf(void* document) {
  return {OrvML_IO_GetNumberOfNodes(document), OrvML_IO_GetNumberOfEdges(document),
          OrvML_IO_GetNumberOfFaces(document), OrvML_IO_GetNumberOfElements(document)};
}

}  // namespace orvml_io_tests
