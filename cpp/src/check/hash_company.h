#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvml::detail {

/// A set of hashes, of which it may hold more than it was given. It is made of some of their bits.
class HashSet {
 public:
  /// @param bits   at least as many are taken; the more, the fewer are held that were not given
  /// @param shift  the first bit of a hash that counts: two sets with other bits err otherwise
  HashSet(std::uint64_t bits, unsigned shift) : shift_(shift) { empty(bits); }
  /// Takes everything out, and has so many bits from then on. Memory is kept for the next time.
  void empty(std::uint64_t bits) { words_.assign(std::bit_ceil(bits + 4096) / 64, 0); }
  /// Asks for the memory of a hash ahead of its use.
  void prefetch(std::uint64_t hash) const noexcept { __builtin_prefetch(&words_[wordOf(hash)], 1); }
  /// Returns whether it was there before.
  bool add(std::uint64_t hash) noexcept {
    std::uint64_t& word = words_[wordOf(hash)];
    const bool was = (word & bitOf(hash)) != 0;
    word |= bitOf(hash);
    return was;
  }
  [[nodiscard]] bool holds(std::uint64_t hash) const noexcept {
    return (words_[wordOf(hash)] & bitOf(hash)) != 0;
  }

 private:
  [[nodiscard]] std::size_t wordOf(std::uint64_t hash) const noexcept {
    return (hash >> shift_ >> 6U) & (words_.size() - 1);
  }
  [[nodiscard]] std::uint64_t bitOf(std::uint64_t hash) const noexcept {
    return std::uint64_t{1} << ((hash >> shift_) % 64);
  }

  unsigned shift_;
  std::vector<std::uint64_t> words_;
};

struct HashedItem {
  std::uint64_t hash;
  std::int64_t item;
};

/// The hashes that come twice, and a few others.
///
/// @param items    about how many there are; one to two bytes are taken for each
/// @param forEach  calls a function with every item and its hash
template <class ForEach>
std::vector<std::uint64_t> repeatedHashes(std::int64_t items, ForEach forEach) {
  constexpr std::size_t kAhead = 256;
  HashSet met(8 * static_cast<std::uint64_t>(items), 0);
  std::vector<std::uint64_t> repeated;
  std::vector<std::uint64_t> ahead;
  const auto addAll = [&] {
    for (const std::uint64_t hash : ahead) {
      if (met.add(hash)) {
        repeated.push_back(hash);
      }
    }
    ahead.clear();
  };
  forEach([&](std::int64_t, std::uint64_t hash) {
    met.prefetch(hash);
    ahead.push_back(hash);
    if (ahead.size() == kAhead) {
      addAll();
    }
  });
  addAll();
  return repeated;
}

/// Leaves out most of those whose hash no other one has.
inline void dropLonely(std::vector<HashedItem>& items) {
  HashSet met(32 * items.size(), 20);
  HashSet shared(32 * items.size(), 20);
  for (const HashedItem& one : items) {
    if (met.add(one.hash)) {
      (void)shared.add(one.hash);
    }
  }
  std::erase_if(items, [&](const HashedItem& one) { return !shared.holds(one.hash); });
}

/// All items whose hash another one has, and a few others, in the order of their hashes and of
/// themselves. Little is remembered of items that are alone.
template <class ForEach>
std::vector<HashedItem> itemsWithCompany(std::int64_t items, ForEach forEach) {
  std::vector<HashedItem> found;
  const std::vector<std::uint64_t> repeated = repeatedHashes(items, forEach);
  if (repeated.empty()) {
    return found;
  }
  HashSet shared(16 * repeated.size(), 30);
  for (const std::uint64_t hash : repeated) {
    (void)shared.add(hash);
  }
  forEach([&](std::int64_t item, std::uint64_t hash) {
    if (shared.holds(hash)) {
      found.push_back({hash, item});
    }
  });
  dropLonely(found);
  std::sort(found.begin(), found.end(), [](const HashedItem& a, const HashedItem& b) {
    return a.hash != b.hash ? a.hash < b.hash : a.item < b.item;
  });
  return found;
}

}  // namespace orvml::detail
