// The attributes that the meshing module must send back, by index in the order of their names.
#include "model/document.h"
#include "support/document_queries.h"
#include "support/owning_document.h"
#include "values/attribute_fixture.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace orvml_io_tests {
namespace {

class TransmittedAttributes : public EveryEntity {
 protected:
  void create(const char* name, bool mustBeTransmitted) {
    OrvML_IO_CreateAttributesEntitiesVector(handle(), entity(), ORVML_INT, name, 1,
                                            mustBeTransmitted);
  }
  void createFourOfWhichTwoAreFlagged() {
    create("d", true);
    create("a", false);
    create("c", false);
    create("b", true);
  }
  int transmittedCount() const {
    return OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity());
  }
  const char* nameAt(int index) const {
    return OrvML_IO_GetAttributeNameThatMustBeTransmitted(handle(), entity(), index);
  }
};

TEST_P(TransmittedAttributes, AreCountedWithoutTheOthers) {
  createFourOfWhichTwoAreFlagged();

  EXPECT_EQ(transmittedCount(), 2);
}

TEST_P(TransmittedAttributes, AreIndexedInTheOrderOfTheirNamesWithoutTheOthers) {
  createFourOfWhichTwoAreFlagged();

  EXPECT_STREQ(nameAt(0), "b");
  EXPECT_STREQ(nameAt(1), "d");
}

TEST_P(TransmittedAttributes, AreNoneBeyondTheCountAndBelowZero) {
  createFourOfWhichTwoAreFlagged();

  EXPECT_EQ(nameAt(2), nullptr);
  EXPECT_EQ(nameAt(INT_MAX), nullptr);
  EXPECT_EQ(nameAt(-1), nullptr);
  EXPECT_EQ(nameAt(INT_MIN), nullptr);
}

TEST_P(TransmittedAttributes, AreNoneWithoutAttributes) {
  EXPECT_EQ(transmittedCount(), 0);
  EXPECT_EQ(nameAt(0), nullptr);
}

TEST_P(TransmittedAttributes, AreNoneWithoutAFlag) {
  create("a", false);

  EXPECT_EQ(transmittedCount(), 0);
  EXPECT_EQ(nameAt(0), nullptr);
}

TEST_P(TransmittedAttributes, AreOrderedByteByByte) {
  for (const char* name : {"B", "a", "AB", "A", "\xFF"}) {
    create(name, true);
  }

  EXPECT_EQ(transmittedNames(handle(), entity()),
            (std::vector<std::string>{"A", "AB", "B", "a", "\xFF"}));
}

TEST_P(TransmittedAttributes, AnswerTheStoresOwnName) {
  create("a", true);

  const auto* store = orvml_io::documentOf(handle())->attributesOf(entity());
  EXPECT_EQ(nameAt(0), store->begin()->first.c_str());
}

TEST_P(TransmittedAttributes, FollowADeletion) {
  createFourOfWhichTwoAreFlagged();

  OrvML_IO_DeleteAttribute(handle(), "b", entity());

  EXPECT_EQ(transmittedNames(handle(), entity()), (std::vector<std::string>{"d"}));
}

// Files do not bring the flag back.
TEST_P(TransmittedAttributes, AreNoneInADocumentThatWasRead) {
  const OwningDocument owning(fullDocument());

  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(owning.handle(), entity()), 0);
  EXPECT_EQ(OrvML_IO_GetAttributeNameThatMustBeTransmitted(owning.handle(), entity(), 0), nullptr);
}

ORVML_IO_TESTS_FOR_EVERY_ENTITY(TransmittedAttributes);

class TransmittedWithoutStore : public MissingStore {};

TEST_P(TransmittedWithoutStore, AreNone) {
  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity()), 0);
  EXPECT_EQ(OrvML_IO_GetAttributeNameThatMustBeTransmitted(handle(), entity(), 0), nullptr);
  EXPECT_EQ(OrvML_IO_GetAttributeNameThatMustBeTransmitted(handle(), entity(), -1), nullptr);
}

ORVML_IO_TESTS_FOR_MISSING_STORES(TransmittedWithoutStore);

}  // namespace
}  // namespace orvml_io_tests
