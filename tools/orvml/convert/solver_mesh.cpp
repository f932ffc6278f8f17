#include "convert/solver_mesh.h"

#include "console.h"
#include "messages.h"

#include <algorithm>
#include <climits>

namespace orvml_tool {

using orvml::CellForm;

SolverMesh::SolverMesh(const orvml::DocumentView& document,
                       std::span<const orvml::Entity> containers, std::string_view format,
                       const std::vector<SolverCell>& cells, ConversionReport& changes)
    : document_(document), numberOfOwnNodes_(document.nodes().size()) {
  const auto numberOf = [&](CellForm form) -> std::optional<ForeignCell> {
    const auto found = std::find_if(cells.begin(), cells.end(),
                                    [&](const SolverCell& cell) { return cell.form == form; });
    return found == cells.end()
               ? std::nullopt
               : std::optional(ForeignCell{static_cast<int>(found - cells.begin()), {}, {}});
  };
  for (const PlacedGroup& placed : placedGroups(document, containers, format, numberOf, changes)) {
    const std::size_t madeBefore = madePoints_.size();
    addGroup(placed, cells[static_cast<std::size_t>(placed.cell.type)]);
    if (placed.group.size() > 0) {
      report(groups_.back(), format, madeBefore, changes);
    }
  }
}

std::array<double, 3> SolverMesh::pointOf(std::int64_t node) const noexcept {
  const auto index = static_cast<std::size_t>(node);
  if (node >= numberOfOwnNodes_) {
    return madePoints_[static_cast<std::size_t>(node - numberOfOwnNodes_)];
  }
  const auto width = static_cast<std::size_t>(document_.dimension());
  std::array<double, 3> point = {};
  std::copy_n(document_.nodes().coordinates().data() + index * width, width, point.data());
  return point;
}

void SolverMesh::addGroup(const PlacedGroup& placed, const SolverCell& cell) {
  Group group = {placed, &cell, numberOfElements_ + 1, {}};
  for (int i = 0; !cell.made.empty() && i < placed.group.size(); ++i) {
    for (const MadeNode& node : cell.made) {
      group.madeNodes.push_back(made(placed.group[i], node));
    }
  }
  numberOfElements_ += group.elements();
  groups_.push_back(std::move(group));
}

/// The middle of an edge lies half-way, that of a quadrilateral where its eight nodes have it.
int SolverMesh::made(std::span<const int> cell, const MadeNode& node) {
  const bool isOfEdge = node.place == MadeNode::Place::middleOfEdge;
  const std::size_t corners = isOfEdge ? 2 : 4;
  std::vector<int> key;
  std::array<double, 3> middle = {};
  for (std::size_t i = 0; i < node.nodes.size(); ++i) {
    const int index = cell[node.nodes[i]];
    const double weight = isOfEdge || i >= corners ? 0.5 : -0.25;
    const auto point = pointOf(index);
    for (std::size_t axis = 0; axis < point.size(); ++axis) {
      middle[axis] += weight * point[axis];
    }
    if (i < corners) {
      key.push_back(index);
    }
  }
  std::sort(key.begin(), key.end());
  const std::int64_t next = numberOfNodes();
  if (next >= INT_MAX) {
    throw Refusal("there are more nodes than 32 bits count", "leave cells out with --only");
  }
  const auto [found, isNew] = madeBetween_.try_emplace(std::move(key), static_cast<int>(next));
  if (isNew) {
    madePoints_.push_back(middle);
  }
  return found->second;
}

void SolverMesh::report(const Group& group, std::string_view format, std::size_t madeBefore,
                        ConversionReport& changes) const {
  const std::int64_t cells = group.placed.group.size();
  const std::string object = pathOf(document_, group.placed.container);
  const std::string has = "has " + countedForm(cells, group.cell->form) + ", ";
  const std::string name(group.cell->name);
  if (group.elementsPerCell() > 1) {
    changes.add(orvml::Fate::split, object, cells,
                has + "each of which becomes " + shown(group.elementsPerCell()) + " " + name +
                    " in " + std::string(format));
  }
  if (const std::size_t left = group.cell->nodesLeftOut(); left > 0) {
    changes.add(orvml::Fate::approximated, object, cells,
                has + "which become " + name + " without the " +
                    counted(static_cast<std::int64_t>(left), "inner node") + " of each");
  }
  if (!group.cell->made.empty()) {
    const auto made = static_cast<std::int64_t>(madePoints_.size() - madeBefore);
    changes.add(orvml::Fate::padded, object, made,
                has + "which become " + name + " and get " + counted(made, "new node") +
                    " in the middle of edges or faces");
  }
}

}  // namespace orvml_tool
