#pragma once

#include "communicator.h"
#include "node_use.h"
#include "outline.h"
#include "routes.h"
#include "slice_cells.h"

#include <cstdint>
#include <span>
#include <vector>

namespace orvml::parallel::detail {

/// The cells of one kind that a rank ends with: owned ones, and ghosts once they were added. In
/// each group come the owned ones first, both in the order of the whole.
class DealtCells {
 public:
  DealtCells() = default;
  /// Sends the cells of all slices to their owners. Collective.
  ///
  /// @param groups  those of the whole, borrowed
  /// @param owners  the rank that each cell of the slice goes to
  DealtCells(const Communicator& comm, const std::vector<GroupOutline>& groups,
             const SliceCells& slice, std::span<const int> owners);

  /// Adds the cells of other ranks that use a node of this one's. Collective.
  ///
  /// @param otherUsers  of the nodes of this rank's cells
  void addGhosts(const Communicator& comm, std::span<const Use> otherUsers);

  [[nodiscard]] const std::vector<int>& numbers() const noexcept { return numbers_; }
  [[nodiscard]] const std::vector<int>& owners() const noexcept { return owners_; }
  /// Node indices of the whole.
  [[nodiscard]] const std::vector<int>& nodeIndices() const noexcept { return indices_; }
  [[nodiscard]] std::span<const int> nodesOf(std::size_t cell) const noexcept {
    return std::span<const int>(indices_).subspan(
        static_cast<std::size_t>(starts_[cell]),
        static_cast<std::size_t>(starts_[cell + 1] - starts_[cell]));
  }
  /// How many of each group are owned, and how many there are.
  [[nodiscard]] std::vector<int> ownedOfGroups(int rank) const;
  [[nodiscard]] std::vector<GroupOutline> groupsHere() const;

  [[nodiscard]] const Routes& fromSlice() const noexcept { return fromSlice_; }
  [[nodiscard]] const Routes& fromOwners() const noexcept { return fromOwners_; }

 private:
  [[nodiscard]] std::vector<std::int64_t> startsOf(std::span<const int> numbers) const;
  [[nodiscard]] Bins<int> placesWantedByOthers(std::span<const Use> otherUsers,
                                               std::size_t ranks) const;
  void arrange(int rank, const Bins<int>& ghosts, Bins<int> wanted);
  void moveNodeIndices(std::span<const int> ownedPlaces);

  const std::vector<GroupOutline>* groups_ = nullptr;
  std::vector<std::int64_t> ends_;  // of the numbers of each group
  std::vector<int> numbers_;
  std::vector<int> owners_;
  std::vector<std::int64_t> starts_;
  std::vector<int> indices_;
  Routes fromSlice_;
  Routes fromOwners_;
};

}  // namespace orvml::parallel::detail
