#include <orvml/cell_measures.hpp>

#include "check/quality_measures.h"
#include "check/shape_facts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace orvml {

namespace {

using detail::Vec;

constexpr std::size_t kMostCorners = 8;
constexpr double kUnmeasurable = 1e30;
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

/// Null where the measure is not defined.
detail::NumberOfCorners measureOf(Shape shape, CellMeasure measure) noexcept {
  if (measure == CellMeasure::size) {
    return detail::sizeOf(shape);
  }
  const auto measures = detail::measuresOf(shape);
  const auto index = static_cast<std::size_t>(measure);
  return index < measures.size() ? measures[index].of : nullptr;
}

/// Measures the cells of one group.
class GroupMeasure {
 public:
  GroupMeasure(const NodesView& nodes, const CellGroup& group, CellMeasure measure) noexcept
      : nodes_(nodes), group_(group), facts_(detail::factsOf(group.shape())) {
    if (facts_ != nullptr && detail::hasNodeCount(*facts_, group.nodesPerCell()) &&
        !nodes.coordinates().empty() && (nodes.dimension() == 2 || nodes.dimension() == 3)) {
      of_ = measureOf(group.shape(), measure);
    }
    // A size that is beyond all numbers is none; a ratio to no size is the worst.
    none_ = measure == CellMeasure::size ? kNone : kUnmeasurable;
  }

  [[nodiscard]] double of(int cell) const {
    std::array<Vec, kMostCorners> corners;
    if (of_ == nullptr || !gather(cell, corners.data())) {
      return kNone;
    }
    const double value = of_(corners.data());
    return std::isfinite(value) ? value : none_;
  }

 private:
  /// The corners of a cell; false when one of them is no node, or has no finite coordinates.
  [[nodiscard]] bool gather(int cell, Vec* corners) const {
    const auto indices = group_[cell].first(static_cast<std::size_t>(facts_->corners));
    for (const int node : indices) {
      if (node < 0 || node >= nodes_.size()) {
        return false;
      }
      const Vec x = detail::pointAt(nodes_.coordinates().data(), nodes_.dimension(), node);
      if (!std::isfinite(x.x) || !std::isfinite(x.y) || !std::isfinite(x.z)) {
        return false;
      }
      *corners++ = x;
    }
    return true;
  }

  const NodesView& nodes_;
  const CellGroup& group_;
  const detail::ShapeFacts* facts_;
  detail::NumberOfCorners of_ = nullptr;
  double none_ = kNone;
};

}  // namespace

std::string_view name(CellMeasure measure) noexcept {
  constexpr std::array<std::string_view, 5> kNames = {"scaled Jacobian", "aspect ratio",
                                                      "smallest angle", "largest angle", "size"};
  const auto index = static_cast<std::size_t>(measure);
  return index < kNames.size() ? kNames[index] : "unknown";
}

std::vector<double> measureCells(const NodesView& nodes, const CellsView& cells,
                                 CellMeasure measure) {
  for (const CellGroup& group : cells.groups()) {
    if (group.size() != 0 && group.nodesPerCell() == 0) {
      throw Error(Code::valuesTooFew, "cells whose nodes are not known cannot be measured");
    }
  }
  std::vector<double> values;
  values.reserve(static_cast<std::size_t>(cells.size()));
  for (const CellGroup& group : cells.groups()) {
    const GroupMeasure measured(nodes, group, measure);
    for (int cell = 0; cell < group.size(); ++cell) {
      values.push_back(measured.of(cell));
    }
  }
  return values;
}

}  // namespace orvml
