#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orvml::detail {

/// Scatters the bits of a number over 64 others (the finalizer of SplitMix64), so that sums of a
/// few of them tell sets of numbers apart.
[[nodiscard]] constexpr std::uint64_t scattered(std::uint64_t number) noexcept {
  number += 0x9e3779b97f4a7c15U;
  number = (number ^ (number >> 30U)) * 0xbf58476d1ce4e5b9U;
  number = (number ^ (number >> 27U)) * 0x94d049bb133111ebU;
  return number ^ (number >> 31U);
}

/// Entries of 8 bytes that may be in memory at once: 4 bytes a cell, and a mebibyte for small
/// meshes.
[[nodiscard]] constexpr std::size_t mostKeys(std::int64_t cells) noexcept {
  return std::max<std::size_t>(std::size_t{1} << 17U, static_cast<std::size_t>(cells) / 2);
}

/// Sorts few keys by counting for each the smaller ones: in random order that is faster than
/// branches that nobody can foresee.
template <std::size_t Most>
void sortByRank(std::uint64_t* keys, std::size_t count) {
  std::array<std::uint64_t, Most> sorted;
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t rank = 0;
    for (std::size_t j = 0; j < i; ++j) {
      rank += keys[j] <= keys[i] ? 1 : 0;
    }
    for (std::size_t j = i + 1; j < count; ++j) {
      rank += keys[j] < keys[i] ? 1 : 0;
    }
    sorted[rank] = keys[i];
  }
  std::copy_n(sorted.begin(), count, keys);
}

inline void sortKeys(std::uint64_t* begin, std::uint64_t* end) {
  constexpr std::size_t kFew = 12;
  const auto count = static_cast<std::size_t>(end - begin);
  if (count <= kFew) {
    sortByRank<kFew>(begin, count);
  } else {
    std::sort(begin, end);
  }
}

/// Brings keys that belong to one bucket together, in bounded memory: the buckets are gone through
/// in ranges, and everything that has keys is scanned once for each range.
///
/// @param buckets  how many there are; 4 bytes are taken for each
/// @param most     keys that may be in memory at once, unless one bucket alone has more
/// @param scan     scan(low, high, emit) calls emit(bucket, key) for all keys of the buckets from
///                 `low` to before `high`, and may call it for others
/// @param visit    visit(bucket, keys) is called for each bucket with keys, which are sorted
template <class Scan, class Visit>
void forEachBucket(std::int64_t buckets, std::size_t most, Scan scan, Visit visit) {
  std::vector<std::uint32_t> ends(static_cast<std::size_t>(buckets));
  scan(std::int64_t{0}, buckets,
       [&](std::int64_t bucket, std::uint64_t) { ++ends[static_cast<std::size_t>(bucket)]; });
  std::vector<std::uint64_t> keys;
  for (std::int64_t low = 0; low < buckets;) {
    std::int64_t high = low;
    std::size_t held = 0;
    for (; high < buckets; ++high) {
      const std::uint32_t count = ends[static_cast<std::size_t>(high)];
      if (held != 0 && held + count > most) {
        break;
      }
      ends[static_cast<std::size_t>(high)] = static_cast<std::uint32_t>(held);
      held += count;
    }
    if (held != 0) {
      keys.resize(held);
      scan(low, high, [&](std::int64_t bucket, std::uint64_t key) {
        if (bucket >= low && bucket < high) {
          keys[ends[static_cast<std::size_t>(bucket)]++] = key;
        }
      });
      std::size_t begin = 0;
      for (std::int64_t bucket = low; bucket < high; ++bucket) {
        const std::size_t end = ends[static_cast<std::size_t>(bucket)];
        if (end != begin) {
          sortKeys(keys.data() + begin, keys.data() + end);
          visit(bucket, std::span<const std::uint64_t>(keys.data() + begin, end - begin));
        }
        begin = end;
      }
    }
    low = high;
  }
}

/// A key of a bucket that something is to be said of.
struct FlaggedKey {
  std::int64_t bucket = 0;
  std::uint64_t key = 0;

  friend bool operator<(const FlaggedKey& a, const FlaggedKey& b) noexcept {
    return a.bucket != b.bucket ? a.bucket < b.bucket : a.key < b.key;
  }
};

}  // namespace orvml::detail
