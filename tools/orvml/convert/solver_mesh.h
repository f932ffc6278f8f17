#pragma once

#include <orvml/view.hpp>

#include "convert/conversion_report.h"
#include "convert/placed_groups.h"
#include "convert/solver_cells.h"

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <vector>

namespace orvml_tool {

/// The elements of a document with their numbers, as a solver wants them: from 1 without gaps,
/// group after group.
class SolverMesh {
 public:
  struct Group {
    PlacedGroup placed;
    const SolverCell* cell = nullptr;
    std::int64_t firstNumber = 1;
    std::vector<int> madeNodes;  ///< [cells x made nodes], 0-based

    [[nodiscard]] std::int64_t elementsPerCell() const noexcept {
      return static_cast<std::int64_t>(cell->pieces.size());
    }
    [[nodiscard]] std::int64_t elements() const noexcept {
      return placed.group.size() * elementsPerCell();
    }
  };

  /// Reports what is dropped, split, padded and approximated of the cells.
  SolverMesh(const orvml::DocumentView& document, std::span<const orvml::Entity> containers,
             std::string_view format, const std::vector<SolverCell>& cells,
             ConversionReport& report);

  [[nodiscard]] const std::vector<Group>& groups() const noexcept { return groups_; }
  [[nodiscard]] std::int64_t numberOfElements() const noexcept { return numberOfElements_; }
  /// With those that were made, which come after the others.
  [[nodiscard]] std::int64_t numberOfNodes() const noexcept {
    return numberOfOwnNodes_ + static_cast<std::int64_t>(madePoints_.size());
  }
  /// The place of a node, 0-based.
  [[nodiscard]] std::array<double, 3> pointOf(std::int64_t node) const noexcept;

  /// Calls `take(number, cell, nodes)` for each element of a group: its number, the number of its
  /// cell in the group, its 0-based nodes.
  template <class Take>
  void forEachElement(const Group& group, const Take& take) const {
    std::int64_t number = group.firstNumber;
    std::vector<int> nodes;
    for (int cell = 0; cell < group.placed.group.size(); ++cell) {
      const std::span<const int> own = group.placed.group[cell];
      for (const NodePlaces& piece : group.cell->piecesFor(own)) {
        nodes.resize(piece.size());
        for (std::size_t i = 0; i < piece.size(); ++i) {
          nodes[i] = nodeAt(group, cell, own, piece[i]);
        }
        take(number++, cell, std::span<const int>(nodes));
      }
    }
  }

 private:
  [[nodiscard]] static int nodeAt(const Group& group, int cell, std::span<const int> own,
                                  std::size_t place) {
    const std::size_t made = group.cell->made.size();
    return place < own.size()
               ? own[place]
               : group.madeNodes[static_cast<std::size_t>(cell) * made + place - own.size()];
  }
  void addGroup(const PlacedGroup& placed, const SolverCell& cell);
  int made(std::span<const int> cell, const MadeNode& node);
  void report(const Group& group, std::string_view format, std::size_t madeBefore,
              ConversionReport& report) const;

  const orvml::DocumentView& document_;
  std::int64_t numberOfOwnNodes_;
  std::int64_t numberOfElements_ = 0;
  std::vector<Group> groups_;
  std::map<std::vector<int>, int> madeBetween_;  // by the corners, in ascending order
  std::vector<std::array<double, 3>> madePoints_;
};

}  // namespace orvml_tool
