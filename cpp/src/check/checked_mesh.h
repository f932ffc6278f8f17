#pragma once

#include <orvml/view.hpp>

#include "check/finding_list.h"
#include "check/shape_facts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvml::detail {

/// The least and the greatest node index of some cells.
struct IndexRange {
  int lowest;
  int highest;
};

/// Cells whose ranges of node indices are kept together: few enough that most blocks of a mesh
/// whose numbering is local can be passed over, many enough that the ranges take no memory.
inline constexpr int kCellsPerBlock = 512;

/// A group of cells of a mesh that is being checked.
struct CheckedGroup {
  CellGroup cells;
  std::int64_t first = 0;             ///< the number of its first cell among those of its kind
  const ShapeFacts* facts = nullptr;  ///< null when nothing is known of shape and number of nodes
  std::vector<IndexRange> blocks;     ///< of kCellsPerBlock cells each
  bool hasCollapsed = false;          ///< whether a cell names a node twice, once that is known

  [[nodiscard]] int width() const noexcept { return cells.nodesPerCell(); }
  [[nodiscard]] const int* cell(std::int64_t index) const noexcept {
    return cells.nodeIndices().data() + index * width();
  }
};

struct CheckedCells {
  Entity entity = Entity::faces;
  std::string object;
  std::vector<CheckedGroup> groups;
  bool isWhole = true;  ///< whether none is left out, so that something can be said to be missing
};

/// What of a document may be believed. A reader that found an array not as it should be has put
/// something in its place.
struct Believed {
  bool coordinates = true;
  std::array<bool, 4> cells = {true, true, true, true};       ///< by Entity
  std::array<bool, 4> attributes = {true, true, true, true};  ///< by Entity

  [[nodiscard]] bool holdsCells(Entity entity) const {
    return cells[static_cast<std::size_t>(entity)];
  }
};

/// A mesh that is being checked.
struct CheckedMesh {
  int dimension = 0;
  std::int64_t nodes = 0;
  const double* coordinates = nullptr;  ///< `[nodes x dimension]`; null when they are not known
  std::string nodesObject;
  std::array<CheckedCells, 3> kinds;  ///< edges, faces, elements

  /// Whether something may be remembered of each node. A file may count billions of which it holds
  /// nothing; those without coordinates may take 64 MiB.
  [[nodiscard]] bool areNodesHeld() const noexcept {
    return coordinates != nullptr || nodes <= (std::int64_t{1} << 24U);
  }

  [[nodiscard]] const CheckedCells& edges() const noexcept { return kinds[0]; }
  [[nodiscard]] const CheckedCells& faces() const noexcept { return kinds[1]; }
  [[nodiscard]] const CheckedCells& elements() const noexcept { return kinds[2]; }
};

/// Tells whether a cell names a node twice.
[[nodiscard]] inline bool isCollapsed(const int* cell, int width) noexcept {
  bool isTwice = false;
  for (int i = 1; i < width; ++i) {
    for (int j = 0; j < i; ++j) {
      isTwice |= cell[i] == cell[j];
    }
  }
  return isTwice;
}

/// Calls a function with the index in its group and the nodes of each cell of a block whose nodes
/// exist.
///
/// @param areCollapsed  whether cells that name a node twice are among them: those are left out,
///                      because what else is wrong with them follows from that
template <class Function>
void forEachCellOfBlock(const CheckedGroup& group, std::size_t block, std::int64_t nodes,
                        bool areCollapsed, Function function) {
  const int width = group.width();
  const IndexRange range = group.blocks[block];
  const auto isNode = [nodes](int node) { return node >= 0 && node < nodes; };
  const bool areAllNodes = range.lowest >= 0 && range.highest < nodes;
  const std::int64_t begin = static_cast<std::int64_t>(block) * kCellsPerBlock;
  const std::int64_t end = std::min<std::int64_t>(begin + kCellsPerBlock, group.cells.size());
  for (std::int64_t i = begin; i < end; ++i) {
    const int* cell = group.cell(i);
    if ((areAllNodes || std::all_of(cell, cell + width, isNode)) &&
        !(areCollapsed && isCollapsed(cell, width))) {
      function(i, cell);
    }
  }
}

/// The same for all blocks of a mesh whose indices have been checked that have a node index from
/// `low` to before `high`.
template <class Function>
void forEachCell(const CheckedGroup& group, std::int64_t nodes, std::int64_t low, std::int64_t high,
                 Function function) {
  for (std::size_t block = 0; block < group.blocks.size(); ++block) {
    const IndexRange range = group.blocks[block];
    if (range.highest >= low && range.lowest < high) {
      forEachCellOfBlock(group, block, nodes, group.hasCollapsed, function);
    }
  }
}

template <class Function>
void forEachCell(const CheckedGroup& group, std::int64_t nodes, Function function) {
  forEachCell(group, nodes, 0, nodes, function);
}

/// The number of cells of a kind that something is known of.
[[nodiscard]] std::int64_t knownCells(const CheckedCells& cells, int shapeDimension) noexcept;

/// Gathers the mesh of a document: what nothing is known of, what does not belong where it is and
/// what may not be believed is told and not looked at further.
[[nodiscard]] CheckedMesh meshOf(const DocumentView& document, const Believed& believed,
                                 FindingList& findings);

// The checks of a mesh, in the order in which they are made. Each says what it found.

/// Coordinates that are not finite.
void checkFinite(const CheckedMesh& mesh, FindingList& findings);

/// Nodes at the same place.
///
/// @param share  the tolerance as a share of the diagonal of the bounding box; negative for none
void checkCoincidence(const CheckedMesh& mesh, double share, FindingList& findings);

/// Cells with the nodes of another one.
///
/// @param ofElements  whether elements are looked at, too
void checkDuplicates(const CheckedMesh& mesh, bool ofElements, FindingList& findings);

/// Faces and volume elements beside each other. Returns whether no two elements are on one side of
/// a face, as two sound ones with the same nodes are.
bool checkFaces(const CheckedMesh& mesh, int threads, FindingList& findings);

/// Faces of a surface, or of a mesh in the plane, beside each other.
void checkSurface(const CheckedMesh& mesh, FindingList& findings);

/// Names, texts, lengths, and what the flat functions lose.
void checkNames(const DocumentView& document, const Believed& believed, FindingList& findings);

/// The quality of the cells by shape.
[[nodiscard]] std::vector<CellQuality> measureQuality(const CheckedMesh& mesh, Kind kind);

}  // namespace orvml::detail
