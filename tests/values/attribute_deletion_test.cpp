#include "model/document.h"
#include "support/memory_watch.h"
#include "support/owning_document.h"
#include "values/attribute_fixture.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

int deleteByKindAndName(void* handle, const char* name, ORVML_TYPE_OF_ENTITY entity) {
  return OrvML_IO_DeleteAttributesEntitiesVector(handle, entity, name);
}

struct DeleterRow {
  const char* name;
  int (*deleteOne)(void*, const char*, ORVML_TYPE_OF_ENTITY);
};

constexpr DeleterRow kDeleters[] = {{"KindFirst", deleteByKindAndName},
                                    {"NameFirst", OrvML_IO_DeleteAttribute}};

class DeleteAttribute : public ::testing::TestWithParam<std::tuple<DeleterRow, EntityRow>> {
 protected:
  DeleteAttribute() {
    kept_ = OrvML_IO_CreateAttributesEntitiesVector(handle(), entity(), ORVML_INT, "a", 2, true);
    deleted_ =
        OrvML_IO_CreateAttributesEntitiesVector(handle(), entity(), ORVML_DOUBLE, "b", 2, true);
  }
  void* handle() const { return document_.handle(); }
  static ORVML_TYPE_OF_ENTITY entity() { return std::get<1>(GetParam()).entity; }
  int deleteOne(const char* name) {
    return std::get<0>(GetParam()).deleteOne(handle(), name, entity());
  }

  BuiltDocument document_ = documentWithoutAttributes();
  void* kept_ = nullptr;
  void* deleted_ = nullptr;
};

TEST_P(DeleteAttribute, GivesZeroAndRemovesThatAttributeOnly) {
  EXPECT_EQ(deleteOne("b"), 0);

  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "b", entity()), nullptr);
  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "a", entity()), kept_);
}

TEST_P(DeleteAttribute, ReleasesTheBlockWithFree) {
  const ReleasedBlocks released;

  deleteOne("b");

  EXPECT_TRUE(released.byFree(deleted_));
  EXPECT_FALSE(released.has(kept_));
}

TEST_P(DeleteAttribute, GivesZeroForAnAbsentName) {
  EXPECT_EQ(deleteOne("absent"), 0);

  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity()), 2);
}

TEST_P(DeleteAttribute, TwiceGivesZeroBothTimes) {
  EXPECT_EQ(deleteOne("b"), 0);
  EXPECT_EQ(deleteOne("b"), 0);
}

TEST_P(DeleteAttribute, LetsTheNameBeSetAgain) {
  deleteOne("b");

  EXPECT_NE(OrvML_IO_CreateAttributesEntitiesVector(handle(), entity(), ORVML_INT, "b", 1, false),
            nullptr);
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "b", entity()), ORVML_INT);
}

INSTANTIATE_TEST_SUITE_P(Functions, DeleteAttribute,
                         ::testing::Combine(::testing::ValuesIn(kDeleters),
                                            ::testing::ValuesIn(kEntityRows)),
                         [](const auto& row) {
                           return std::string(std::get<0>(row.param).name) + "Of" +
                                  std::get<1>(row.param).name;
                         });

class DeleteAllAttributes : public EveryEntity {
 protected:
  void* create(const char* name) {
    return OrvML_IO_CreateAttributesEntitiesVector(handle(), entity(), ORVML_INT, name, 2, true);
  }
};

TEST_P(DeleteAllAttributes, GivesZeroAndRemovesAll) {
  create("a");
  create("b");

  EXPECT_EQ(OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity()), 0);

  EXPECT_EQ(orvml_io::documentOf(handle())->attributesOf(entity())->count(), 0U);
}

TEST_P(DeleteAllAttributes, ReleasesTheBlocksWithFree) {
  const void* first = create("a");
  const void* second = create("b");
  const ReleasedBlocks released;

  OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity());

  EXPECT_TRUE(released.byFree(first));
  EXPECT_TRUE(released.byFree(second));
}

TEST_P(DeleteAllAttributes, KeepsTheContainer) {
  OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity());

  EXPECT_NE(create("a"), nullptr);
}

TEST_P(DeleteAllAttributes, LeavesTheOtherKinds) {
  for (const EntityRow& row : kEntityRows) {
    OrvML_IO_CreateAttribute(handle(), "a", row.entity, ORVML_USER_ATTRIBUTE, ORVML_INT);
  }

  OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity());

  int left = 0;
  for (const EntityRow& row : kEntityRows) {
    left += OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), row.entity);
  }
  EXPECT_EQ(left, 3);
}

TEST_P(DeleteAllAttributes, TwiceGivesZeroBothTimes) {
  create("a");

  EXPECT_EQ(OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity()), 0);
  EXPECT_EQ(OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity()), 0);
}

TEST_P(DeleteAllAttributes, ReleasesThoseOfADocumentThatOwnsItsArrays) {
  const OwningDocument owning(fullDocument());
  const auto* store = orvml_io::documentOf(owning.handle())->attributesOf(entity());
  const void* block = store->begin()->second.data;
  const ReleasedBlocks released;

  OrvML_IO_DeleteAttributesEntitiesVector(owning.handle(), entity());

  EXPECT_TRUE(released.byFree(block));
}

ORVML_IO_TESTS_FOR_EVERY_ENTITY(DeleteAllAttributes);

class DeleteWithoutStore : public MissingStore {};

TEST_P(DeleteWithoutStore, GivesZero) {
  EXPECT_EQ(OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity(), "a"), 0);
  EXPECT_EQ(OrvML_IO_DeleteAttribute(handle(), "a", entity()), 0);
  EXPECT_EQ(OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity()), 0);
}

ORVML_IO_TESTS_FOR_MISSING_STORES(DeleteWithoutStore);

}  // namespace
}  // namespace orvml_io_tests
