#include "check/checked_mesh.h"
#include "check/rules.h"

#include <algorithm>
#include <limits>
#include <utility>

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

void findRanges(CheckedGroup& group) {
  const std::int64_t cells = group.cells.nodeIndices().empty() ? 0 : group.cells.size();
  group.blocks.reserve(static_cast<std::size_t>((cells + kCellsPerBlock - 1) / kCellsPerBlock));
  for (std::int64_t begin = 0; begin < cells; begin += kCellsPerBlock) {
    const std::int64_t end = std::min<std::int64_t>(begin + kCellsPerBlock, cells);
    group.blocks.push_back(rangeOf(group.cell(begin), group.cell(end)));
  }
}

void checkRange(const CheckedMesh& mesh, const CheckedGroup& group, Places& outOfRange) {
  for (std::size_t block = 0; block < group.blocks.size(); ++block) {
    if (group.blocks[block].lowest >= 0 && group.blocks[block].highest < mesh.nodes) {
      continue;
    }
    const std::int64_t begin = static_cast<std::int64_t>(block) * kCellsPerBlock;
    const std::int64_t end = std::min<std::int64_t>(begin + kCellsPerBlock, group.cells.size());
    for (std::int64_t i = begin; i < end; ++i) {
      const IndexRange range = rangeOf(group.cell(i), group.cell(i) + group.width());
      if (range.lowest < 0 || range.highest >= mesh.nodes) {
        outOfRange.add(group.first + i);
      }
    }
  }
}

/// A width that the compiler knows makes that twice as fast; 0 stands for any.
template <int Width>
void checkRepeated(const CheckedGroup& group, std::int64_t nodes, Places& repeated) {
  const int width = Width == 0 ? group.width() : Width;
  forEachCell(group, nodes, [&](std::int64_t i, const int* cell) {
    if (isCollapsed(cell, width)) {
      repeated.add(group.first + i);
    }
  });
}

void checkRepeated(const CheckedGroup& group, std::int64_t nodes, Places& repeated) {
  switch (group.width()) {
    case 3:
      return checkRepeated<3>(group, nodes, repeated);
    case 4:
      return checkRepeated<4>(group, nodes, repeated);
    case 6:
      return checkRepeated<6>(group, nodes, repeated);
    case 8:
      return checkRepeated<8>(group, nodes, repeated);
    default:
      return checkRepeated<0>(group, nodes, repeated);
  }
}

/// Nodes of cells that are left out are used all the same.
void markUsed(const CheckedGroup& group, std::vector<std::uint8_t>& used) {
  for (const int node : group.cells.nodeIndices()) {
    if (static_cast<std::size_t>(node) < used.size()) {  // a negative one is not
      used[static_cast<std::size_t>(node)] = 1;
    }
  }
}

/// A document without any cell is a cloud of points, of which none is unused.
void checkUnused(const CheckedMesh& mesh, FindingList& findings) {
  std::vector<std::uint8_t> used;
  for (const CheckedCells& cells : mesh.kinds) {
    for (const CheckedGroup& group : cells.groups) {
      used.resize(static_cast<std::size_t>(mesh.nodes));
      markUsed(group, used);
    }
  }
  Places unused = findings.places(PlaceKind::node);
  for (std::size_t node = 0; node < used.size(); ++node) {
    if (used[node] == 0) {
      unused.add(static_cast<std::int64_t>(node));
    }
  }
  const std::string sentence =
      "has " + countText(unused.size(), "node", "nodes") + " that no cell names";
  findings.add(ruleOf(CheckCode::unusedNode), mesh.nodesObject, std::move(unused), sentence);
}

void checkCells(CheckedCells& cells, const CheckedMesh& mesh, FindingList& findings) {
  Places outOfRange = findings.places(placeKindOf(cells.entity));
  Places repeated = findings.places(placeKindOf(cells.entity));
  for (CheckedGroup& group : cells.groups) {
    findRanges(group);
    checkRange(mesh, group, outOfRange);
    if (group.facts != nullptr) {
      const std::int64_t before = repeated.size();
      checkRepeated(group, mesh.nodes, repeated);
      group.hasCollapsed = repeated.size() != before;
    }
  }
  cells.isWhole = cells.isWhole && outOfRange.empty() && repeated.empty();
  const std::string range = mesh.nodes == 0 ? ", and there are no nodes"
                                            : " outside 0 to " + std::to_string(mesh.nodes - 1);
  const std::string out =
      "has " + countText(outOfRange.size(), outOfRange.kind()) + " with node indices" + range;
  findings.add(ruleOf(CheckCode::indexOutOfRange), cells.object, std::move(outOfRange), out);
  const std::string twice =
      "has " + countText(repeated.size(), repeated.kind()) + " with a node that is named twice";
  findings.add(ruleOf(CheckCode::repeatedNode), cells.object, std::move(repeated), twice);
}

}  // namespace

void checkIndices(CheckedMesh& mesh, const Believed& believed, FindingList& findings) {
  bool areAllBelieved = true;
  for (CheckedCells& cells : mesh.kinds) {
    checkCells(cells, mesh, findings);
    areAllBelieved = areAllBelieved && believed.holdsCells(cells.entity);
  }
  if (areAllBelieved && mesh.areNodesHeld()) {
    checkUnused(mesh, findings);
  }
}

}  // namespace orvml::detail
