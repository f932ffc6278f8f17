#pragma once

#include <orvml/view.hpp>

#include "communicator.h"
#include "outline.h"

#include <cstdint>
#include <span>
#include <vector>

namespace orvml::parallel::detail {

/// The cells of one kind that the slice of a rank has, one after the other through all groups.
class SliceCells {
 public:
  SliceCells() = default;
  /// @param view    borrowed
  /// @param before  how many cells of each group the ranks before have
  /// @param whole   how many all have
  SliceCells(const CellsView& view, const EntityOutline& before, const EntityOutline& whole);

  [[nodiscard]] std::size_t size() const noexcept { return numbers_.size(); }
  /// Their numbers in the whole document, ascending.
  [[nodiscard]] std::span<const int> numbers() const noexcept { return numbers_; }
  /// Where the node indices of each begin, and where those of the last end.
  [[nodiscard]] std::span<const std::int64_t> starts() const noexcept { return starts_; }
  [[nodiscard]] std::span<const int> nodeIndices() const noexcept { return indices_; }
  [[nodiscard]] std::span<const int> nodesOf(std::size_t cell) const noexcept {
    return nodeIndices().subspan(static_cast<std::size_t>(starts_[cell]),
                                 static_cast<std::size_t>(starts_[cell + 1] - starts_[cell]));
  }
  /// The group that a cell belongs to.
  [[nodiscard]] const GroupOutline& groupOf(std::size_t cell) const;

 private:
  std::vector<GroupOutline> groups_;
  std::vector<std::size_t> firstOfGroup_;
  std::vector<int> numbers_;
  std::vector<std::int64_t> starts_;
  std::vector<int> indices_;
};

/// Where the numbers of the cells of each group end.
[[nodiscard]] std::vector<std::int64_t> endsOf(const std::vector<GroupOutline>& groups);

/// Which group a cell belongs to, by its number, which is below the last end.
[[nodiscard]] std::size_t groupOfNumber(std::span<const std::int64_t> ends,
                                        std::int64_t number) noexcept;

/// Numbers without those that come twice, ascending.
[[nodiscard]] std::vector<int> sortedOnce(std::vector<int> numbers);

}  // namespace orvml::parallel::detail
