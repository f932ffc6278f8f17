#include "drawable_cells.h"

#include <orvml/cell_faces.hpp>

#include "words.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvml_report {

namespace {

using orvml::CellForm;
using orvml::CellGroup;
using orvml::Entity;

bool isDrawable(Entity entity, CellForm form) {
  switch (entity) {
    case Entity::edges:
      return form.shape == orvml::Shape::line && orvml::vtkCellType(form).has_value();
    case Entity::faces:
      return !orvml::linearPartsOf(form).empty();
    case Entity::elements:
      // Meshes of the plane may have their triangles here.
      return !orvml::facesOf(form).empty() || !orvml::linearPartsOf(form).empty();
    default:
      return false;
  }
}

/// How many cells are not drawn, for each reason.
struct Undrawn {
  std::int64_t withoutNodes = 0;
  std::int64_t ofOtherShape = 0;
  std::int64_t withoutNode = 0;
  std::int64_t withoutPlace = 0;
};

/// Looks at one cell, and counts the reason why it cannot be drawn.
bool canBeDrawn(std::span<const int> cell, const NodePlaces& places, Undrawn& undrawn) {
  const auto has = [&](int node) { return places.has(node); };
  if (!std::all_of(cell.begin(), cell.end(), has)) {
    ++undrawn.withoutNode;
    return false;
  }
  const auto isPlaced = [&](int node) { return places.isPlaced(node); };
  if (!places.areAllPlaced() && !std::all_of(cell.begin(), cell.end(), isPlaced)) {
    ++undrawn.withoutPlace;
    return false;
  }
  return true;
}

/// Which cells of a group can be drawn.
std::vector<int> drawnOf(const CellGroup& group, const NodePlaces& places, Undrawn& undrawn) {
  std::vector<int> drawn;
  drawn.reserve(static_cast<std::size_t>(group.size()));
  for (int cell = 0; cell < group.size(); ++cell) {
    if (canBeDrawn(group[cell], places, undrawn)) {
      drawn.push_back(cell);
    }
  }
  return drawn;
}

DrawnGroup drawnGroup(const CellGroup& group, std::span<const int> drawn) {
  DrawnGroup made{{group.shape(), group.nodesPerCell()}, {}, {}};
  if (drawn.size() == static_cast<std::size_t>(group.size())) {
    made.lent = group.nodeIndices();
    return made;
  }
  for (const int cell : drawn) {
    const auto nodes = group[cell];
    made.own.insert(made.own.end(), nodes.begin(), nodes.end());
  }
  return made;
}

void addReason(std::string& reasons, std::int64_t count, const char* reason) {
  if (count > 0) {
    reasons += (reasons.empty() ? " " : ", ") + grouped(count) + " " + reason;
  }
}

void tell(Entity entity, const Undrawn& undrawn, std::vector<std::string>& notes) {
  const std::int64_t count =
      undrawn.withoutNodes + undrawn.ofOtherShape + undrawn.withoutNode + undrawn.withoutPlace;
  if (count == 0) {
    return;
  }
  std::string reasons;
  addReason(reasons, undrawn.withoutNode, "with a node index that is out of range");
  addReason(reasons, undrawn.withoutPlace, "with a node whose coordinates are not finite");
  addReason(reasons, undrawn.ofOtherShape, "of a shape that has no picture here");
  addReason(reasons, undrawn.withoutNodes, "of which the number alone is known");
  notes.push_back(counted(count, nameOfOne(entity)) + (count == 1 ? " is" : " are") +
                  " not drawn:" + reasons + ".");
}

}  // namespace

NodePlaces::NodePlaces(const orvml::NodesView& nodes)
    : coordinates_(nodes.coordinates()),
      size_(nodes.size()),
      dimension_(static_cast<std::size_t>(nodes.dimension())) {
  for (int node = 0; !coordinates_.empty() && node < nodes.size(); ++node) {
    numberPlaced_ += isPlaced(node) ? 1 : 0;
  }
}

bool NodePlaces::isPlaced(int node) const noexcept {
  if (!has(node) || coordinates_.empty()) {
    return false;
  }
  const auto point = coordinates_.subspan(static_cast<std::size_t>(node) * dimension_, dimension_);
  return std::all_of(point.begin(), point.end(), [](double value) { return std::isfinite(value); });
}

Point NodePlaces::operator[](int node) const noexcept {
  Point point = {};
  const auto from = coordinates_.subspan(static_cast<std::size_t>(node) * dimension_, dimension_);
  std::copy_n(from.begin(), std::min(from.size(), point.size()), point.begin());
  return point;
}

std::size_t DrawnCells::size() const noexcept {
  std::size_t count = 0;
  for (const DrawnGroup& group : groups) {
    count += group.size();
  }
  return count;
}

DrawnCells drawableCells(Entity entity, const StoredCells& stored, const NodePlaces& places,
                         std::vector<std::string>& notes) {
  DrawnCells cells{entity, false, {}, {}, {}};
  std::vector<int> numbers;
  Undrawn undrawn;
  undrawn.withoutNodes = stored.claimed();
  for (const StoredGroup& group : stored.groups()) {
    if (!isDrawable(entity, {group.cells.shape(), group.cells.nodesPerCell()})) {
      undrawn.ofOtherShape += group.cells.size();
      continue;
    }
    const std::vector<int> drawn = drawnOf(group.cells, places, undrawn);
    if (!drawn.empty()) {
      cells.groups.push_back(drawnGroup(group.cells, drawn));
      std::transform(drawn.begin(), drawn.end(), std::back_inserter(numbers),
                     [&](int cell) { return group.firstNumber + cell; });
    }
  }
  tell(entity, undrawn, notes);
  // Ascending numbers of which the last one is the last are 0, 1, 2, ...
  if (!numbers.empty() && numbers.back() != static_cast<int>(numbers.size()) - 1) {
    cells.numbers = std::move(numbers);
  }
  return cells;
}

}  // namespace orvml_report
