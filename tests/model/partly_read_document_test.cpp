// A document whose reading failed in the middle of an element container: it holds type group arrays
// of the reader without the node counts, and must release them like any others.
#include "model/element_kinds.h"
#include "model/filled_document.h"
#include "support/memory_watch.h"
#include "support/open_ids.h"
#include "support/raw_file.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvml_io_tests {
namespace {

/// Shapes and cell counts of two triangles are in the file; their node counts are missing.
class PartlyReadElements : public EveryElementKind {
 protected:
  PartlyReadElements() {
    const char* const containers[] = {"/Nodes", "/Edges", "/Faces", "/Elements"};
    const std::string container = std::string("/OrvInput") + containers[GetParam().entity];
    RawFile file = RawFile::createMarked(file_.path());
    file.documentGroup("/OrvInput", 3);
    file.group(container);
    file.intVector(container + "/number_of_elements_by_type", {2});
    file.intVector(container + "/element_types", {TRIANGLE});
    file.close();
    EXPECT_EQ(OrvML_IO_ReadOrvInput(file_.path(), document_.out()), 1);
    groups_ = groupsOf(document_.get(), GetParam().entity);
  }

  void expectReleased(const ReleasedBlocks& released) const {
    EXPECT_TRUE(released.byArrayDelete(groups_.elementTypes));
    EXPECT_TRUE(released.byArrayDelete(groups_.numberOfElementsByType));
  }

  OpenIds ids_;
  TempFile file_;
  Handle document_;
  HandedOutGroups groups_;
};

TEST_P(PartlyReadElements, AnswerWhatWasRead) {
  ASSERT_NE(document_.get(), nullptr);

  EXPECT_EQ(GetParam().count(document_.get()), 2);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(document_.get(), GetParam().entity, 0), TRIANGLE);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document_.get(), GetParam().entity, 0), 0);
  EXPECT_EQ(groups_.connectivities, nullptr);
}

TEST_P(PartlyReadElements, AreReleasedWhenTheyAreRemoved) {
  const ReleasedBlocks released;

  GetParam().remove(document_.get());

  expectReleased(released);
}

TEST_P(PartlyReadElements, AreReleasedWithTheDocument) {
  const ReleasedBlocks released;

  OrvML_IO_DeleteOrvInputHandle(document_.out());

  expectReleased(released);
}

TEST_P(PartlyReadElements, AreReleasedWithTheDocumentAfterItsContent) {
  const ReleasedBlocks released;

  OrvML_IO_DeleteOrvInputContent(document_.out());
  OrvML_IO_DeleteOrvInputHandle(document_.out());

  expectReleased(released);
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(PartlyReadElements);

}  // namespace
}  // namespace orvml_io_tests
