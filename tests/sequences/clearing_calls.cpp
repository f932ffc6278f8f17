// Clearing content, removing containers and attributes.
#include "sequences/caller.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {

namespace {

/// The arrays that clearing a container releases, whoever made them.
template <class Visit>
void forEachReleasedArray(NodesModel& nodes, Visit visit) {
  visit(nodes.coords);
}

template <class Visit>
void forEachReleasedArray(CellsModel& cells, Visit visit) {
  visit(cells.connectivities);
  if (!cells.keepsGroupArrays) {
    visit(cells.shapes);
    visit(cells.nodesPerCell);
    visit(cells.cellsPerGroup);
  }
}

/// Tells whether a caller may have a container cleared: it hands its arrays over with that.
template <class Container>
bool mayBeCleared(Container& container, const CallerMemory& memory) {
  bool may = true;
  forEachReleasedArray(container,
                       [&](const auto& array) { may = may && memory.mayBeReleased(array); });
  return may;
}

void forgetGroups(NodesModel& /*nodes*/) {}
void forgetGroups(CellsModel& cells) {
  if (!cells.keepsGroupArrays) {
    cells.groups = 0;
  }
}

template <class Container>
void clear(Container& container, CallerMemory& memory) {
  forEachReleasedArray(container, [&memory](auto& array) {
    memory.forget(array);
    array.reset();
  });
  forgetGroups(container);
  container.count = 0;
  container.attributes.clear();
}

bool mayBeCleared(DocumentModel& model, const CallerMemory& memory) {
  bool may = !model.nodes || mayBeCleared(*model.nodes, memory);
  for (auto& named : model.cells) {
    may = may && mayBeCleared(named.second, memory);
  }
  return may;
}

void clearParameters(DocumentModel& model) {
  model.scalars.clear();
  model.vectors.clear();
}

void clear(DocumentModel& model, CallerMemory& memory) {
  if (model.nodes) {
    clear(*model.nodes, memory);
  }
  for (auto& named : model.cells) {
    clear(named.second, memory);
  }
  clearParameters(model);
}

template <class Clearer>
bool clearDocument(Caller& caller, const char* function, Clearer clearer) {
  LiveDocument* document = caller.documentOrNone();
  if (document != nullptr && !mayBeCleared(document->model, caller.memory)) {
    return false;
  }
  caller.log(function, document);
  void* none = nullptr;
  clearer(document == nullptr ? none : document->handle);
  if (document != nullptr) {
    clear(document->model, caller.memory);
  }
  return true;
}

bool deleteInputContent(Caller& caller) {
  return clearDocument(caller, "OrvML_IO_DeleteOrvInputContent", OrvML_IO_DeleteOrvInputContent);
}

bool deleteOutputContent(Caller& caller) {
  return clearDocument(caller, "OrvML_IO_DeleteOrvOutputContent",
                       [](void*& handle) { OrvML_IO_DeleteOrvOutputContent(handle); });
}

bool deleteParametersContent(Caller& caller) {
  LiveDocument* document = caller.documentOrNone();
  caller.log("OrvML_IO_DeleteParametersContent", document);
  OrvML_IO_DeleteParametersContent(handleOf(document));
  if (document != nullptr) {
    clearParameters(document->model);
  }
  return true;
}

NodesModel* containerOf(DocumentModel& model) { return model.nodes ? &*model.nodes : nullptr; }

template <class Container>
bool clearContainer(Caller& caller, const char* function, void (*clearer)(void*&),
                    LiveDocument* document, Container* container) {
  if (container != nullptr && !mayBeCleared(*container, caller.memory)) {
    return false;
  }
  caller.log(function, document);
  void* none = nullptr;
  clearer(document == nullptr ? none : document->handle);
  if (container != nullptr) {
    clear(*container, caller.memory);
  }
  return true;
}

bool deleteNodesContent(Caller& caller) {
  LiveDocument* document = caller.documentOrNone();
  return clearContainer(caller, "OrvML_IO_DeleteNodesContent", OrvML_IO_DeleteNodesContent,
                        document, document == nullptr ? nullptr : containerOf(document->model));
}

template <ORVML_TYPE_OF_ENTITY entity>
bool clearCells(Caller& caller, const char* function, void (*clearer)(void*&)) {
  LiveDocument* document = caller.documentOrNone();
  return clearContainer(caller, function, clearer, document,
                        document == nullptr ? nullptr : document->model.cellsOf(entity));
}

bool deleteElementsContent(Caller& caller) {
  return clearCells<ORVML_ELEMENTS>(caller, "OrvML_IO_DeleteElementsContent",
                                    OrvML_IO_DeleteElementsContent);
}

bool deleteFacesContent(Caller& caller) {
  return clearCells<ORVML_FACES>(caller, "OrvML_IO_DeleteFacesContent",
                                 OrvML_IO_DeleteFacesContent);
}

bool deleteEdgesContent(Caller& caller) {
  return clearCells<ORVML_EDGES>(caller, "OrvML_IO_DeleteEdgesContent",
                                 OrvML_IO_DeleteEdgesContent);
}

/// Hands over what removing a container from a document of a constructor leaves allocated: the
/// attribute blocks, and the one-entry group arrays that the library made for edges and faces.
void takeLeftoversOfContainer(LiveDocument& document, ORVML_TYPE_OF_ENTITY entity,
                              CallerMemory& memory) {
  if (document.model.ownsArrays) {
    return;
  }
  if (const NamedVectors* attributes = document.model.attributesOf(entity)) {
    memory.take(*attributes);
  }
  const CellsModel* cells = document.model.cellsOf(entity);
  if (cells != nullptr && entity != ORVML_ELEMENTS) {
    takeGroupArraysOfTheLibrary(*cells, memory);
  }
}

template <ORVML_TYPE_OF_ENTITY entity>
bool removeContainer(Caller& caller, const char* function, void (*remover)(void*)) {
  LiveDocument* document = caller.documentOrNone();
  caller.log(function, document);
  if (document != nullptr) {
    takeLeftoversOfContainer(*document, entity, caller.memory);
  }
  remover(handleOf(document));
  if (document != nullptr && entity == ORVML_NODES) {
    document->model.nodes.reset();
  } else if (document != nullptr) {
    document->model.cells.erase(entity);
  }
  return true;
}

bool deleteNodes(Caller& caller) {
  return removeContainer<ORVML_NODES>(caller, "OrvML_IO_DeleteNodes", OrvML_IO_DeleteNodes);
}

bool deleteElements(Caller& caller) {
  return removeContainer<ORVML_ELEMENTS>(caller, "OrvML_IO_DeleteElements",
                                         OrvML_IO_DeleteElements);
}

bool deleteFaces(Caller& caller) {
  return removeContainer<ORVML_FACES>(caller, "OrvML_IO_DeleteFaces", OrvML_IO_DeleteFaces);
}

bool deleteEdges(Caller& caller) {
  return removeContainer<ORVML_EDGES>(caller, "OrvML_IO_DeleteEdges", OrvML_IO_DeleteEdges);
}

bool deleteAttributesOfAKind(Caller& caller) {
  LiveDocument& document = caller.document();
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  caller.log("OrvML_IO_DeleteAttributesEntitiesVector", document, entity);
  EXPECT_EQ(OrvML_IO_DeleteAttributesEntitiesVector(document.handle, entity), 0);
  if (NamedVectors* attributes = document.model.attributesOf(entity)) {
    attributes->clear();
  }
  return true;
}

}  // namespace

std::vector<Call> clearingCalls() {
  return {{"DeleteOrvInputContent", deleteInputContent},
          {"DeleteOrvOutputContent", deleteOutputContent},
          {"DeleteParametersContent", deleteParametersContent},
          {"DeleteNodesContent", deleteNodesContent},
          {"DeleteElementsContent", deleteElementsContent},
          {"DeleteFacesContent", deleteFacesContent},
          {"DeleteEdgesContent", deleteEdgesContent},
          {"DeleteNodes", deleteNodes},
          {"DeleteElements", deleteElements},
          {"DeleteFaces", deleteFaces},
          {"DeleteEdges", deleteEdges},
          {"DeleteAttributesEntitiesVector(kind)", deleteAttributesOfAKind}};
}

}  // namespace orvml_io_tests
