// Keys that belong together are brought together, whatever memory there is.
#include "check/key_groups.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace orvml_io_tests {
namespace {

using Buckets = std::map<std::int64_t, std::vector<std::uint64_t>>;
using Items = std::vector<std::pair<std::int64_t, std::uint64_t>>;

Items randomItems(int buckets, int count, unsigned seed) {
  std::mt19937 random(seed);
  Items items;
  for (int i = 0; i < count; ++i) {
    // Half of all lie in one bucket.
    const bool isCrowded = random() % 2 == 0;
    items.emplace_back(
        isCrowded ? buckets / 2 : static_cast<int>(random() % static_cast<unsigned>(buckets)),
        random() % 1000);
  }
  return items;
}

class KeysInBuckets : public ::testing::TestWithParam<std::size_t> {};

TEST_P(KeysInBuckets, AreSortedAndWhole) {
  constexpr int kBuckets = 300;
  const Items items = randomItems(kBuckets, 5000, 3);
  Buckets expected;
  for (const auto& [bucket, key] : items) {
    expected[bucket].push_back(key);
  }
  for (auto& [bucket, keys] : expected) {
    std::sort(keys.begin(), keys.end());
  }

  Buckets found;
  std::int64_t last = -1;
  orvml::detail::forEachBucket(
      kBuckets, GetParam(),
      [&](std::int64_t low, std::int64_t high, auto emit) {
        for (const auto& [bucket, key] : items) {
          if (bucket < high + 5 && bucket >= low - 5) {
            emit(bucket, key);
          }
        }
      },
      [&](std::int64_t bucket, std::span<const std::uint64_t> keys) {
        EXPECT_GT(bucket, last);
        last = bucket;
        found[bucket].assign(keys.begin(), keys.end());
      });

  EXPECT_EQ(found, expected);
}

INSTANTIATE_TEST_SUITE_P(Memory, KeysInBuckets, ::testing::Values(1, 7, 100, 3000, 1000000));

}  // namespace
}  // namespace orvml_io_tests
