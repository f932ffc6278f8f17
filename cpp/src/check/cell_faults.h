#pragma once

#include "check/checked_mesh.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvml::detail {

/// The cells of one kind that are wrong by themselves, whatever others are beside them.
struct CellFaults {
  CellFaults(PlaceKind kind, const FindingList& findings)
      : outOfRange(findings.places(kind)),
        repeated(findings.places(kind)),
        withoutSize(findings.places(kind)),
        inverted(findings.places(kind)),
        folded(findings.places(kind)) {}

  /// Adds those of later cells.
  void append(const CellFaults& later);

  Places outOfRange;
  Places repeated;
  Places withoutSize;
  Places inverted;
  Places folded;
};

/// Some blocks of a group.
struct BlockRange {
  CheckedGroup& group;
  std::size_t begin;
  std::size_t end;
};

/// Which nodes a cell names; empty when that is not asked. Several threads may mark them.
using UsedNodes = std::vector<std::uint8_t>;

/// Finds the ranges of blocks and the cells with wrong indices, and marks the nodes that are used.
/// Several threads may look at different blocks of a group.
void checkIndices(const BlockRange& blocks, std::int64_t nodes, CellFaults& faults,
                  UsedNodes& used);

/// Judges the cells of some blocks by their Jacobians.
///
/// @param areCollapsed  whether some of them name a node twice, which are left out
void checkJacobians(const CheckedMesh& mesh, const BlockRange& blocks, bool areCollapsed,
                    CellFaults& faults);

/// Looks at each cell of a mesh by itself, piece by piece, so that what is read of a piece is in
/// the cache for all that is asked.
class CellSweep {
 public:
  CellSweep(CheckedMesh& mesh, const Believed& believed, const FindingList& findings);

  [[nodiscard]] std::size_t pieces() const noexcept { return pieces_.size(); }
  /// Several threads may look at different pieces.
  void look(std::size_t piece);

  // What was found, once all pieces have been looked at.

  /// Node indices that are out of range, nodes that a cell names twice, and nodes that none names.
  void tellIndices(FindingList& findings);
  /// Cells without size, inside out, or folded. Returns whether every cell is known to be sound.
  [[nodiscard]] bool tellForms(FindingList& findings);

 private:
  /// Blocks of a kind, counted over all its groups.
  struct Piece {
    std::size_t kind;
    std::size_t begin;
    std::size_t end;
    CellFaults faults;
  };

  void addPieces(std::size_t kind, const FindingList& findings);
  void gather();

  CheckedMesh& mesh_;
  std::array<std::vector<std::size_t>, 3> ends_;  // of the blocks of each group of each kind
  std::vector<Piece> pieces_;
  std::vector<CellFaults> faults_;  // of the kinds
  UsedNodes used_;
};

}  // namespace orvml::detail
