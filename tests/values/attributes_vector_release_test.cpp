// Deleting, copying and destroying a store of vectors: what becomes of its blocks.
#include "support/memory_watch.h"
#include "values/attributes_vector.h"
#include "values/value_types.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace orvml_io_tests {
namespace {

using orvml_io::OML_AttributesVector;

/// Two entries, one of each type.
class StoredVectors : public ::testing::Test {
 protected:
  StoredVectors() {
    const int ints[] = {1, 2};
    const double doubles[] = {0.5};
    store_.Set("d", doubles, 1, true);
    store_.Set("i", ints, 2, false);
    intBlock_ = store_.find("i")->data;
    doubleBlock_ = store_.find("d")->data;
  }
  ~StoredVectors() override { store_.DeleteAll(); }

  OML_AttributesVector store_;
  void* intBlock_ = nullptr;
  void* doubleBlock_ = nullptr;
};

TEST_F(StoredVectors, DeleteGivesZeroAndRemovesTheName) {
  EXPECT_EQ(store_.Delete("i"), 0);

  EXPECT_EQ(store_.find("i"), nullptr);
  EXPECT_EQ(store_.count(), 1U);
}

TEST_F(StoredVectors, DeleteReleasesThatBlockOnlyWithFree) {
  const ReleasedBlocks released;

  store_.Delete("i");

  EXPECT_TRUE(released.byFree(intBlock_));
  EXPECT_FALSE(released.has(doubleBlock_));
}

TEST_F(StoredVectors, DeleteOfAnAbsentNameGivesZeroAndChangesNothing) {
  EXPECT_EQ(store_.Delete("absent"), 0);

  EXPECT_EQ(store_.count(), 2U);
  EXPECT_EQ(store_.find("absent"), nullptr);
}

TEST_F(StoredVectors, DeleteTwiceGivesZeroBothTimes) {
  EXPECT_EQ(store_.Delete("i"), 0);
  EXPECT_EQ(store_.Delete("i"), 0);

  EXPECT_EQ(store_.count(), 1U);
}

TEST_F(StoredVectors, DeleteAllReleasesEveryBlockWithFree) {
  const ReleasedBlocks released;

  store_.DeleteAll();

  EXPECT_EQ(store_.count(), 0U);
  EXPECT_TRUE(released.byFree(intBlock_));
  EXPECT_TRUE(released.byFree(doubleBlock_));
}

TEST_F(StoredVectors, DeleteAllOfAnEmptyStoreIsHarmless) {
  store_.DeleteAll();

  store_.DeleteAll();

  EXPECT_EQ(store_.count(), 0U);
}

// The owner of a store decides about its blocks, not the store.
TEST(DestroyedStore, KeepsItsBlocksAllocated) {
  void* block = nullptr;
  const ReleasedBlocks released;
  {
    OML_AttributesVector store;
    block = store.SetZeros("a", 'i', 1, false);
  }

  EXPECT_FALSE(released.has(block));
  EXPECT_EQ(*static_cast<const int*>(block), 0);
  std::free(block);
}

class CopiedVectors : public StoredVectors {
 protected:
  ~CopiedVectors() override { copy_.DeleteAll(); }

  OML_AttributesVector copy_;
};

TEST_F(CopiedVectors, HoldEqualEntriesOfBothTypes) {
  EXPECT_EQ(copy_.CopyFromOther(store_), 0);

  ASSERT_EQ(copy_.count(), 2U);
  EXPECT_EQ(copy_.find("i")->length, 2);
  EXPECT_EQ(copy_.find("i")->code, 'i');
  EXPECT_FALSE(copy_.find("i")->mustBeTransmitted);
  EXPECT_TRUE(sameBytes(copy_.find("i")->data, std::vector<int>{1, 2}));
  EXPECT_EQ(copy_.find("d")->length, 1);
  EXPECT_EQ(copy_.find("d")->code, 'd');
  EXPECT_TRUE(copy_.find("d")->mustBeTransmitted);
  EXPECT_TRUE(sameBytes(copy_.find("d")->data, std::vector<double>{0.5}));
}

TEST_F(CopiedVectors, HaveBlocksOfTheirOwn) {
  copy_.CopyFromOther(store_);
  EXPECT_NE(copy_.find("i")->data, intBlock_);

  store_.DeleteAll();

  EXPECT_TRUE(sameBytes(copy_.find("i")->data, std::vector<int>{1, 2}));
}

TEST_F(CopiedVectors, LeaveTheSourceAsItIs) {
  copy_.CopyFromOther(store_);

  EXPECT_EQ(store_.count(), 2U);
  EXPECT_EQ(store_.find("i")->data, intBlock_);
  EXPECT_TRUE(sameBytes(intBlock_, std::vector<int>{1, 2}));
}

TEST_F(CopiedVectors, ReplaceWhatWasThereAndReleaseIt) {
  const void* old = copy_.SetZeros("old", 'i', 1, false);
  const void* same = copy_.SetZeros("i", 'd', 1, false);
  const ReleasedBlocks released;

  copy_.CopyFromOther(store_);

  EXPECT_EQ(copy_.count(), 2U);
  EXPECT_EQ(copy_.find("old"), nullptr);
  EXPECT_TRUE(released.byFree(old));
  EXPECT_TRUE(released.byFree(same));
}

TEST_F(CopiedVectors, OfAnEmptyStoreAreNone) {
  copy_.SetZeros("old", 'i', 1, false);

  EXPECT_EQ(copy_.CopyFromOther(OML_AttributesVector()), 0);

  EXPECT_EQ(copy_.count(), 0U);
}

TEST_F(CopiedVectors, KeepALengthOfZero) {
  store_.SetZeros("empty", 'd', 0, true);

  copy_.CopyFromOther(store_);

  ASSERT_NE(copy_.find("empty"), nullptr);
  EXPECT_EQ(copy_.find("empty")->length, 0);
  EXPECT_EQ(copy_.find("empty")->code, 'd');
}

TEST_F(CopiedVectors, LeaveOutEntriesOfAnotherCode) {
  store_.SetZeros("other", 'x', 1, false);
  store_.SetZeros("none", 0, 1, false);

  EXPECT_EQ(copy_.CopyFromOther(store_), 0);

  EXPECT_EQ(copy_.count(), 2U);
  EXPECT_EQ(copy_.find("other"), nullptr);
  EXPECT_EQ(copy_.find("none"), nullptr);
}

// The own entries go first, whoever the source is.
TEST_F(CopiedVectors, OfTheStoreItselfEmptyIt) {
  const ReleasedBlocks released;

  EXPECT_EQ(store_.CopyFromOther(store_), 0);

  EXPECT_EQ(store_.count(), 0U);
  EXPECT_TRUE(released.byFree(intBlock_));
  EXPECT_TRUE(released.byFree(doubleBlock_));
}

}  // namespace
}  // namespace orvml_io_tests
