// Group arrays that one document hands to another: deleting the first must leave them alone, also
// those that the library made for a single-shape setter.
#include "model/element_kinds.h"
#include "orvml_io.h"

#include <gtest/gtest.h>

#include <memory>

namespace orvml_io_tests {
namespace {

class SharedGroupArrays : public ::testing::TestWithParam<ORVML_TYPE_OF_ENTITY> {
 protected:
  [[nodiscard]] static ORVML_TYPE_OF_ENTITY kind() { return GetParam(); }
  [[nodiscard]] int* cells() { return cells_; }

 private:
  int cells_[6] = {0, 1, 2, 2, 1, 3};
};

TEST_P(SharedGroupArrays, OutliveTheDocumentThatMadeThem) {
  void* first = OrvML_IO_NewOrvInputHandle();
  OrvML_IO_SetGenericElements(first, kind(), 2, cells(), TRIANGLE, 3);
  const HandedOutGroups groups = groupsOf(first, kind());
  const std::unique_ptr<ElemType[]> shapes(groups.elementTypes);
  const std::unique_ptr<int[]> nodesPerCell(groups.numberOfNodesByElement);
  const std::unique_ptr<int[]> cellsPerGroup(groups.numberOfElementsByType);
  void* second = OrvML_IO_NewOrvInputHandle();
  OrvML_IO_SetGenericElements(second, kind(), 2, groups.connectivities, 1, groups.elementTypes,
                              groups.numberOfNodesByElement, groups.numberOfElementsByType);

  OrvML_IO_DeleteOrvInputHandle(first);

  EXPECT_EQ(OrvML_IO_GetGenericElementType(second, kind(), 0), TRIANGLE);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(second, kind(), 0), 3);
  EXPECT_EQ(groupsOf(second, kind()).numberOfElementsByType[0], 2);
  OrvML_IO_DeleteOrvInputHandle(second);
}

TEST_P(SharedGroupArrays, AreLeftToBothDocumentsOfTheirCaller) {
  ElemType shapes[] = {TRIANGLE};
  int nodesPerCell[] = {3};
  int cellsPerGroup[] = {2};
  void* first = OrvML_IO_NewOrvInputHandle();
  void* second = OrvML_IO_NewOrvOutputHandle();
  for (void* document : {first, second}) {
    OrvML_IO_SetGenericElements(document, kind(), 2, cells(), 1, shapes, nodesPerCell,
                                cellsPerGroup);
  }

  OrvML_IO_DeleteOrvInputHandle(first);
  OrvML_IO_DeleteOrvInputHandle(second);

  EXPECT_EQ(shapes[0], TRIANGLE);
  EXPECT_EQ(nodesPerCell[0], 3);
  EXPECT_EQ(cellsPerGroup[0], 2);
}

INSTANTIATE_TEST_SUITE_P(Kinds, SharedGroupArrays,
                         ::testing::Values(ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS));

}  // namespace
}  // namespace orvml_io_tests
