#pragma once

#include "check/checked_mesh.h"
#include "check/key_sieve.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace orvml::detail {

/// A block of cells whose keys are sieved.
struct SievedBlock {
  const CheckedGroup* group;
  std::size_t number;
  IndexRange range;
  PlaceKind kind;
};

/// The blocks of the cells of some kinds, in the order of their lowest nodes: whatever the groups,
/// those with the same nodes come at about the same time.
[[nodiscard]] std::vector<SievedBlock> sievedBlocks(const CheckedMesh& mesh,
                                                    std::initializer_list<Entity> kinds);

/// Cuts the nodes into ranges with about as many keys each. Returns the limits of the ranges, those
/// of all nodes included.
[[nodiscard]] std::vector<std::int64_t> cutNodes(const std::vector<SievedBlock>& blocks,
                                                 std::int64_t nodes, std::size_t ranges);

/// Some of the nodes, in whole parts. Several threads may add different parts.
class NodeParts {
 public:
  explicit NodeParts(std::int64_t nodes)
      : holds_((static_cast<std::size_t>(nodes) >> kBitsOfPart) + 1) {}

  void add(std::int64_t node) noexcept { holds_[partOf(node)] = 1; }
  void add(const NodeParts& others) noexcept {
    for (std::size_t part = 0; part < holds_.size(); ++part) {
      holds_[part] |= others.holds_[part];
    }
  }
  [[nodiscard]] bool holds(std::int64_t node) const noexcept { return holds_[partOf(node)] != 0; }
  [[nodiscard]] bool empty() const noexcept {
    return std::find(holds_.begin(), holds_.end(), 1) == holds_.end();
  }

 private:
  static std::size_t partOf(std::int64_t node) noexcept {
    return static_cast<std::size_t>(node) >> kBitsOfPart;
  }
  std::vector<std::uint8_t> holds_;
};

/// Sieves the keys of a range of nodes.
///
/// @param most   keys that may be in memory at once
/// @param scan   scan(block, sieve) adds the keys of the cells of a block
/// @param judge  judge(first node of a part, its keys, its sum) looks at each part
template <class Scan, class Judge>
void sieveKeys(const std::vector<SievedBlock>& blocks, std::int64_t low, std::int64_t high,
               std::size_t most, Scan scan, Judge judge) {
  while (low < high) {
    KeySieve sieve(low, high, most);
    for (const SievedBlock& block : blocks) {
      if (block.range.lowest >= sieve.high()) {
        break;
      }
      if (block.range.highest >= low) {
        sieve.finishBefore(block.range.lowest, judge);
        scan(block, sieve);
      }
    }
    sieve.finishBefore(sieve.high(), judge);
    low = sieve.high();
  }
}

}  // namespace orvml::detail
