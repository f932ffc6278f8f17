#include "model/filled_document.h"

#include "model/document.h"
#include "model/element_kinds.h"
#include "support/new_array.h"

#include <algorithm>
#include <cstdlib>

namespace orvml_io_tests {

namespace {

std::vector<const void*> blocksOfStore(const orvml_io::OML_AttributesVector& store) {
  std::vector<const void*> blocks;
  for (const auto& named : store) {
    blocks.push_back(named.second.data);
  }
  return blocks;
}

template <class T>
void releaseIfLeft(const ReleasedBlocks& released, const T* array) {
  if (!released.has(array)) {
    delete[] array;
  }
}

}  // namespace

HeldBlocks blocksOf(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  HeldBlocks blocks;
  if (entity == ORVML_NODES) {
    double* coords = nullptr;
    OrvML_IO_GetNodesCoords(handle, coords);
    blocks.arrays = {coords};
  } else {
    const HandedOutGroups groups = groupsOf(handle, entity);
    blocks.arrays = {groups.connectivities};
    blocks.groupArrays = {groups.elementTypes, groups.numberOfNodesByElement,
                          groups.numberOfElementsByType};
  }
  blocks.attributes = blocksOfStore(*orvml_io::documentOf(handle)->attributesOf(entity));
  return blocks;
}

HeldBlocks everyBlockOf(void* handle) {
  HeldBlocks all;
  const auto append = [](std::vector<const void*>& to, const std::vector<const void*>& from) {
    to.insert(to.end(), from.begin(), from.end());
  };
  for (const auto entity : kEveryEntity) {
    const HeldBlocks blocks = blocksOf(handle, entity);
    append(all.arrays, blocks.arrays);
    append(all.groupArrays, blocks.groupArrays);
    append(all.attributes, blocks.attributes);
  }
  return all;
}

std::vector<const void*> vectorParametersOf(void* handle) {
  return blocksOfStore(orvml_io::documentOf(handle)->parametersVector);
}

std::size_t arrayDeleted(const ReleasedBlocks& released, const std::vector<const void*>& blocks) {
  return static_cast<std::size_t>(
      std::count_if(blocks.begin(), blocks.end(),
                    [&released](const void* block) { return released.byArrayDelete(block); }));
}

std::size_t freed(const ReleasedBlocks& released, const std::vector<const void*>& blocks) {
  return static_cast<std::size_t>(
      std::count_if(blocks.begin(), blocks.end(),
                    [&released](const void* block) { return released.byFree(block); }));
}

FilledDocument::FilledDocument()
    : coords_(newArray<double>({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1})),
      cells_{{{newArray({0, 1, 1, 2}), newArray({LINEAR}), newArray({2}), newArray({2})},
              {newArray({0, 1, 2, 0, 1, 2, 3}), newArray({TRIANGLE, QUADRILATERAL}),
               newArray({3, 4}), newArray({1, 1})},
              {newArray({0, 1, 2, 3}), newArray({TETRAHEDRA}), newArray({4}), newArray({1})}}},
      document_(OrvML_IO_NewOrvInputHandleWithNodes("module", "2.1", "creator", 3, 4, coords_)) {
  const int counts[] = {2, 2, 1};
  const int groups[] = {1, 2, 1};
  for (const auto entity : {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    const CellArrays& arrays = cells(entity);
    OrvML_IO_SetGenericElements(handle(), entity, counts[entity - 1], arrays.connectivities,
                                groups[entity - 1], arrays.shapes, arrays.nodesPerCell,
                                arrays.cellsPerGroup);
  }
  for (const auto entity : kEveryEntity) {
    attributes_.push_back(
        OrvML_IO_CreateAttribute(handle(), "attribute", entity, ORVML_USER_ATTRIBUTE, ORVML_INT));
  }
  const int layers[] = {3, 2, 1};
  const double sizes[] = {0.5, 0.25};
  OrvML_IO_SetParameter(handle(), "size", 0.5);
  OrvML_IO_SetParameterVector(handle(), "layers", layers, 3);
  OrvML_IO_SetParameterVector(handle(), "sizes", sizes, 2);
}

FilledDocument::~FilledDocument() {
  OrvML_IO_DeleteOrvInputHandle(out());
  releaseIfLeft(released_, coords_);
  for (const CellArrays& cells : cells_) {
    releaseIfLeft(released_, cells.connectivities);
    releaseIfLeft(released_, cells.shapes);
    releaseIfLeft(released_, cells.nodesPerCell);
    releaseIfLeft(released_, cells.cellsPerGroup);
  }
  for (void* block : attributes_) {
    if (!released_.has(block)) {
      std::free(block);
    }
  }
}

}  // namespace orvml_io_tests
