// The expectations on everything that can be asked about a document.
#include "model/element_kinds.h"
#include "sequences/live_document.h"

#include <gtest/gtest.h>

#include <set>

namespace orvml_io_tests {

namespace {

constexpr int kUntouchedInt = -77;
constexpr double kUntouchedDouble = -77.5;
double untouchedDoubles[1] = {};
int untouchedInts[1] = {};
ElemType untouchedShapes[1] = {};

/// Kinds without a container in any document; for cells the nodes are one of them.
constexpr int kUnknownKinds[] = {-1, 4, 1000};

template <class T>
T* addressOf(const Shared<T>& array) {
  return array == nullptr ? nullptr : array->address;
}

template <class T>
void expectValues(const Shared<T>& array) {
  EXPECT_TRUE(array == nullptr || holds(array->address, array->values));
}

void expectIdentification(const LiveDocument& document) {
  const DocumentModel& model = document.model;
  char ioCreator[80] = {};
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(document.handle), document.moduleNameAddress);
  EXPECT_EQ(document.moduleNameAddress, model.moduleName);
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document.handle),
            document.moduleFormatAddress);
  EXPECT_EQ(document.moduleFormatAddress, model.moduleFormatVersion);
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryIOCreator(document.handle, ioCreator), ioCreator);
  EXPECT_EQ(ioCreator, model.ioCreator);
  EXPECT_EQ(OrvML_IO_GetMeshDimension(document.handle), model.dimension);
  EXPECT_STREQ(ORVML_IO_GetMinimumFormatVersionToSave(document.handle), "1.4");
}

using CallbackGetter = void (*)(void* const&, void*&, void*&);

/// An output document has no callbacks, so it leaves the outputs as they were.
void expectCallback(const LiveDocument& document, CallbackGetter getter,
                    const CallbackModel& model) {
  void* first = untouchedInts;
  void* second = untouchedDoubles;
  getter(document.handle, first, second);
  EXPECT_EQ(first, document.model.isInput ? model.first : untouchedInts);
  EXPECT_EQ(second, document.model.isInput ? model.second : untouchedDoubles);
}

void expectNodes(const LiveDocument& document) {
  const std::optional<NodesModel>& nodes = document.model.nodes;
  double* coords = untouchedDoubles;
  EXPECT_EQ(OrvML_IO_GetNodesCoords(document.handle, coords), 0);
  EXPECT_EQ(coords, nodes ? addressOf(nodes->coords) : nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle), nodes ? nodes->count : 0);
  if (nodes) {
    expectValues(nodes->coords);
  }
}

/// What the getters of the cells of one kind must hand out.
HandedOutGroups expectedGroups(const CellsModel* cells, int result) {
  if (cells == nullptr) {
    return {result, untouchedInts, untouchedShapes, untouchedInts, untouchedInts};
  }
  return {result, addressOf(cells->connectivities), addressOf(cells->shapes),
          addressOf(cells->nodesPerCell), addressOf(cells->cellsPerGroup)};
}

template <class Getter>
void expectGroups(const HandedOutGroups& expected, Getter getter) {
  int* connectivities = untouchedInts;
  ElemType* shapes = untouchedShapes;
  int* nodesPerCell = untouchedInts;
  int* cellsPerGroup = untouchedInts;
  EXPECT_EQ(getter(connectivities, shapes, nodesPerCell, cellsPerGroup), expected.result);
  EXPECT_EQ(connectivities, expected.connectivities);
  EXPECT_EQ(shapes, expected.elementTypes);
  EXPECT_EQ(nodesPerCell, expected.numberOfNodesByElement);
  EXPECT_EQ(cellsPerGroup, expected.numberOfElementsByType);
}

template <class Getter>
void expectConnectivities(const HandedOutGroups& expected, Getter getter) {
  int* connectivities = untouchedInts;
  EXPECT_EQ(getter(connectivities), expected.result);
  EXPECT_EQ(connectivities, expected.connectivities);
}

/// The functions that take the kind as an argument.
void expectGenericCells(void* handle, ORVML_TYPE_OF_ENTITY entity, const CellsModel* cells,
                        int resultOfKind) {
  const HandedOutGroups expected = expectedGroups(cells, resultOfKind);
  expectConnectivities(expected, [=](int*& connectivities) {
    return OrvML_IO_GetGenericElements(handle, entity, connectivities);
  });
  expectGroups(expected, [=](auto&... outputs) {
    return OrvML_IO_GetGenericElements(handle, entity, outputs...);
  });
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(handle, entity),
            cells == nullptr ? resultOfKind : cells->count);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(handle, entity),
            cells == nullptr ? resultOfKind : cells->groups);
  const int groups = cells == nullptr ? 0 : cells->groups;
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle, entity, groups), 0);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle, entity, groups), NONE);
}

/// The functions that fix the kind by their name.
void expectCellsOfKind(void* handle, const ElementKind& kind, const CellsModel* cells) {
  const HandedOutGroups expected = expectedGroups(cells, 0);
  expectConnectivities(expected,
                       [&](int*& connectivities) { return kind.get(handle, connectivities); });
  expectGroups(expected, [&](auto&... outputs) { return kind.getGroups(handle, outputs...); });
  EXPECT_EQ(kind.count(handle), cells == nullptr ? 0 : cells->count);
  EXPECT_EQ(kind.typeCount(handle), cells == nullptr ? 0 : cells->groups);
}

