#include "soak/repetitions.h"
#include "support/document_builder.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

TEST(Writes, OfOneFileLeaveNothingOpenAndNothingAllocated) {
  const int writes = repetitions(10000);
  const BuiltDocument document = fullDocument();
  const TempFile file;

  const ProcessUsage growth = growthOf(writes, [&] {
    ASSERT_EQ(OrvML_IO_WriteOrvInputAndOrvOutput(file.path(), document.handle(), document.handle()),
              0);
  });

  printRow("write one file", writes, growth);
  EXPECT_TRUE(isFlat(growth)) << growth;
}

TEST(Writes, ThatFailLeaveNothingOpenAndNothingAllocated) {
  const int writes = repetitions(10000);
  BuiltDocument document = fullDocument();
  document.attribute(ORVML_NODES, std::string(80, 'n').c_str(), std::vector<int>{1});
  const TempFile file;

  const ProcessUsage growth = growthOf(
      writes, [&] { ASSERT_EQ(OrvML_IO_WriteOrvInput(file.path(), document.handle()), 1); });

  printRow("write a document that does not fit a file", writes, growth);
  EXPECT_TRUE(isFlat(growth)) << growth;
}

}  // namespace
}  // namespace orvml_io_tests
