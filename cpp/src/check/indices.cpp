#include "check/cell_faults.h"

#include <algorithm>
#include <atomic>
#include <limits>

namespace orvml::detail {

namespace {

IndexRange rangeOf(const int* begin, const int* end) noexcept {
  int lowest = std::numeric_limits<int>::max();
  int highest = std::numeric_limits<int>::min();
  for (const int* node = begin; node != end; ++node) {
    lowest = std::min(lowest, *node);
    highest = std::max(highest, *node);
  }
  return {lowest, highest};
}

/// The nodes of all cells of a block.
std::span<const int> nodesOf(const CheckedGroup& group, std::size_t block) noexcept {
  const std::int64_t begin = static_cast<std::int64_t>(block) * kCellsPerBlock;
  const std::int64_t end = std::min<std::int64_t>(begin + kCellsPerBlock, group.cells.size());
  return {group.cell(begin), group.cell(end)};
}

void checkRange(const CheckedGroup& group, std::size_t block, std::int64_t nodes,
                Places& outOfRange) {
  if (group.blocks[block].lowest >= 0 && group.blocks[block].highest < nodes) {
    return;
  }
  const std::int64_t begin = static_cast<std::int64_t>(block) * kCellsPerBlock;
  const std::int64_t end = std::min<std::int64_t>(begin + kCellsPerBlock, group.cells.size());
  for (std::int64_t i = begin; i < end; ++i) {
    const IndexRange range = rangeOf(group.cell(i), group.cell(i) + group.width());
    if (range.lowest < 0 || range.highest >= nodes) {
      outOfRange.add(group.first + i);
    }
  }
}

/// A width that the compiler knows makes that twice as fast; 0 stands for any.
template <int Width>
void checkRepeated(const CheckedGroup& group, std::size_t block, std::int64_t nodes,
                   Places& repeated) {
  const int width = Width == 0 ? group.width() : Width;
  forEachCellOfBlock(group, block, nodes, false, [&](std::int64_t i, const int* cell) {
    if (isCollapsed(cell, width)) {
      repeated.add(group.first + i);
    }
  });
}

void checkRepeated(const CheckedGroup& group, std::size_t block, std::int64_t nodes,
                   Places& repeated) {
  switch (group.width()) {
    case 3:
      return checkRepeated<3>(group, block, nodes, repeated);
    case 4:
      return checkRepeated<4>(group, block, nodes, repeated);
    case 6:
      return checkRepeated<6>(group, block, nodes, repeated);
    case 8:
      return checkRepeated<8>(group, block, nodes, repeated);
    default:
      return checkRepeated<0>(group, block, nodes, repeated);
  }
}

/// Nodes of cells that are left out are used all the same.
void markUsed(std::span<const int> nodes, IndexRange range, UsedNodes& used) {
  const bool areAllNodes =
      range.lowest >= 0 && static_cast<std::size_t>(range.highest) < used.size();
  for (const int node : nodes) {
    if (areAllNodes || static_cast<std::size_t>(node) < used.size()) {  // a negative one is not
      std::atomic_ref(used[static_cast<std::size_t>(node)]).store(1, std::memory_order_relaxed);
    }
  }
}

}  // namespace

void checkIndices(const BlockRange& blocks, std::int64_t nodes, CellFaults& faults,
                  UsedNodes& used) {
  CheckedGroup& group = blocks.group;
  const std::int64_t before = faults.repeated.size();
  for (std::size_t block = blocks.begin; block < blocks.end; ++block) {
    const std::span<const int> ofBlock = nodesOf(group, block);
    group.blocks[block] = rangeOf(ofBlock.data(), ofBlock.data() + ofBlock.size());
    checkRange(group, block, nodes, faults.outOfRange);
    if (group.facts != nullptr) {
      checkRepeated(group, block, nodes, faults.repeated);
    }
    markUsed(ofBlock, group.blocks[block], used);
  }
  if (faults.repeated.size() != before) {
    std::atomic_ref(group.hasCollapsed).store(true, std::memory_order_relaxed);
  }
}

}  // namespace orvml::detail
