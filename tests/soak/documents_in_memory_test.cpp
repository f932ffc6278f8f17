#include "soak/repetitions.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

void createFillCloneCompareAndDelete() {
  const BuiltDocument document = fullDocument();
  const Handle input(OrvML_IO_NewOrvInputHandle(document.handle()));
  const Handle output(OrvML_IO_NewOrvOutputHandle(input.get()));
  ASSERT_TRUE(OrvML_IO_OrvInputsAreEqual(document.handle(), input.get()));
  ASSERT_TRUE(OrvML_IO_OrvOutputsAreEqual(input.get(), output.get()));
}

TEST(DocumentsInMemory, LeaveNothingWhenTheyAreDeleted) {
  const int cycles = repetitions(100000);

  const ProcessUsage growth = growthOf(cycles, createFillCloneCompareAndDelete);

  printRow("create, fill, clone, compare, delete", cycles, growth);
  EXPECT_TRUE(isFlat(growth)) << growth;
}

/// A vector that is replaced under its name stays allocated; one that is deleted first does not.
void replaceVectors(void* document) {
  const std::vector<double> values(100, 0.5);
  OrvML_IO_DeleteParameterVector(document, "layers");
  OrvML_IO_SetParameterVector(document, "layers", values.data(), 100);
  OrvML_IO_DeleteAttributesEntitiesVector(document, ORVML_NODES, "size");
  OrvML_IO_SetAttributesEntitiesVector(document, ORVML_NODES, "size", values.data(), 5, true);
}

TEST(DocumentsInMemory, LeaveNothingOfVectorsThatAreDeletedBeforeTheyAreSetAnew) {
  const int cycles = repetitions(100000);
  const BuiltDocument document = fullDocument();

  const ProcessUsage growth = growthOf(cycles, [&] { replaceVectors(document.handle()); });

  printRow("delete and set vectors", cycles, growth);
  EXPECT_TRUE(isFlat(growth)) << growth;
}

}  // namespace
}  // namespace orvml_io_tests