void expectCellValues(void* handle, ORVML_TYPE_OF_ENTITY entity, const CellsModel& cells) {
  expectValues(cells.connectivities);
  expectValues(cells.shapes);
  expectValues(cells.nodesPerCell);
  expectValues(cells.cellsPerGroup);
  for (int group = 0; group < cells.groups; ++group) {
    const auto index = static_cast<std::size_t>(group);
    EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle, entity, group),
              cells.nodesPerCell->values[index]);
    EXPECT_EQ(OrvML_IO_GetGenericElementType(handle, entity, group), cells.shapes->values[index]);
  }
}

void expectCells(const LiveDocument& document) {
  for (const ElementKind& kind : {kEdgeKind, kFaceKind, kVolumeElementKind}) {
    SCOPED_TRACE(kind.name);
    const CellsModel* cells = document.model.cellsOf(kind.entity);
    expectGenericCells(document.handle, kind.entity, cells, 0);
    expectCellsOfKind(document.handle, kind, cells);
    if (cells != nullptr) {
      expectCellValues(document.handle, kind.entity, *cells);
    }
  }
  expectGenericCells(document.handle, ORVML_NODES, nullptr, -1);
  for (const int unknown : kUnknownKinds) {
    expectGenericCells(document.handle, static_cast<ORVML_TYPE_OF_ENTITY>(unknown), nullptr, -1);
  }
}

/// The names to ask a store for: its own, and some that it may not have.
std::set<std::string> namesToAsk(const NamedVectors& vectors) {
  std::set<std::string> names(commonNames().begin(), commonNames().end());
  for (const auto& named : vectors) {
    names.insert(named.first);
  }
  return names;
}

/// What a getter of a vector must hand out.
struct ExpectedVector {
  int result;
  void* block;
  int length;
};

/// Answers whether it was so: values that are not where they should be are not to be looked at.
template <class Value, class Getter>
bool expectHandedOut(const ExpectedVector& expected, Value* untouched, Getter getter) {
  Value* values = untouched;
  int length = kUntouchedInt;
  EXPECT_EQ(getter(values, length), expected.result);
  EXPECT_EQ(values, expected.block);
  EXPECT_EQ(length, expected.length);
  return values == expected.block && length == expected.length;
}

/// The two forms of a getter are one operation: neither looks at the type.
template <class Getter>
void expectBothForms(const NamedVector* vector, Getter getter) {
  const ExpectedVector expected = vector == nullptr
                                      ? ExpectedVector{1, nullptr, 0}
                                      : ExpectedVector{0, vector->block, vector->length()};
  const bool isAsExpected = expectHandedOut(expected, untouchedInts, getter);
  expectHandedOut(expected, untouchedDoubles, getter);
  if (vector != nullptr && isAsExpected) {
    ASSERT_NE(vector->block, nullptr);
    EXPECT_TRUE(holds(vector->block, *vector));
  }
}

const NamedVector* find(const NamedVectors& vectors, const std::string& name) {
  const auto found = vectors.find(name);
  return found == vectors.end() ? nullptr : &found->second;
}

ORVML_TYPE_OF_VALUE typeOf(const NamedVector* vector) {
  if (vector == nullptr) {
    return ORVML_UNKNOWN_VALUE;
  }
  return vector->isInt() ? ORVML_INT : ORVML_DOUBLE;
}

void expectAttribute(void* handle, ORVML_TYPE_OF_ENTITY entity, const char* name,
                     const NamedVector* vector) {
  SCOPED_TRACE(name);
  expectBothForms(vector, [=](auto*& values, int& length) {
    return OrvML_IO_GetAttributesEntitiesVector(handle, entity, name, values, length);
  });
  EXPECT_EQ(OrvML_IO_GetAttribute(handle, name, entity),
            vector == nullptr ? nullptr : vector->block);
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle, name, entity), typeOf(vector));
}

void expectTransmitted(void* handle, ORVML_TYPE_OF_ENTITY entity, const NamedVectors& attributes) {
  int count = 0;
  for (const auto& [name, vector] : attributes) {
    if (vector.mustBeTransmitted) {
      const char* answer = OrvML_IO_GetAttributeNameThatMustBeTransmitted(handle, entity, count++);
      EXPECT_TRUE(answer != nullptr && answer == name) << name;
    }
  }
  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle, entity), count);
  for (const int index : {-1, count, count + 1}) {
    EXPECT_EQ(OrvML_IO_GetAttributeNameThatMustBeTransmitted(handle, entity, index), nullptr);
  }
}

