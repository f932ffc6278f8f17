#pragma once

#include "compare/comparison.h"
#include "orvml_io.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvml_io_tests {

/// Cells as a caller holds them: two triangles and a quadrilateral unless a test changes them.
struct Cells {
  int count = 3;
  std::vector<ElemType> shapes = {TRIANGLE, QUADRILATERAL};
  std::vector<int> nodesPerCell = {3, 4};
  std::vector<int> cellsPerGroup = {2, 1};
  std::vector<int> connectivities = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};

  void giveTo(void* document, ORVML_TYPE_OF_ENTITY entity) {
    OrvML_IO_SetGenericElements(document, entity, count, connectivities.data(),
                                static_cast<int>(shapes.size()), shapes.data(), nodesPerCell.data(),
                                cellsPerGroup.data());
  }
};

/// Compares documents that hold the given cells of one kind and nothing else. Cells are compared
/// alike from both sides.
inline bool areEqual(ORVML_TYPE_OF_ENTITY entity, Cells firstCells, Cells secondCells) {
  const Handle first(OrvML_IO_NewOrvInputHandle());
  const Handle second(OrvML_IO_NewOrvInputHandle());
  firstCells.giveTo(first.get(), entity);
  secondCells.giveTo(second.get(), entity);
  const bool answer = equal(first, second);
  EXPECT_EQ(equal(second, first), answer);
  return answer;
}

}  // namespace orvml_io_tests
