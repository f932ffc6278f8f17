// The C++ layer leaves nothing open in HDF5, however often it reads.
#include <orvml/orvml.hpp>

#include "soak/repetitions.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

class CppLayer : public ::testing::Test {
 protected:
  CppLayer() { EXPECT_EQ(OrvML_IO_WriteOrvInput(file_.path(), fullDocument().handle()), 0); }

  template <class Step>
  void expectFlat(const char* what, int full, Step step) {
    const int count = repetitions(full);
    const OpenIds ids;

    const ProcessUsage growth = growthOf(count, step);

    printRow(what, count, growth);
    EXPECT_TRUE(isFlat(growth)) << growth;
    EXPECT_EQ(ids.opened(), IdCounts());
  }

  TempFile file_;
};

TEST_F(CppLayer, LoadsAtFlatMemoryAndDescriptors) {
  expectFlat("load one file", 100000,
             [this] { ASSERT_EQ(orvml::loadInput(file_.path()).dimension(), 3); });
}

TEST_F(CppLayer, MapsAtFlatMemoryAndDescriptors) {
  expectFlat("map one file", 100000, [this] {
    const orvml::MappedFile file(file_.path());
    ASSERT_EQ(file.input().nodes().size(), 5);
  });
}

TEST_F(CppLayer, DescribesAtFlatMemoryAndDescriptors) {
  expectFlat("describe one file", 100000,
             [this] { ASSERT_EQ(orvml::describe(file_.path()).input->nodes.size, 5); });
}

TEST_F(CppLayer, ClosesWhatFlatReadersLeaveAtFlatMemoryAndDescriptors) {
  expectFlat("read one file, close its leftovers", 20000, [this] {
    Handle document;
    ASSERT_EQ(OrvML_IO_ReadOrvInput(file_.path(), document.out()), 0);
    ASSERT_GT(orvml::closeLeftovers(file_.path()), 0);
  });
}

TEST_F(CppLayer, SavesAtFlatMemoryAndDescriptors) {
  const orvml::Input input = orvml::loadInput(file_.path());
  expectFlat("save one file", 10000, [&] { orvml::save(file_.path(), input, {.flush = false}); });
}

}  // namespace
}  // namespace orvml_io_tests
