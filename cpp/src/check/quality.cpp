#include "check/checked_mesh.h"
#include "check/quality_measures.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvml::detail {

namespace {

/// Collects the values of one measure.
class Distribution {
 public:
  explicit Distribution(const Measure& measure) : measure_(measure) {}

  void add(std::int64_t cell, double value) {
    lowest_ = std::min(lowest_, value);
    highest_ = std::max(highest_, value);
    values_.push_back(static_cast<float>(value));
    if (worst_.size() < kWorst || isWorse(value, worst_.back().value)) {
      const auto place =
          std::upper_bound(worst_.begin(), worst_.end(), value,
                           [this](double a, const MeasuredCell& b) { return isWorse(a, b.value); });
      worst_.insert(place, {cell, value});
      worst_.resize(std::min(worst_.size(), kWorst));
    }
  }

  [[nodiscard]] std::int64_t size() const noexcept {
    return static_cast<std::int64_t>(values_.size());
  }

  [[nodiscard]] QualityFigure figure() {
    QualityFigure figure;
    figure.name = measure_.name;
    figure.minimum = lowest_;
    figure.maximum = highest_;
    auto from = values_.begin();
    for (std::size_t i = 0; i < kQualityPercentiles.size(); ++i) {
      const auto at = values_.begin() + rankOf(kQualityPercentiles[i]);
      std::nth_element(from, at, values_.end());
      figure.percentiles[i] = static_cast<double>(*at);
      from = at;
    }
    figure.worst = std::move(worst_);
    return figure;
  }

 private:
  static constexpr std::size_t kWorst = 10;

  [[nodiscard]] bool isWorse(double a, double b) const noexcept {
    return measure_.isLowWorse ? a < b : a > b;
  }

  /// The position of the value that so many percent of all do not exceed.
  [[nodiscard]] std::ptrdiff_t rankOf(int percent) const noexcept {
    const std::int64_t count = (size() * percent + 99) / 100;
    return static_cast<std::ptrdiff_t>(std::max<std::int64_t>(count, 1) - 1);
  }

  const Measure& measure_;
  double lowest_ = std::numeric_limits<double>::infinity();
  double highest_ = -std::numeric_limits<double>::infinity();
  std::vector<float> values_;
  std::vector<MeasuredCell> worst_;
};

/// The corners of a cell; false when one of them has a coordinate that is not finite.
bool gather(const CheckedMesh& mesh, const int* cell, int corners, Vec* x) noexcept {
  bool areFinite = true;
  for (int corner = 0; corner < corners; ++corner) {
    x[corner] = pointAt(mesh.coordinates, mesh.dimension, cell[corner]);
    areFinite = areFinite && std::isfinite(x[corner].x) && std::isfinite(x[corner].y) &&
                std::isfinite(x[corner].z);
  }
  return areFinite;
}

Distribution distributionOf(const CheckedMesh& mesh, const CheckedCells& cells, Shape shape,
                            const Measure& measure) {
  constexpr int kMostCorners = 8;
  constexpr double kUnmeasurable = 1e30;
  Distribution distribution(measure);
  std::array<Vec, kMostCorners> x;
  for (const CheckedGroup& group : cells.groups) {
    if (group.facts == nullptr || group.facts->shape != shape) {
      continue;
    }
    forEachCell(group, mesh.nodes, [&](std::int64_t i, const int* cell) {
      if (gather(mesh, cell, group.facts->corners, x.data())) {
        const double value = measure.of(x.data());
        distribution.add(group.first + i, std::isfinite(value) ? value : kUnmeasurable);
      }
    });
  }
  return distribution;
}

}  // namespace

std::vector<CellQuality> measureQuality(const CheckedMesh& mesh, Kind kind) {
  std::vector<CellQuality> all;
  for (const CheckedCells& cells : mesh.kinds) {
    for (const Shape shape : {Shape::triangle, Shape::quadrilateral, Shape::tetrahedron,
                              Shape::hexahedron, Shape::prism, Shape::pyramid}) {
      CellQuality quality{kind, cells.entity, shape, 0, {}};
      for (const Measure& measure : measuresOf(shape)) {
        Distribution distribution = distributionOf(mesh, cells, shape, measure);
        quality.cells = distribution.size();
        if (quality.cells != 0) {
          quality.figures.push_back(distribution.figure());
        }
      }
      if (quality.cells != 0) {
        all.push_back(std::move(quality));
      }
    }
  }
  return all;
}

}  // namespace orvml::detail
