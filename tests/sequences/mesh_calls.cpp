// Nodes and cells: the setters, and the caller who writes into arrays that were handed out.
#include "model/element_kinds.h"
#include "sequences/caller.h"
#include "sequences/random_document.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {

namespace {

/// Coordinates for the setter: new ones, ones that another document may have, or none.
Shared<double> anyCoordinates(Caller& caller) {
  if (caller.random.chance(10)) {
    return nullptr;
  }
  if (caller.random.chance(20)) {
    return caller.memory.anyArray<double>(caller.random);
  }
  return caller.memory.makeArray(
      caller.random.doubles(caller.random.below(6) * kCoordinatesPerNode));
}

bool setNodesCoords(Caller& caller) {
  LiveDocument* document = caller.documentOrNone();
  NodesModel nodes;
  nodes.coords = anyCoordinates(caller);
  nodes.count = caller.random.below(6);
  const int dimension = document == nullptr ? 0 : document->model.dimension;
  while (!coordinatesReach(nodes, nodes.count, dimension)) {
    --nodes.count;
  }
  caller.log("OrvML_IO_SetNodesCoords", document, nodes.count, nodes.coords);
  OrvML_IO_SetNodesCoords(handleOf(document), nodes.count,
                          nodes.coords == nullptr ? nullptr : nodes.coords->address);
  if (document != nullptr && !document->model.ownsArrays) {
    std::optional<NodesModel>& held = document->model.nodes;
    nodes.attributes = held ? held->attributes : NamedVectors();
    held = nodes;
  }
  return true;
}

bool setNumberOfNodes(Caller& caller) {
  LiveDocument* document = caller.documentOrNone();
  const int count = caller.random.below(6);
  NodesModel* nodes =
      document != nullptr && document->model.nodes ? &*document->model.nodes : nullptr;
  if (nodes != nullptr && !coordinatesReach(*nodes, count, document->model.dimension)) {
    return false;
  }
  caller.log("OrvML_IO_SetNumberOfNodes", document, count);
  OrvML_IO_SetNumberOfNodes(handleOf(document), count);
  if (nodes != nullptr) {
    nodes->count = count;
  }
  return true;
}

/// Type groups for the generic setters. The number of cells need not be their sum.
CellsModel anyGroups(Caller& caller) {
  CellsModel cells = randomGroups(caller.random);
  cells.connectivities = makeShared(caller.random.nodeIndices(cells.connectivityLength()));
  putIntoArrays(cells, caller.memory);
  if (caller.random.chance(20)) {
    cells.count = caller.random.below(9);
  }
  return cells;
}

/// Connectivities of the caller that a document has adopted already; null when there are none.
Shared<int> connectivitiesInUse(Caller& caller) {
  const CellsModel* cells = caller.document().model.cellsOf(anyEntity(caller.random));
  return cells != nullptr && caller.memory.owns(cells->connectivities) ? cells->connectivities
                                                                       : nullptr;
}

/// A group of one shape for the other setters, whose group arrays the library makes. The
/// connectivities may be those of another container.
CellsModel anySingleShape(Caller& caller) {
  Random& random = caller.random;
  const int nodes = random.below(5);
  CellsModel cells;
  cells.count = random.below(4);
  cells.connectivities = caller.memory.makeArray(random.nodeIndices(cells.count * nodes));
  const Shared<int> used = random.chance(20) ? connectivitiesInUse(caller) : nullptr;
  if (used != nullptr && used->values.size() >= cells.connectivities->values.size()) {
    cells.connectivities = used;
  }
  cells.groups = 1;
  cells.shapes = makeShared<ElemType>({random.anyShape()});
  cells.nodesPerCell = makeShared<int>({nodes});
  cells.cellsPerGroup = makeShared<int>({cells.count});
  cells.keepsGroupArrays = false;
  return cells;
}

/// What a setter leaves of the container of a kind. Without connectivities it empties a container
/// and makes none; attributes stay, and so does the rule for the group arrays, except that a setter
/// of a single shape revokes it.
void store(LiveDocument& document, ORVML_TYPE_OF_ENTITY entity, CellsModel cells,
           CallerMemory& memory) {
  CellsModel* held = document.model.cellsOf(entity);
  if (held != nullptr) {
    takeGroupArraysOfTheLibrary(*held, memory);
    cells.attributes = held->attributes;
    cells.keepsGroupArrays = cells.keepsGroupArrays && held->keepsGroupArrays;
    *held = cells;
  } else if (cells.connectivities != nullptr) {
    document.model.cells.emplace(entity, cells);
  }
}

/// Leaves the connectivities out now and then, which empties the container.
CellsModel orNothing(CellsModel cells, Random& random) {
  if (!random.chance(15)) {
    return cells;
  }
  CellsModel nothing;
  nothing.keepsGroupArrays = cells.keepsGroupArrays;
  return nothing;
}

bool accepts(const LiveDocument* document, ORVML_TYPE_OF_ENTITY entity) {
  return document != nullptr && !document->model.ownsArrays && entity >= ORVML_EDGES &&
         entity <= ORVML_ELEMENTS;
}

template <class Setter>
bool setGroups(Caller& caller, const char* kind, ORVML_TYPE_OF_ENTITY entity, Setter setter) {
  LiveDocument* document = caller.documentOrNone();
  const CellsModel given = anyGroups(caller);
  const CellsModel stored = orNothing(given, caller.random);
  caller.log("set groups of", kind, document, entity, given.count, stored.connectivities,
             given.groups);
  setter(handleOf(document), given.count,
         stored.connectivities == nullptr ? nullptr : stored.connectivities->address, given.groups,
         given.shapes->address, given.nodesPerCell->address, given.cellsPerGroup->address);
  if (accepts(document, entity)) {
    store(*document, entity, stored, caller.memory);
  }
  return true;
}

template <class Setter>
bool setSingleShape(Caller& caller, const char* kind, ORVML_TYPE_OF_ENTITY entity, Setter setter) {
  LiveDocument* document = caller.documentOrNone();
  const CellsModel given = anySingleShape(caller);
  const CellsModel stored = orNothing(given, caller.random);
  caller.log("set a single shape of", kind, document, entity, given.count, stored.connectivities,
             given.shapes->values[0], given.nodesPerCell->values[0]);
  setter(handleOf(document), given.count,
         stored.connectivities == nullptr ? nullptr : stored.connectivities->address,
         given.shapes->values[0], given.nodesPerCell->values[0]);
  if (accepts(document, entity)) {
    store(*document, entity, stored, caller.memory);
    noteAddresses(*document);
  }
  return true;
}

bool setGenericGroups(Caller& caller) {
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  return setGroups(caller, "any kind", entity, [entity](void* handle, auto... arguments) {
    OrvML_IO_SetGenericElements(handle, entity, arguments...);
  });
}

bool setGenericSingleShape(Caller& caller) {
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  return setSingleShape(caller, "any kind", entity, [entity](void* handle, auto... arguments) {
    OrvML_IO_SetGenericElements(handle, entity, arguments...);
  });
}

template <const ElementKind& kind>
bool setGroupsOf(Caller& caller) {
  return setGroups(caller, kind.name, kind.entity, kind.setGroups);
}

template <const ElementKind& kind>
bool setSingleShapeOf(Caller& caller) {
  return setSingleShape(caller, kind.name, kind.entity, kind.setSingleShape);
}

/// Writes a value into an array that was handed out: whoever holds the array sees it.
template <class T>
bool writeInto(Caller& caller, T* handedOut, const Shared<T>& array, T value) {
  if (array == nullptr || array->values.empty()) {
    return false;
  }
  const int index = caller.random.below(static_cast<int>(array->values.size()));
  caller.log("write into an array", array, index);
  handedOut[index] = value;
  array->values[static_cast<std::size_t>(index)] = value;
  return true;
}

bool writeIntoCoordinates(Caller& caller) {
  LiveDocument& document = caller.document();
  double* coords = nullptr;
  EXPECT_EQ(OrvML_IO_GetNodesCoords(document.handle, coords), 0);
  return document.model.nodes &&
         writeInto(caller, coords, document.model.nodes->coords, caller.random.anyDouble());
}

bool writeIntoConnectivities(Caller& caller) {
  LiveDocument& document = caller.document();
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  const CellsModel* cells = document.model.cellsOf(entity);
  if (cells == nullptr) {
    return false;
  }
  const HandedOutGroups groups = groupsOf(document.handle, entity);
  const std::vector<int> indices = caller.random.nodeIndices(1);
  return writeInto(caller, groups.connectivities, cells->connectivities, indices[0]);
}

bool writeIntoShapes(Caller& caller) {
  LiveDocument& document = caller.document();
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  const CellsModel* cells = document.model.cellsOf(entity);
  return cells != nullptr && writeInto(caller, groupsOf(document.handle, entity).elementTypes,
                                       cells->shapes, caller.random.anyShape());
}

}  // namespace

std::vector<Call> meshCalls() {
  return {{"SetNodesCoords", setNodesCoords},
          {"SetNumberOfNodes", setNumberOfNodes},
          {"SetGenericElements(groups)", setGenericGroups},
          {"SetEdges(groups)", setGroupsOf<kEdgeKind>},
          {"SetFaces(groups)", setGroupsOf<kFaceKind>},
          {"SetElements(groups)", setGroupsOf<kVolumeElementKind>},
          {"SetGenericElements(shape)", setGenericSingleShape},
          {"SetEdges(shape)", setSingleShapeOf<kEdgeKind>},
          {"SetFaces(shape)", setSingleShapeOf<kFaceKind>},
          {"SetElements(shape)", setSingleShapeOf<kVolumeElementKind>},
          {"writing into coordinates", writeIntoCoordinates},
          {"writing into connectivities", writeIntoConnectivities},
          {"writing into shapes", writeIntoShapes}};
}

}  // namespace orvml_io_tests
