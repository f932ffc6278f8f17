#include "sequences/live_document.h"

#include "model/element_kinds.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {

namespace {

template <class T>
void noteAddress(const Shared<T>& array, T* address) {
  if (array != nullptr && array->address == nullptr) {
    array->address = address;
  }
}

void noteAddresses(void* handle, ORVML_TYPE_OF_ENTITY entity, CellsModel& cells) {
  const HandedOutGroups groups = groupsOf(handle, entity);
  noteAddress(cells.connectivities, groups.connectivities);
  noteAddress(cells.shapes, groups.elementTypes);
  noteAddress(cells.nodesPerCell, groups.numberOfNodesByElement);
  noteAddress(cells.cellsPerGroup, groups.numberOfElementsByType);
}

template <class Values>
int size32(const Values& values) {
  return static_cast<int>(values.size());
}

void setAttributes(void* handle, ORVML_TYPE_OF_ENTITY entity, const NamedVectors& attributes) {
  for (const auto& [name, vector] : attributes) {
    std::visit(
        [&, &attribute = name, flag = vector.mustBeTransmitted](const auto& values) {
          OrvML_IO_SetAttributesEntitiesVector(handle, entity, attribute.c_str(), values.data(),
                                               size32(values), flag);
        },
        vector.values);
  }
}

void setParameters(void* handle, const DocumentModel& model) {
  for (const auto& [name, value] : model.scalars) {
    OrvML_IO_SetParameter(handle, name.c_str(), value);
  }
  for (const auto& [name, vector] : model.vectors) {
    std::visit(
        [handle, &parameter = name](const auto& values) {
          OrvML_IO_SetParameterVector(handle, parameter.c_str(), values.data(), size32(values));
        },
        vector.values);
  }
}

void setCells(void* handle, ORVML_TYPE_OF_ENTITY entity, CellsModel& cells, CallerMemory& memory) {
  putIntoArrays(cells, memory);
  OrvML_IO_SetGenericElements(handle, entity, cells.count, cells.connectivities->address,
                              cells.groups, cells.shapes->address, cells.nodesPerCell->address,
                              cells.cellsPerGroup->address);
  setAttributes(handle, entity, cells.attributes);
}

}  // namespace

LiveDocument::LiveDocument(void* document, DocumentModel expected, std::string name)
    : handle(document),
      model(std::move(expected)),
      label(std::move(name)),
      moduleNameAddress(OrvML_IO_GetOrvMeshLibraryModuleName(document)),
      moduleFormatAddress(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document)) {}

void noteAddresses(LiveDocument& document) {
  DocumentModel& model = document.model;
  if (model.nodes) {
    double* coords = nullptr;
    OrvML_IO_GetNodesCoords(document.handle, coords);
    noteAddress(model.nodes->coords, coords);
  }
  for (auto& [entity, cells] : model.cells) {
    noteAddresses(document.handle, entity, cells);
  }
  for (const ORVML_TYPE_OF_ENTITY entity : kEveryKind) {
    if (NamedVectors* attributes = model.attributesOf(entity)) {
      for (auto& [name, vector] : *attributes) {
        vector.block = OrvML_IO_GetAttribute(document.handle, name.c_str(), entity);
      }
    }
  }
  for (auto& [name, vector] : model.vectors) {
    int* block = nullptr;
    int length = 0;
    OrvML_IO_GetParameterVector(document.handle, name.c_str(), block, length);
    vector.block = block;
  }
}

void putIntoArrays(CellsModel& cells, CallerMemory& memory) {
  cells.connectivities = memory.makeArray(cells.connectivities->values);
  cells.shapes = memory.makeArray(cells.shapes->values);
  cells.nodesPerCell = memory.makeArray(cells.nodesPerCell->values);
  cells.cellsPerGroup = memory.makeArray(cells.cellsPerGroup->values);
}

LiveDocument build(const DocumentModel& model, CallerMemory& memory) {
  LiveDocument document(
      model.isInput ? OrvML_IO_NewOrvInputHandle() : OrvML_IO_NewOrvOutputHandle(), model, "built");
  void* handle = document.handle;
  OrvML_IO_SetOrvMeshLibraryModuleName(model.moduleName.c_str(), handle);
  OrvML_IO_SetOrvMeshLibraryModuleFormatVersion(model.moduleFormatVersion.c_str(), handle);
  OrvML_IO_SetOrvMeshLibraryIOCreator(model.ioCreator.c_str(), handle);
  OrvML_IO_SetMeshDimension(handle, model.dimension);
  OrvML_IO_SetCallbackStatus(handle, model.statusCallback.first, model.statusCallback.second);
  OrvML_IO_SetCallbackError(handle, model.errorCallback.first, model.errorCallback.second);
  if (std::optional<NodesModel>& nodes = document.model.nodes) {
    nodes->coords = memory.makeArray(nodes->coords->values);
    OrvML_IO_SetNodesCoords(handle, nodes->count, nodes->coords->address);
    setAttributes(handle, ORVML_NODES, nodes->attributes);
  }
  for (auto& [entity, cells] : document.model.cells) {
    setCells(handle, entity, cells, memory);
  }
  setParameters(handle, model);
  noteAddresses(document);
  return document;
}

void takeLeftovers(const LiveDocument& document, CallerMemory& memory) {
  if (document.model.ownsArrays) {
    return;
  }
  for (const ORVML_TYPE_OF_ENTITY entity : kEveryKind) {
    if (const NamedVectors* attributes = document.model.attributesOf(entity)) {
      memory.take(*attributes);
    }
  }
}

void takeGroupArraysOfTheLibrary(const CellsModel& cells, CallerMemory& memory) {
  const auto takeIfOfTheLibrary = [&memory](const auto& array) {
    if (array != nullptr && !memory.owns(array)) {
      memory.take(array);
    }
  };
  takeIfOfTheLibrary(cells.shapes);
  takeIfOfTheLibrary(cells.nodesPerCell);
  takeIfOfTheLibrary(cells.cellsPerGroup);
}

}  // namespace orvml_io_tests
