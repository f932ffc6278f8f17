#include "slice_cells.h"

#include <algorithm>

namespace orvml::parallel::detail {

SliceCells::SliceCells(const CellsView& view, const EntityOutline& before,
                       const EntityOutline& whole) {
  std::int64_t firstNumber = 0;
  starts_.push_back(0);
  const std::span<const CellGroup> groups = view.groups();
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const CellGroup& group = groups[i];
    groups_.push_back({static_cast<int>(group.shape()), group.nodesPerCell(), group.size()});
    firstOfGroup_.push_back(numbers_.size());
    for (int cell = 0; cell < group.size(); ++cell) {
      numbers_.push_back(static_cast<int>(firstNumber + before.groups[i].cells + cell));
      starts_.push_back(starts_.back() + group.nodesPerCell());
    }
    indices_.insert(indices_.end(), group.nodeIndices().begin(), group.nodeIndices().end());
    firstNumber += whole.groups[i].cells;
  }
}

const GroupOutline& SliceCells::groupOf(std::size_t cell) const {
  const auto next = std::upper_bound(firstOfGroup_.begin(), firstOfGroup_.end(), cell);
  return groups_[static_cast<std::size_t>(next - firstOfGroup_.begin()) - 1];
}

std::vector<std::int64_t> endsOf(const std::vector<GroupOutline>& groups) {
  std::vector<std::int64_t> ends;
  std::int64_t end = 0;
  for (const GroupOutline& group : groups) {
    end += group.cells;
    ends.push_back(end);
  }
  return ends;
}

std::size_t groupOfNumber(std::span<const std::int64_t> ends, std::int64_t number) noexcept {
  return static_cast<std::size_t>(std::upper_bound(ends.begin(), ends.end(), number) -
                                  ends.begin());
}

std::vector<int> sortedOnce(std::vector<int> numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return numbers;
}

}  // namespace orvml::parallel::detail
