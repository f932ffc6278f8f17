// Keys that come twice are found, whatever memory there is.
#include "check/key_sieve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <utility>

namespace orvml_io_tests {
namespace {

using orvml::detail::kBitsOfPart;
using orvml::detail::KeyJudge;
using orvml::detail::KeyPieces;
using orvml::detail::KeySieve;
using orvml::detail::KeyVerdict;
using orvml::detail::kIsAsked;
using orvml::detail::kIsOtherSide;

constexpr std::int64_t kNodesOfPart = std::int64_t{1} << kBitsOfPart;
constexpr std::int64_t kNodes = 40 * kNodesOfPart + 17;

struct PartContent {
  std::vector<std::uint64_t> keys;
  std::uint64_t sum = 0;

  friend bool operator==(const PartContent&, const PartContent&) = default;
};
using Parts = std::map<std::int64_t, PartContent>;
using Items = std::vector<std::pair<std::int64_t, std::uint64_t>>;

Items randomItems(int count) {
  std::mt19937_64 random(5);
  Items items;
  for (int i = 0; i < count; ++i) {
    // Many lie in one part.
    const bool isCrowded = random() % 4 == 0;
    const auto node = static_cast<std::int64_t>(
        random() % static_cast<std::uint64_t>(isCrowded ? kNodesOfPart : kNodes));
    items.emplace_back(node, random());
  }
  return items;
}

Parts expectedOf(const Items& items) {
  Parts parts;
  for (std::int64_t first = 0; first < kNodes; first += kNodesOfPart) {
    parts[first] = {};
  }
  for (const auto& [node, key] : items) {
    PartContent& part = parts[node / kNodesOfPart * kNodesOfPart];
    part.keys.push_back(key);
    part.sum += key;
  }
  for (auto& [first, part] : parts) {
    std::sort(part.keys.begin(), part.keys.end());
  }
  return parts;
}

Parts sieved(const Items& items, std::size_t most) {
  Parts parts;
  const auto take = [&](std::int64_t first, const KeyPieces& keys, std::uint64_t sum) {
    EXPECT_EQ(parts.count(first), 0U) << "part of node " << first;
    PartContent& part = parts[first];
    for (const auto& piece : keys) {
      part.keys.insert(part.keys.end(), piece.begin(), piece.end());
    }
    std::sort(part.keys.begin(), part.keys.end());
    part.sum = sum;
  };
  for (std::int64_t low = 0; low < kNodes;) {
    KeySieve sieve(low, kNodes, most);
    for (const auto& [node, key] : items) {
      sieve.weigh(node, key);
      sieve.add(node, key);
    }
    sieve.finishBefore(sieve.high(), take);
    low = sieve.high();
  }
  return parts;
}

class KeysOfParts : public ::testing::TestWithParam<std::size_t> {};

TEST_P(KeysOfParts, AreWholeWhateverIsPutOff) {
  const Items items = randomItems(30000);

  const Parts found = sieved(items, GetParam());

  EXPECT_EQ(found, expectedOf(items));
}

INSTANTIATE_TEST_SUITE_P(MostKeys, KeysOfParts, ::testing::Values(1, 1000, 12000, 100000),
                         ::testing::PrintToStringParamName());

TEST(KeySieve, TakesNoKeyThatIsNotWanted) {
  KeySieve sieve(0, kNodesOfPart, 1000);
  std::size_t found = 0;

  for (std::uint64_t key = 0; key < 600; ++key) {
    sieve.add(3, key, key % 3 == 0);
  }
  auto count = [&](std::int64_t, const KeyPieces& keys, std::uint64_t) {
    for (const auto& piece : keys) {
      found += piece.size();
    }
  };
  sieve.finishBefore(kNodesOfPart, count);

  EXPECT_EQ(found, 200U);
}

/// A hash whose marks are not set.
constexpr std::uint64_t hash(std::uint64_t number) noexcept { return number * 0x9e3779b97f4a7c14U; }

struct VerdictCase {
  std::string name;
  std::vector<std::uint64_t> keys;
  KeyVerdict expected;
};

class VerdictOfKeys : public ::testing::TestWithParam<VerdictCase> {};

TEST_P(VerdictOfKeys, IsAsTheyAre) {
  const KeyVerdict found = KeyJudge().judge({GetParam().keys});

  EXPECT_EQ(found.areSound, GetParam().expected.areSound);
  EXPECT_EQ(found.areUnopposed, GetParam().expected.areUnopposed);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, VerdictOfKeys,
    ::testing::Values(
        VerdictCase{"none", {}, {true, true}},
        VerdictCase{"each_once", {hash(1), hash(2), hash(3)}, {true, true}},
        VerdictCase{"one_twice", {hash(1), hash(2), hash(1)}, {false, false}},
        VerdictCase{"asked_before_it_comes", {hash(1) | kIsAsked, hash(1)}, {true, true}},
        VerdictCase{"asked_and_absent", {hash(1) | kIsAsked, hash(2)}, {false, true}},
        VerdictCase{
            "other_side_is_free", {hash(1) | kIsAsked | kIsOtherSide, hash(2)}, {true, true}},
        VerdictCase{
            "other_side_is_taken", {hash(1) | kIsAsked | kIsOtherSide, hash(1)}, {true, false}},
        VerdictCase{"other_side_is_asked_for_twice",
                    {hash(1) | kIsAsked | kIsOtherSide, hash(1) | kIsAsked | kIsOtherSide},
                    {true, false}}),
    [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace orvml_io_tests
