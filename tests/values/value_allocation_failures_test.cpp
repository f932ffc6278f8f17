// Each allocation of a function fails in turn. The function lets the out-of-memory exception
// through, keeps the value that was there and loses no memory (which the leak detector tells).
#include "model/document.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/memory_watch.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvml_io_tests {
namespace {

const int kInts[] = {1, 2};
const double kDoubles[] = {0.5, 0.25};

/// A function that sets a value under the name "new" in an input document with one node.
struct SetterRow {
  const char* name;
  void (*set)(void* handle);
};

const SetterRow kSetters[] = {
    {"ScalarParameterInt", [](void* handle) { OrvML_IO_SetParameter(handle, "new", 1); }},
    {"ScalarParameterDouble", [](void* handle) { OrvML_IO_SetParameter(handle, "new", 1.5); }},
    {"VectorParameterInts",
     [](void* handle) { OrvML_IO_SetParameterVector(handle, "new", kInts, 2); }},
    {"VectorParameterDoubles",
     [](void* handle) { OrvML_IO_SetParameterVector(handle, "new", kDoubles, 2); }},
    {"AttributeInts",
     [](void* handle) {
       OrvML_IO_SetAttributesEntitiesVector(handle, ORVML_NODES, "new", kInts, 2, true);
     }},
    {"AttributeDoubles",
     [](void* handle) {
       OrvML_IO_SetAttributesEntitiesVector(handle, ORVML_NODES, "new", kDoubles, 2, true);
     }},
    {"AttributePerNode",
     [](void* handle) {
       OrvML_IO_SetAttribute(handle, "new", kInts, ORVML_NODES, ORVML_USER_ATTRIBUTE, ORVML_INT);
     }},
    {"CreatedAttribute",
     [](void* handle) {
       OrvML_IO_CreateAttribute(handle, "new", ORVML_NODES, ORVML_USER_ATTRIBUTE, ORVML_DOUBLE);
     }},
};

class SetterOutOfMemory : public ::testing::TestWithParam<SetterRow> {
 protected:
  SetterOutOfMemory() { document_.nodes({0, 0}); }
  std::size_t entries() const {
    const auto* document = orvml_io::documentOf(document_.handle());
    return document->parametersScalar.count() + document->parametersVector.count() +
           document->nodes->attributes.count();
  }

  BuiltDocument document_ = BuiltDocument::input(2);
};

TEST_P(SetterOutOfMemory, ThrowsAndStoresNothing) {
  const auto step = [this] { GetParam().set(document_.handle()); };
  int failures = 0;
  while (!runsWithFailure(failures + 1, step)) {
    ++failures;
    ASSERT_EQ(entries(), 0U) << "allocation " << failures;
  }

  EXPECT_GT(failures, 0);
  EXPECT_EQ(entries(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Functions, SetterOutOfMemory, ::testing::ValuesIn(kSetters), RowName());

TEST(ReplaceOutOfMemory, KeepsTheOldVector) {
  BuiltDocument document = BuiltDocument::input(2);
  document.vector("v", std::vector<int>{7});
  const auto step = [&document] {
    OrvML_IO_SetParameterVector(document.handle(), "v", kDoubles, 2);
  };

  EXPECT_FALSE(runsWithFailure(1, step));

  EXPECT_EQ(intParameterOf(document.handle(), "v"), (std::vector<int>{7}));
}

TEST(ReplaceOutOfMemory, KeepsTheOldAttributeAndItsFlag) {
  BuiltDocument document = BuiltDocument::input(2);
  document.nodes({0, 0}).attribute(ORVML_NODES, "a", std::vector<int>{7}, true);
  const auto step = [&document] {
    OrvML_IO_CreateAttribute(document.handle(), "a", ORVML_NODES, ORVML_FUNCTION_ATTRIBUTE,
                             ORVML_DOUBLE);
  };

  EXPECT_FALSE(runsWithFailure(1, step));

  EXPECT_EQ(intAttributeOf(document.handle(), ORVML_NODES, "a"), (std::vector<int>{7}));
  EXPECT_EQ(transmittedNames(document.handle(), ORVML_NODES), (std::vector<std::string>{"a"}));
}

TEST(CopyOutOfMemory, LeavesTheSourceWholeAndTheCopyReleasable) {
  orvml_io::OML_AttributesVector source;
  source.Set("d", kDoubles, 2, true);
  source.Set("i", kInts, 2, false);
  orvml_io::OML_AttributesVector copy;
  int failures = 0;

  while (!runsWithFailure(failures + 1, [&] { copy.CopyFromOther(source); })) {
    ++failures;
    ASSERT_EQ(source.count(), 2U) << "allocation " << failures;
  }

  EXPECT_GE(failures, 2) << "a block for each entry";
  EXPECT_EQ(copy.count(), 2U);
  source.DeleteAll();
  copy.DeleteAll();
}

}  // namespace
}  // namespace orvml_io_tests
