#include "check/sieved_blocks.h"

#include <algorithm>

namespace orvml::detail {

namespace {

/// The lowest of the first three nodes of the first cell, as of a face of it.
std::int64_t lowestOfFirst(const SievedBlock& block) noexcept {
  const int* cell = block.group->cell(static_cast<std::int64_t>(block.number) * kCellsPerBlock);
  return *std::min_element(cell, cell + std::min(block.group->width(), 3));
}

}  // namespace

std::vector<SievedBlock> sievedBlocks(const CheckedMesh& mesh,
                                      std::initializer_list<Entity> kinds) {
  std::vector<SievedBlock> blocks;
  for (const CheckedCells& cells : mesh.kinds) {
    if (std::find(kinds.begin(), kinds.end(), cells.entity) == kinds.end()) {
      continue;
    }
    for (const CheckedGroup& group : cells.groups) {
      for (std::size_t i = 0; group.facts != nullptr && i < group.blocks.size(); ++i) {
        blocks.push_back({&group, i, group.blocks[i], placeKindOf(cells.entity)});
      }
    }
  }
  std::sort(blocks.begin(), blocks.end(), [](const SievedBlock& a, const SievedBlock& b) {
    return a.range.lowest < b.range.lowest;
  });
  return blocks;
}

std::vector<std::int64_t> cutNodes(const std::vector<SievedBlock>& blocks, std::int64_t nodes,
                                   std::size_t ranges) {
  constexpr std::int64_t kPart = std::int64_t{1} << kBitsOfPart;
  std::vector<std::int64_t> sample;
  sample.reserve(blocks.size());
  for (const SievedBlock& block : blocks) {
    sample.push_back(std::clamp<std::int64_t>(lowestOfFirst(block), 0, nodes));
  }
  std::sort(sample.begin(), sample.end());
  std::vector<std::int64_t> limits = {0};
  for (std::size_t i = 1; i < ranges && !sample.empty(); ++i) {
    const std::int64_t limit = sample[i * sample.size() / ranges] / kPart * kPart;
    if (limit > limits.back()) {
      limits.push_back(limit);
    }
  }
  limits.push_back(nodes);
  return limits;
}

}  // namespace orvml::detail