/// Without a container the getters leave their outputs as they were.
void expectNoAttributes(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  const char* name = commonNames().front().c_str();
  const auto getter = [=](auto*& values, int& length) {
    return OrvML_IO_GetAttributesEntitiesVector(handle, entity, name, values, length);
  };
  expectHandedOut({1, untouchedInts, kUntouchedInt}, untouchedInts, getter);
  expectHandedOut({1, untouchedDoubles, kUntouchedInt}, untouchedDoubles, getter);
  EXPECT_EQ(OrvML_IO_GetAttribute(handle, name, entity), nullptr);
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle, name, entity), ORVML_UNKNOWN_VALUE);
  expectTransmitted(handle, entity, {});
}

void expectAttributes(const LiveDocument& document) {
  for (const ORVML_TYPE_OF_ENTITY entity : kEveryKind) {
    SCOPED_TRACE("kind " + std::to_string(entity));
    const NamedVectors* attributes = document.model.attributesOf(entity);
    if (attributes == nullptr) {
      expectNoAttributes(document.handle, entity);
      continue;
    }
    for (const std::string& name : namesToAsk(*attributes)) {
      expectAttribute(document.handle, entity, name.c_str(), find(*attributes, name));
    }
    expectTransmitted(document.handle, entity, *attributes);
  }
  for (const int unknown : kUnknownKinds) {
    expectNoAttributes(document.handle, static_cast<ORVML_TYPE_OF_ENTITY>(unknown));
  }
}

void expectScalar(const LiveDocument& document, const std::string& name) {
  const auto found = document.model.scalars.find(name);
  const bool exists = found != document.model.scalars.end();
  double value = kUntouchedDouble;
  EXPECT_EQ(OrvML_IO_GetParameter(document.handle, name.c_str(), value), exists ? 0 : 1);
  EXPECT_TRUE(holds(&value, std::vector<double>{exists ? found->second : kUntouchedDouble}));
  EXPECT_EQ(OrvML_IO_ParameterExists(document.handle, name.c_str()), exists);
}

void expectParameters(const LiveDocument& document) {
  const DocumentModel& model = document.model;
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle), model.scalars.size());
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document.handle), model.vectors.size());
  for (const std::string& name : namesToAsk(model.vectors)) {
    SCOPED_TRACE(name);
    expectScalar(document, name);
    expectBothForms(find(model.vectors, name), [&](auto*& values, int& length) {
      return OrvML_IO_GetParameterVector(document.handle, name.c_str(), values, length);
    });
  }
  for (const auto& named : model.scalars) {
    expectScalar(document, named.first);
  }
}

}  // namespace

void expectState(const LiveDocument& document) {
  SCOPED_TRACE("document " + document.label);
  expectIdentification(document);
  expectCallback(document, OrvML_IO_GetCallbackStatus, document.model.statusCallback);
  expectCallback(document, OrvML_IO_GetCallbackError, document.model.errorCallback);
  expectNodes(document);
  expectCells(document);
  expectAttributes(document);
  expectParameters(document);
}

void expectNullHandleState() {
  SCOPED_TRACE("null handle");
  for (const CallbackGetter getter : {OrvML_IO_GetCallbackStatus, OrvML_IO_GetCallbackError}) {
    void* first = untouchedInts;
    void* second = untouchedDoubles;
    getter(nullptr, first, second);
    EXPECT_EQ(first, untouchedInts);
    EXPECT_EQ(second, untouchedDoubles);
  }
  char ioCreator[80] = "untouched";
  double* coords = untouchedDoubles;
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(nullptr), nullptr);
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(nullptr), nullptr);
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryIOCreator(nullptr, ioCreator), "untouched");
  EXPECT_EQ(OrvML_IO_GetMeshDimension(nullptr), -1);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(nullptr), 0U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(nullptr), 0U);
  EXPECT_EQ(OrvML_IO_GetNodesCoords(nullptr, coords), 1);
  EXPECT_EQ(coords, nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(nullptr), 0);
  for (const ElementKind& kind : {kEdgeKind, kFaceKind, kVolumeElementKind}) {
    const HandedOutGroups untouched = expectedGroups(nullptr, 0);
    expectConnectivities(untouched, [&](int*& output) { return kind.get(nullptr, output); });
    expectGroups(untouched, [&](auto&... outputs) { return kind.getGroups(nullptr, outputs...); });
    expectConnectivities(untouched, [&](int*& output) {
      return OrvML_IO_GetGenericElements(nullptr, kind.entity, output);
    });
    EXPECT_EQ(kind.count(nullptr), 0);
    EXPECT_EQ(kind.typeCount(nullptr), -1);
    EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(nullptr, kind.entity), -1);
    EXPECT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(nullptr, kind.entity), -1);
    EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(nullptr, kind.entity, 0), -1);
    EXPECT_EQ(OrvML_IO_GetGenericElementType(nullptr, kind.entity, 0), NONE);
  }
}

const std::vector<std::string>& commonNames() {
  // Each is a prefix, a neighbour or another case of one before it, so that their order shows.
  static const std::vector<std::string> names = {"a",
                                                 "A",
                                                 "AB",
                                                 "B",
                                                 "b",
                                                 "\xc3\xa9t\xc3\xa9",
                                                 "z",
                                                 " ",
                                                 "a b",
                                                 std::string(79, 'n'),
                                                 std::string(80, 'n'),
                                                 ""};
  return names;
}

}  // namespace orvml_io_tests
