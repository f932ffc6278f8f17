// What is found of each cell by itself.
#include "check/cell_faults.h"
#include "check/rules.h"

#include <algorithm>
#include <string>
#include <utility>

namespace orvml::detail {

namespace {

/// Cells of a piece stay in a core's cache, and those of a large mesh are many more pieces than
/// there are threads.
constexpr std::size_t kBlocksPerPiece = 32;

std::size_t blocksOf(const CheckedGroup& group) noexcept {
  const std::int64_t cells = group.cells.nodeIndices().empty() ? 0 : group.cells.size();
  return static_cast<std::size_t>((cells + kCellsPerBlock - 1) / kCellsPerBlock);
}

void look(const CheckedMesh& mesh, const BlockRange& blocks, CellFaults& faults, UsedNodes& used) {
  const std::int64_t before = faults.repeated.size();
  checkIndices(blocks, mesh.nodes, faults, used);
  if (mesh.coordinates != nullptr && blocks.group.facts != nullptr) {
    checkJacobians(mesh, blocks, faults.repeated.size() != before, faults);
  }
}

void tellIndicesOf(CheckedCells& cells, std::int64_t nodes, CellFaults& faults,
                   FindingList& findings) {
  cells.isWhole = cells.isWhole && faults.outOfRange.empty() && faults.repeated.empty();
  const std::string range =
      nodes == 0 ? ", and there are no nodes" : " outside 0 to " + std::to_string(nodes - 1);
  const std::string out = "has " + countText(faults.outOfRange.size(), faults.outOfRange.kind()) +
                          " with node indices" + range;
  findings.add(ruleOf(CheckCode::indexOutOfRange), cells.object, std::move(faults.outOfRange), out);
  const std::string twice = "has " + countText(faults.repeated.size(), faults.repeated.kind()) +
                            " with a node that is named twice";
  findings.add(ruleOf(CheckCode::repeatedNode), cells.object, std::move(faults.repeated), twice);
}

void tellUnused(const UsedNodes& used, const std::string& object, FindingList& findings) {
  Places unused = findings.places(PlaceKind::node);
  for (std::size_t node = 0; node < used.size(); ++node) {
    if (used[node] == 0) {
      unused.add(static_cast<std::int64_t>(node));
    }
  }
  const std::string sentence =
      "has " + countText(unused.size(), "node", "nodes") + " that no cell names";
  findings.add(ruleOf(CheckCode::unusedNode), object, std::move(unused), sentence);
}

bool tellFormsOf(const CheckedCells& cells, CellFaults& faults, FindingList& findings) {
  bool areSound = true;
  const auto add = [&](CheckCode code, Places& found, const std::string& what) {
    areSound = areSound && found.empty();
    const std::string sentence = "has " + countText(found.size(), found.kind()) + " " + what;
    findings.add(ruleOf(code), cells.object, std::move(found), sentence);
  };
  add(CheckCode::zeroSizeCell, faults.withoutSize, "without size");
  add(CheckCode::invertedCell, faults.inverted, "inside out");
  add(CheckCode::foldedCell, faults.folded, "inside out in a part");
  return areSound;
}

}  // namespace

void CellFaults::append(const CellFaults& later) {
  outOfRange.append(later.outOfRange);
  repeated.append(later.repeated);
  withoutSize.append(later.withoutSize);
  inverted.append(later.inverted);
  folded.append(later.folded);
}

CellSweep::CellSweep(CheckedMesh& mesh, const Believed& believed, const FindingList& findings)
    : mesh_(mesh) {
  bool areAllBelieved = true;
  bool isAnyCell = false;
  for (std::size_t kind = 0; kind < mesh.kinds.size(); ++kind) {
    addPieces(kind, findings);
    areAllBelieved = areAllBelieved && believed.holdsCells(mesh.kinds[kind].entity);
    isAnyCell = isAnyCell || !mesh.kinds[kind].groups.empty();
  }
  // A document without any cell is a cloud of points, of which none is unused.
  if (areAllBelieved && isAnyCell && mesh.areNodesHeld()) {
    used_.resize(static_cast<std::size_t>(mesh.nodes));
  }
}

void CellSweep::addPieces(std::size_t kind, const FindingList& findings) {
  CheckedCells& cells = mesh_.kinds[kind];
  std::size_t blocks = 0;
  for (CheckedGroup& group : cells.groups) {
    group.blocks.resize(blocksOf(group));
    blocks += group.blocks.size();
    ends_[kind].push_back(blocks);
  }
  const CellFaults none(placeKindOf(cells.entity), findings);
  faults_.push_back(none);
  for (std::size_t begin = 0; begin < blocks; begin += kBlocksPerPiece) {
    pieces_.push_back({kind, begin, std::min(begin + kBlocksPerPiece, blocks), none});
  }
}

void CellSweep::look(std::size_t number) {
  Piece& piece = pieces_[number];
  const std::vector<std::size_t>& ends = ends_[piece.kind];
  auto end = std::upper_bound(ends.begin(), ends.end(), piece.begin);
  for (std::size_t begin = piece.begin; begin < piece.end; ++end) {
    CheckedGroup& group =
        mesh_.kinds[piece.kind].groups[static_cast<std::size_t>(end - ends.begin())];
    const std::size_t first = *end - group.blocks.size();
    const std::size_t last = std::min(*end, piece.end);
    detail::look(mesh_, {group, begin - first, last - first}, piece.faults, used_);
    begin = last;
  }
}

void CellSweep::gather() {
  for (const Piece& piece : pieces_) {
    faults_[piece.kind].append(piece.faults);
  }
  pieces_.clear();
}

void CellSweep::tellIndices(FindingList& findings) {
  gather();
  for (std::size_t kind = 0; kind < mesh_.kinds.size(); ++kind) {
    tellIndicesOf(mesh_.kinds[kind], mesh_.nodes, faults_[kind], findings);
  }
  tellUnused(used_, mesh_.nodesObject, findings);
  used_ = UsedNodes();
}

bool CellSweep::tellForms(FindingList& findings) {
  bool areAllSound = mesh_.coordinates != nullptr;
  for (std::size_t kind = 0; kind < mesh_.kinds.size(); ++kind) {
    areAllSound = tellFormsOf(mesh_.kinds[kind], faults_[kind], findings) && areAllSound;
  }
  return areAllSound;
}

}  // namespace orvml::detail
