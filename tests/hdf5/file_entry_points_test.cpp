// The shortest way through the file functions: what a caller does first.
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

TEST(ReadOrvInput, MissingFileGivesZeroAndNullHandle) {
  void* handle = nullptr;

  const int result = OrvML_IO_ReadOrvInput("no/such/file.h5", handle);

  EXPECT_EQ(result, 0);
  EXPECT_EQ(handle, nullptr);
}

TEST(WriteOrvInput, DocumentComesBackWithItsMeshAndParameters) {
  const TempFile temp;
  const OpenIds ids;
  double coords[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
  int triangle[] = {0, 1, 2};
  const Handle written(
      OrvML_IO_NewOrvInputHandleWithFaces("m", "v", "c", 3, 3, coords, 1, triangle, TRIANGLE, 3));
  OrvML_IO_SetParameter(written.get(), "size", 0.5);
  ASSERT_EQ(OrvML_IO_WriteOrvInput(temp.path(), written.get()), 0);

  Handle read;
  ASSERT_EQ(OrvML_IO_ReadOrvInput(temp.path(), read.out()), 0);

  ASSERT_NE(read.get(), nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(read.get()), 3);
  int* connectivities = nullptr;
  ASSERT_EQ(OrvML_IO_GetFaces(read.get(), connectivities), 0);
  EXPECT_EQ(connectivities[2], 2);
  EXPECT_EQ(scalarOf(read.get(), "size"), 0.5);
}

}  // namespace
}  // namespace orvml_io_tests
