#include "values/attributes_scalar.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Store = orvml_io::OML_AttributesScalar<double>;

std::vector<std::string> namesOf(const Store& store) {
  std::vector<std::string> names;
  for (const auto& named : store) {
    names.push_back(named.first);
  }
  return names;
}

TEST(AttributesScalar, IsEmptyWhenCreated) {
  const Store store;

  EXPECT_EQ(store.count(), 0U);
  EXPECT_EQ(store.find("a"), nullptr);
}

TEST(AttributesScalar, SetGivesZeroAndInsertsTheName) {
  Store store;

  EXPECT_EQ(store.Set("a", 1.5), 0);

  ASSERT_NE(store.find("a"), nullptr);
  EXPECT_EQ(*store.find("a"), 1.5);
  EXPECT_EQ(store.count(), 1U);
}

TEST(AttributesScalar, SetOverwritesTheValueOfAnExistingName) {
  Store store;
  store.Set("a", 1.5);

  EXPECT_EQ(store.Set("a", 2.5), 0);

  EXPECT_EQ(*store.find("a"), 2.5);
  EXPECT_EQ(store.count(), 1U);
}

TEST(AttributesScalar, SetCopiesTheName) {
  Store store;
  char name[] = "abc";
  store.Set(name, 1.0);

  name[0] = 'x';

  EXPECT_EQ(namesOf(store), (std::vector<std::string>{"abc"}));
}

TEST(AttributesScalar, ACopyHoldsTheSameAndGoesItsOwnWay) {
  Store store;
  store.Set("b", 2.5);
  store.Set("a", 1.5);

  Store copy(store);
  store.Set("a", 7.5);
  copy.Set("c", 3.5);

  EXPECT_EQ(namesOf(copy), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(*copy.find("a"), 1.5);
  EXPECT_EQ(*copy.find("b"), 2.5);
  EXPECT_EQ(namesOf(store), (std::vector<std::string>{"a", "b"}));
}

TEST(AttributesScalar, FindComparesNamesByteByByte) {
  Store store;
  store.Set("Size", 1.0);

  EXPECT_EQ(store.find("size"), nullptr);
  EXPECT_EQ(store.find("Siz"), nullptr);
  EXPECT_EQ(store.find("Size "), nullptr);
  EXPECT_EQ(store.find(""), nullptr);
}

TEST(AttributesScalar, AnEmptyNameIsAName) {
  Store store;

  store.Set("", 3.0);

  ASSERT_NE(store.find(""), nullptr);
  EXPECT_EQ(*store.find(""), 3.0);
}

TEST(AttributesScalar, ALongNameIsKeptWhole) {
  const std::string name(200, 'n');
  Store store;

  store.Set(name.c_str(), 1.0);

  EXPECT_EQ(namesOf(store), (std::vector<std::string>{name}));
}

// Files are written in this order.
TEST(AttributesScalar, NamesAreVisitedInAscendingByteOrder) {
  Store store;
  for (const char* name : {"B", "a", "AB", "A"}) {
    store.Set(name, 1.0);
  }

  EXPECT_EQ(namesOf(store), (std::vector<std::string>{"A", "AB", "B", "a"}));
}

TEST(AttributesScalar, BytesBeyondAsciiComeLast) {
  Store store;
  for (const char* name : {"\xFF", "z", "\x80", "\x7F"}) {
    store.Set(name, 1.0);
  }

  EXPECT_EQ(namesOf(store), (std::vector<std::string>{"z", "\x7F", "\x80", "\xFF"}));
}

TEST(AttributesScalar, ClearRemovesAllEntries) {
  Store store;
  store.Set("a", 1.0);
  store.Set("b", 2.0);

  store.clear();

  EXPECT_EQ(store.count(), 0U);
  EXPECT_EQ(store.find("a"), nullptr);
}

}  // namespace
