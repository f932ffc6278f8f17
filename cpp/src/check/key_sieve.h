#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace orvml::detail {

// In a sound mesh no element has the same side of a face as another one, and what is asked of a
// face is answered by one element. A sieve finds that out with a fraction of the work that it takes
// to say what is wrong: it names the nodes where something may be, and only their keys have to be
// brought together.

/// Nodes whose keys are looked at together, as a power of two: so many that their parts of memory
/// are few, so few that a core's cache holds the set of their keys.
inline constexpr unsigned kBitsOfPart = 8;

// The last bits of a key. What is asked of the keys of one side tells of a thing that it has to be
// there, or, of its other side, that it should not be.
inline constexpr std::uint64_t kIsAsked = 1;
inline constexpr std::uint64_t kIsOtherSide = 2;
inline constexpr std::uint64_t kMarks = kIsAsked | kIsOtherSide;

using KeyPieces = std::vector<std::span<const std::uint64_t>>;

/// What is found of the keys of a part.
struct KeyVerdict {
  bool areSound = true;      ///< whether no key comes twice, and what is asked for is there
  bool areUnopposed = true;  ///< whether what is asked of the other side is not there, nor twice
};

/// Looks at the keys of one part of the nodes after the other.
class KeyJudge {
 public:
  [[nodiscard]] KeyVerdict judge(const KeyPieces& keys);

 private:
  /// Adds a key; returns whether it was there before.
  bool add(std::uint64_t key) noexcept;
  [[nodiscard]] std::uint64_t* placeOf(std::uint64_t key) noexcept;

  std::vector<std::uint64_t> table_;  // at most half full; 0 is free
  unsigned shift_ = 0;
  std::vector<std::uint64_t> asked_;
};

/// Collects the keys of some nodes by parts, in bounded memory. Parts are looked at as soon as
/// nothing more comes for them, which in a mesh whose numbering is local leaves few of them; where
/// memory runs out, the parts with the highest nodes are put off to another time.
class KeySieve {
 public:
  /// @param low   a multiple of the nodes of a part, as each limit is but the last
  /// @param most  keys that may be in memory at once, unless one part alone has more
  KeySieve(std::int64_t low, std::int64_t high, std::size_t most);

  [[nodiscard]] std::int64_t low() const noexcept { return low_; }
  /// Lower than it was when parts have been put off.
  [[nodiscard]] std::int64_t high() const noexcept { return high_; }

  /// Takes a key of a node; those of other nodes are passed over.
  ///
  /// @param isWanted  whether it is taken indeed, which costs no branch
  void add(std::int64_t node, std::uint64_t key, bool isWanted = true) {
    const auto number = static_cast<std::size_t>(node - low_) >> kBitsOfPart;
    if (number >= end_) {
      return;
    }
    Part& part = parts_[number];
    if (part.next == part.end) {
      extend(number);
      if (number >= end_) {
        return;  // put off
      }
    }
    *part.next = key;
    part.next += isWanted ? 1 : 0;
  }

  /// Adds to the sum of the part of a node.
  void weigh(std::int64_t node, std::uint64_t value) noexcept {
    const auto number = static_cast<std::size_t>(node - low_) >> kBitsOfPart;
    if (number < end_) {
      parts_[number].sum += value;
    }
  }

  /// Looks at all parts of which no key will come any more.
  ///
  /// @param judge  judge(first node of a part, its keys, its sum)
  template <class Judge>
  void finishBefore(std::int64_t node, Judge& judge) {
    for (; begin_ < end_ && (node >= high_ || lastOf(begin_) < node); ++begin_) {
      gather(parts_[begin_]);
      judge(low_ + static_cast<std::int64_t>(begin_ << kBitsOfPart), pieces_, parts_[begin_].sum);
      release(parts_[begin_]);
    }
  }

 private:
  static constexpr std::size_t kKeysOfChunk = 127;
  struct Chunk {
    Chunk* before;
    std::array<std::uint64_t, kKeysOfChunk> keys;
  };
  struct Part {
    std::uint64_t* next = nullptr;  // where the next key goes
    std::uint64_t* end = nullptr;   // of the last chunk
    Chunk* chunk = nullptr;
    std::uint64_t sum = 0;
  };

  [[nodiscard]] std::int64_t lastOf(std::size_t part) const noexcept {
    return low_ + static_cast<std::int64_t>((part + 1) << kBitsOfPart) - 1;
  }
  void extend(std::size_t number);
  void putOff(std::size_t least);
  [[nodiscard]] Chunk* newChunk();
  void gather(const Part& part);
  void release(Part& part) noexcept;

  std::int64_t low_;
  std::int64_t high_;
  std::size_t most_;  // in chunks
  std::size_t held_ = 0;
  std::size_t begin_ = 0;  // the first part that is not finished
  std::size_t end_;
  std::vector<Part> parts_;
  std::vector<std::unique_ptr<Chunk[]>> memory_;
  Chunk* free_ = nullptr;
  KeyPieces pieces_;
};

}  // namespace orvml::detail
