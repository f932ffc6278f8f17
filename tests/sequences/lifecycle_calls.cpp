// Constructors, clones and deletion.
#include "sequences/caller.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {

namespace {

bool newInput(Caller& caller) {
  if (!caller.makeRoom()) {
    return false;
  }
  caller.log("OrvML_IO_NewOrvInputHandle");
  caller.add(OrvML_IO_NewOrvInputHandle(), DocumentModel());
  return true;
}

bool newOutput(Caller& caller) {
  if (!caller.makeRoom()) {
    return false;
  }
  caller.log("OrvML_IO_NewOrvOutputHandle");
  DocumentModel model;
  model.isInput = false;
  caller.add(OrvML_IO_NewOrvOutputHandle(), model);
  return true;
}

/// The arguments that the constructors with an identification begin with.
struct Identification {
  std::optional<std::string> moduleName;
  std::optional<std::string> moduleFormatVersion;
  std::optional<std::string> ioCreator;
  int dimension;

  explicit Identification(Random& random)
      : moduleName(anyText(random)),
        moduleFormatVersion(anyText(random)),
        ioCreator(anyText(random)),
        dimension(random.between(1, 3)) {}

  [[nodiscard]] DocumentModel model() const {
    DocumentModel result;
    result.moduleName = cutIdentification(moduleName.value_or(""));
    result.moduleFormatVersion = cutIdentification(moduleFormatVersion.value_or(""));
    result.ioCreator = cutIdentification(ioCreator.value_or(""));
    result.dimension = dimension;
    return result;
  }
};

bool newInputWithIdentification(Caller& caller) {
  if (!caller.makeRoom()) {
    return false;
  }
  const Identification texts(caller.random);
  caller.log("OrvML_IO_NewOrvInputHandle", texts.moduleName, texts.moduleFormatVersion,
             texts.ioCreator);
  DocumentModel model = texts.model();
  model.dimension = 0;
  caller.add(
      OrvML_IO_NewOrvInputHandle(pointerTo(texts.moduleName), pointerTo(texts.moduleFormatVersion),
                                 pointerTo(texts.ioCreator)),
      model);
  return true;
}

bool newInputWithDimension(Caller& caller) {
  if (!caller.makeRoom()) {
    return false;
  }
  const Identification texts(caller.random);
  caller.log("OrvML_IO_NewOrvInputHandle", texts.moduleName, texts.moduleFormatVersion,
             texts.ioCreator, texts.dimension);
  caller.add(
      OrvML_IO_NewOrvInputHandle(pointerTo(texts.moduleName), pointerTo(texts.moduleFormatVersion),
                                 pointerTo(texts.ioCreator), texts.dimension),
      texts.model());
  return true;
}

/// Nodes in an array that the document adopts.
NodesModel anyNodes(Caller& caller) {
  NodesModel nodes;
  nodes.count = caller.random.below(6);
  nodes.coords = caller.memory.makeArray(caller.random.doubles(nodes.count * kCoordinatesPerNode));
  return nodes;
}

bool newInputWithNodes(Caller& caller) {
  if (!caller.makeRoom()) {
    return false;
  }
  const Identification texts(caller.random);
  DocumentModel model = texts.model();
  model.nodes = anyNodes(caller);
  caller.log("OrvML_IO_NewOrvInputHandleWithNodes", texts.moduleName, texts.dimension,
             model.nodes->count, model.nodes->coords);
  caller.add(OrvML_IO_NewOrvInputHandleWithNodes(pointerTo(texts.moduleName),
                                                 pointerTo(texts.moduleFormatVersion),
                                                 pointerTo(texts.ioCreator), texts.dimension,
                                                 model.nodes->count, model.nodes->coords->address),
             model);
  return true;
}

/// Cells of one shape in one group; without connectivities there is no container.
std::optional<CellsModel> anyCellsOfOneShape(Caller& caller) {
  if (caller.random.chance(15)) {
    return std::nullopt;
  }
  CellsModel cells;
  const int nodes = caller.random.between(1, 4);
  cells.count = caller.random.below(4);
  cells.connectivities = caller.memory.makeArray(caller.random.nodeIndices(cells.count * nodes));
  cells.groups = 1;
  cells.shapes = makeShared<ElemType>({caller.random.anyShape()});
  cells.nodesPerCell = makeShared<int>({nodes});
  cells.cellsPerGroup = makeShared<int>({cells.count});
  cells.keepsGroupArrays = false;
  return cells;
}

template <class Constructor>
bool newInputWithCells(Caller& caller, const char* function, ORVML_TYPE_OF_ENTITY entity,
                       Constructor constructor) {
  if (!caller.makeRoom()) {
    return false;
  }
  const Identification texts(caller.random);
  DocumentModel model = texts.model();
  model.nodes = anyNodes(caller);
  const std::optional<CellsModel> cells = anyCellsOfOneShape(caller);
  caller.log(function, texts.moduleName, texts.dimension, model.nodes->count,
             cells ? cells->count : 0, cells ? cells->connectivities : nullptr);
  void* handle = constructor(
      pointerTo(texts.moduleName), pointerTo(texts.moduleFormatVersion), pointerTo(texts.ioCreator),
      texts.dimension, model.nodes->count, model.nodes->coords->address, cells ? cells->count : 0,
      cells ? cells->connectivities->address : nullptr, cells ? cells->shapes->values[0] : TRIANGLE,
      cells ? cells->nodesPerCell->values[0] : 3);
  if (cells) {
    model.cells.emplace(entity, *cells);
  }
  caller.add(handle, model);
  return true;
}

bool newInputWithFaces(Caller& caller) {
  return newInputWithCells(caller, "OrvML_IO_NewOrvInputHandleWithFaces", ORVML_FACES,
                           OrvML_IO_NewOrvInputHandleWithFaces);
}

bool newInputWithVolumeElements(Caller& caller) {
  return newInputWithCells(caller, "OrvML_IO_NewOrvInputHandleWithVolumeElements", ORVML_ELEMENTS,
                           OrvML_IO_NewOrvInputHandleWithVolumeElements);
}

template <class Constructor>
bool clone(Caller& caller, const char* function, bool asInput, Constructor constructor) {
  if (!caller.makeRoom()) {
    return false;
  }
  const LiveDocument* source = caller.documentOrNone();
  caller.log(function, source);
  void* handle = constructor(handleOf(source));
  EXPECT_EQ(handle == nullptr, source == nullptr);
  if (handle != nullptr && source != nullptr) {
    caller.add(handle, cloneOf(source->model, asInput));
  }
  return true;
}

bool cloneAsInput(Caller& caller) {
  return clone(caller, "OrvML_IO_NewOrvInputHandle", true,
               [](void* source) { return OrvML_IO_NewOrvInputHandle(source); });
}

bool cloneAsOutput(Caller& caller) {
  return clone(caller, "OrvML_IO_NewOrvOutputHandle", false,
               [](void* source) { return OrvML_IO_NewOrvOutputHandle(source); });
}

/// Either function takes either kind of document.
bool deleteHandle(Caller& caller, const char* function, void (*deleter)(void*&)) {
  LiveDocument* document = caller.documentOrNone();
  caller.log(function, document);
  if (document != nullptr) {
    caller.remove(*document, deleter);
    return true;
  }
  void* none = nullptr;
  deleter(none);
  EXPECT_EQ(none, nullptr);
  return true;
}

bool deleteInputHandle(Caller& caller) {
  return deleteHandle(caller, "OrvML_IO_DeleteOrvInputHandle", OrvML_IO_DeleteOrvInputHandle);
}

bool deleteOutputHandle(Caller& caller) {
  return deleteHandle(caller, "OrvML_IO_DeleteOrvOutputHandle", OrvML_IO_DeleteOrvOutputHandle);
}

}  // namespace

std::vector<Call> lifecycleCalls() {
  return {{"NewOrvInputHandle()", newInput},
          {"NewOrvOutputHandle()", newOutput},
          {"NewOrvInputHandle(texts)", newInputWithIdentification},
          {"NewOrvInputHandle(texts, dimension)", newInputWithDimension},
          {"NewOrvInputHandleWithNodes", newInputWithNodes},
          {"NewOrvInputHandleWithFaces", newInputWithFaces},
          {"NewOrvInputHandleWithVolumeElements", newInputWithVolumeElements},
          {"NewOrvInputHandle(source)", cloneAsInput},
          {"NewOrvOutputHandle(source)", cloneAsOutput},
          {"DeleteOrvInputHandle", deleteInputHandle},
          {"DeleteOrvOutputHandle", deleteOutputHandle}};
}

}  // namespace orvml_io_tests
