#include "sequences/document_model.h"

#include <algorithm>

namespace orvml_io_tests {

namespace {

constexpr std::size_t kIdentificationBytes = 79;

/// An array of no values is an array all the same; values that the source lacks stay missing.
template <class T>
Shared<T> firstValuesOf(const Shared<T>& source, int count) {
  if (count == 0) {
    return makeShared<T>({});
  }
  if (source == nullptr) {
    return nullptr;
  }
  return makeShared<T>({source->values.begin(), source->values.begin() + count});
}

NamedVectors copyOf(const NamedVectors& source) {
  NamedVectors copy = source;
  for (auto& named : copy) {
    named.second.block = nullptr;
  }
  return copy;
}

NodesModel cloneOf(const NodesModel& source, int dimension) {
  NodesModel clone;
  if (source.count == 0) {
    return clone;  // not even the attributes
  }
  if (source.coords != nullptr) {
    clone.coords = firstValuesOf(source.coords, source.count * dimension);
  }
  clone.count = source.count;
  clone.attributes = copyOf(source.attributes);
  return clone;
}

CellsModel cloneOf(const CellsModel& source) {
  CellsModel clone;
  clone.count = source.count;
  clone.groups = source.groups;
  clone.shapes = firstValuesOf(source.shapes, source.groups);
  clone.nodesPerCell = firstValuesOf(source.nodesPerCell, source.groups);
  clone.cellsPerGroup = firstValuesOf(source.cellsPerGroup, source.groups);
  // As long as the groups say, whatever the number of cells.
  clone.connectivities = firstValuesOf(source.connectivities, source.connectivityLength());
  clone.keepsGroupArrays = false;
  clone.attributes = copyOf(source.attributes);
  return clone;
}

}  // namespace

int NamedVector::length() const {
  return std::visit([](const auto& held) { return static_cast<int>(held.size()); }, values);
}

int CellsModel::connectivityLength() const {
  int length = 0;
  for (std::size_t group = 0; group < static_cast<std::size_t>(groups); ++group) {
    length += cellsPerGroup->values[group] * nodesPerCell->values[group];
  }
  return length;
}

int CellsModel::cellsInGroups() const {
  int cells = 0;
  for (std::size_t group = 0; group < static_cast<std::size_t>(groups); ++group) {
    cells += cellsPerGroup->values[group];
  }
  return cells;
}

const CellsModel* DocumentModel::cellsOf(ORVML_TYPE_OF_ENTITY entity) const {
  const auto found = cells.find(entity);
  return found == cells.end() ? nullptr : &found->second;
}

CellsModel* DocumentModel::cellsOf(ORVML_TYPE_OF_ENTITY entity) {
  const auto found = cells.find(entity);
  return found == cells.end() ? nullptr : &found->second;
}

const NamedVectors* DocumentModel::attributesOf(ORVML_TYPE_OF_ENTITY entity) const {
  if (entity == ORVML_NODES) {
    return nodes ? &nodes->attributes : nullptr;
  }
  const CellsModel* container = cellsOf(entity);
  return container == nullptr ? nullptr : &container->attributes;
}

NamedVectors* DocumentModel::attributesOf(ORVML_TYPE_OF_ENTITY entity) {
  if (entity == ORVML_NODES) {
    return nodes ? &nodes->attributes : nullptr;
  }
  CellsModel* container = cellsOf(entity);
  return container == nullptr ? nullptr : &container->attributes;
}

int DocumentModel::countOf(ORVML_TYPE_OF_ENTITY entity) const {
  if (entity == ORVML_NODES) {
    return nodes ? nodes->count : 0;
  }
  const CellsModel* container = cellsOf(entity);
  return container == nullptr ? 0 : container->count;
}

std::string cutIdentification(const std::string& text) {
  return text.substr(0, kIdentificationBytes);
}

DocumentModel cloneOf(const DocumentModel& source, bool asInput) {
  DocumentModel clone;
  clone.isInput = asInput;
  clone.ownsArrays = true;
  clone.moduleName = source.moduleName;
  clone.moduleFormatVersion = source.moduleFormatVersion;
  clone.ioCreator = source.ioCreator;
  clone.dimension = source.dimension;
  if (source.nodes) {
    clone.nodes = cloneOf(*source.nodes, source.dimension);
  }
  for (const auto& [entity, container] : source.cells) {
    clone.cells.emplace(entity, cloneOf(container));
  }
  if (!source.scalars.empty()) {
    // Vector parameters travel with scalar ones only.
    clone.scalars = source.scalars;
    clone.vectors = copyOf(source.vectors);
  }
  if (asInput && source.isInput) {
    clone.statusCallback = source.statusCallback;
    clone.errorCallback = source.errorCallback;
  }
  return clone;
}

}  // namespace orvml_io_tests
