// Setting and visiting the entries of a store of vectors.
#include "values/attributes_vector.h"

#include "support/memory_watch.h"
#include "values/value_types.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace orvml_io_tests {
namespace {

using orvml_io::OML_AttributesVector;

std::vector<std::string> namesOf(const OML_AttributesVector& store) {
  std::vector<std::string> names;
  for (const auto& named : store) {
    names.push_back(named.first);
  }
  return names;
}

class AttributesVector : public ::testing::Test {
 protected:
  ~AttributesVector() override { store_.DeleteAll(); }

  OML_AttributesVector store_;
};

template <class T>
class AttributesVectorSet : public AttributesVector {
 protected:
  int set(const char* name, const std::vector<T>& values, bool mustBeTransmitted = false) {
    return store_.Set(name, values.data(), static_cast<int>(values.size()), mustBeTransmitted);
  }
  const OML_AttributesVector::Entry& entry(const char* name) const { return *store_.find(name); }

  const std::vector<T> values_ = {1, 2, 3};
};

TYPED_TEST_SUITE(AttributesVectorSet, ValueTypes, ValueTypeName);

TYPED_TEST(AttributesVectorSet, GivesZeroAndMakesAnEntry) {
  EXPECT_EQ(this->set("a", this->values_, true), 0);

  EXPECT_EQ(this->store_.count(), 1U);
  EXPECT_EQ(this->entry("a").length, 3);
  EXPECT_EQ(this->entry("a").code, ValueType<TypeParam>::kCode);
  EXPECT_TRUE(this->entry("a").mustBeTransmitted);
}

TYPED_TEST(AttributesVectorSet, StoresTheFlagAsGiven) {
  this->set("a", this->values_, false);

  EXPECT_FALSE(this->entry("a").mustBeTransmitted);
}

TYPED_TEST(AttributesVectorSet, CopiesTheValues) {
  std::vector<TypeParam> values = this->values_;
  this->set("a", values);

  values[0] = 9;

  EXPECT_NE(this->entry("a").data, values.data());
  EXPECT_TRUE(sameBytes(this->entry("a").data, this->values_));
}

TYPED_TEST(AttributesVectorSet, KeepsEveryBit) {
  const std::vector<TypeParam> extremes = ValueType<TypeParam>::extremes();

  this->set("a", extremes);

  EXPECT_TRUE(sameBytes(this->entry("a").data, extremes));
}

TYPED_TEST(AttributesVectorSet, ReplacesAllOfAnEntry) {
  const std::vector<TypeParam> longer = {5, 6, 7, 8, 9};
  this->set("a", this->values_, true);
  void* old = this->entry("a").data;

  EXPECT_EQ(this->set("a", longer, false), 0);

  EXPECT_EQ(this->store_.count(), 1U);
  EXPECT_EQ(this->entry("a").length, 5);
  EXPECT_FALSE(this->entry("a").mustBeTransmitted);
  EXPECT_TRUE(sameBytes(this->entry("a").data, longer));
  std::free(old);
}

// A getter may have handed the old block out.
TYPED_TEST(AttributesVectorSet, KeepsTheBlockOfAReplacedEntryAllocated) {
  this->set("a", this->values_);
  void* old = this->entry("a").data;
  const ReleasedBlocks released;

  this->set("a", {7});

  EXPECT_FALSE(released.has(old));
  EXPECT_TRUE(sameBytes(old, this->values_));
  std::free(old);
}

TYPED_TEST(AttributesVectorSet, TakesItsOwnBlockAsValues) {
  this->set("a", this->values_);
  auto* old = static_cast<TypeParam*>(this->entry("a").data);

  this->store_.Set("a", old + 1, 2, false);

  EXPECT_TRUE(sameBytes(this->entry("a").data, std::vector<TypeParam>{2, 3}));
  std::free(old);
}

TYPED_TEST(AttributesVectorSet, OfNoValuesMakesAnEntryOfLengthZero) {
  EXPECT_EQ(this->set("a", {}, true), 0);

  EXPECT_EQ(this->store_.count(), 1U);
  EXPECT_EQ(this->entry("a").length, 0);
  EXPECT_EQ(this->entry("a").code, ValueType<TypeParam>::kCode);
}

TYPED_TEST(AttributesVectorSet, OfNoValuesTakesANullPointer) {
  const TypeParam* none = nullptr;

  EXPECT_EQ(this->store_.Set("a", none, 0, false), 0);

  EXPECT_EQ(this->entry("a").length, 0);
}

TYPED_TEST(AttributesVectorSet, TakesANegativeLengthForZero) {
  EXPECT_EQ(this->store_.Set("a", this->values_.data(), -1, false), 0);
  EXPECT_EQ(this->store_.Set("b", this->values_.data(), INT_MIN, false), 0);

  EXPECT_EQ(this->entry("a").length, 0);
  EXPECT_EQ(this->entry("b").length, 0);
}

TYPED_TEST(AttributesVectorSet, MakesABlockEvenForNoValues) {
  this->set("a", {});

  EXPECT_NE(this->entry("a").data, nullptr);
}

TEST_F(AttributesVector, IsEmptyWhenCreated) {
  EXPECT_EQ(store_.count(), 0U);
  EXPECT_EQ(store_.begin(), store_.end());
}

TEST_F(AttributesVector, FindsNoAbsentName) {
  store_.SetZeros("Size", 'i', 1, false);

  EXPECT_EQ(store_.find("size"), nullptr);
  EXPECT_EQ(store_.find("Siz"), nullptr);
  EXPECT_EQ(store_.find("Size "), nullptr);
  EXPECT_EQ(store_.find(""), nullptr);
}

TEST_F(AttributesVector, ChangesTheTypeOfAReplacedEntry) {
  const int ints[] = {1};
  const double doubles[] = {0.5, 0.25};
  store_.Set("a", ints, 1, true);
  void* old = store_.find("a")->data;

  store_.Set("a", doubles, 2, true);

  EXPECT_EQ(store_.find("a")->code, 'd');
  EXPECT_EQ(static_cast<const double*>(store_.find("a")->data)[1], 0.25);
  std::free(old);
}

TEST_F(AttributesVector, KeepsEntriesOfBothTypesSideBySide) {
  const int ints[] = {7};
  const double doubles[] = {0.5};

  store_.Set("i", ints, 1, false);
  store_.Set("d", doubles, 1, false);

  EXPECT_EQ(*static_cast<const int*>(store_.find("i")->data), 7);
  EXPECT_EQ(*static_cast<const double*>(store_.find("d")->data), 0.5);
}

TEST_F(AttributesVector, VisitsNamesInAscendingByteOrder) {
  for (const char* name : {"B", "a", "AB", "A"}) {
    store_.SetZeros(name, 'i', 1, false);
  }

  EXPECT_EQ(namesOf(store_), (std::vector<std::string>{"A", "AB", "B", "a"}));
}

TEST_F(AttributesVector, VisitsBytesBeyondAsciiLast) {
  for (const char* name : {"\xFF", "z", "\x80", "\x7F"}) {
    store_.SetZeros(name, 'd', 1, false);
  }

  EXPECT_EQ(namesOf(store_), (std::vector<std::string>{"z", "\x7F", "\x80", "\xFF"}));
}

TEST_F(AttributesVector, SetZerosOfIntsHandsOutItsBlockOfZeros) {
  void* block = store_.SetZeros("a", 'i', 3, true);

  EXPECT_EQ(store_.find("a")->data, block);
  EXPECT_EQ(store_.find("a")->length, 3);
  EXPECT_EQ(store_.find("a")->code, 'i');
  EXPECT_TRUE(store_.find("a")->mustBeTransmitted);
  EXPECT_TRUE(sameBytes(block, std::vector<int>{0, 0, 0}));
}

TEST_F(AttributesVector, SetZerosOfDoublesHandsOutItsBlockOfZeros) {
  void* block = store_.SetZeros("a", 'd', 2, false);

  EXPECT_EQ(store_.find("a")->data, block);
  EXPECT_EQ(store_.find("a")->length, 2);
  EXPECT_EQ(store_.find("a")->code, 'd');
  EXPECT_FALSE(store_.find("a")->mustBeTransmitted);
  EXPECT_TRUE(sameBytes(block, std::vector<double>{0, 0}));
}

TEST_F(AttributesVector, SetZerosTakesANegativeLengthForZero) {
  EXPECT_NE(store_.SetZeros("a", 'd', -5, false), nullptr);

  EXPECT_EQ(store_.find("a")->length, 0);
}

}  // namespace
}  // namespace orvml_io_tests
