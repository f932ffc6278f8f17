#include "stored_cells.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace orvml_report {

StoredCells::StoredCells(const orvml::CellsView& cells) {
  std::vector<orvml::CellGroup> views;
  int number = 0;
  std::size_t index = 0;
  for (const orvml::CellGroup& group : cells.groups()) {
    if (group.nodesPerCell() > 0 && group.size() > 0) {
      views.push_back(group);
      groups_.push_back({group, number, index});
      index += static_cast<std::size_t>(group.size());
    } else {
      claimed_ += group.size();
    }
    number += group.size();
  }
  cells_ = orvml::CellsView(std::move(views));
}

std::size_t StoredCells::indexOf(int number) const noexcept {
  if (claimed_ == 0) {
    return static_cast<std::size_t>(number);
  }
  const auto group = std::prev(std::upper_bound(
      groups_.begin(), groups_.end(), number,
      [](int wanted, const StoredGroup& other) { return wanted < other.firstNumber; }));
  return group->firstIndex + static_cast<std::size_t>(number - group->firstNumber);
}

}  // namespace orvml_report
