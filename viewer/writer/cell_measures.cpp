#include "cell_measures.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <future>

namespace orvml_report {

namespace {

using orvml::CellMeasure;
using orvml::Entity;

struct Task {
  Entity entity;
  CellMeasure measure;
};

std::vector<Task> tasksOf(const StoredMesh& stored) {
  std::vector<Task> tasks;
  for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
    if (stored.of(entity).cells().size() == 0) {
      continue;
    }
    if (entity != Entity::edges) {
      for (const CellMeasure measure : {CellMeasure::scaledJacobian, CellMeasure::aspectRatio,
                                        CellMeasure::smallestAngle, CellMeasure::largestAngle}) {
        tasks.push_back({entity, measure});
      }
    }
    tasks.push_back({entity, CellMeasure::size});
  }
  return tasks;
}

MeasuredCells measure(const Task& task, const orvml::NodesView& nodes, const StoredMesh& stored,
                      const DrawnMesh& mesh) {
  const StoredCells& cells = stored.of(task.entity);
  std::vector<double> values = orvml::measureCells(nodes, cells.cells(), task.measure);
  MeasuredCells measured{task.entity, task.measure, {}, {}};
  if (const DrawnCells* drawn = mesh.find(task.entity)) {
    const std::size_t count = drawn->size();
    measured.drawn.reserve(count);
    for (std::size_t cell = 0; cell < count; ++cell) {
      measured.drawn.push_back(asFloat(values[cells.indexOf(drawn->numberOf(cell))]));
    }
  }
  measured.histogram = histogramOf(values, task.measure, cells.claimed());
  return measured;
}

/// Where the bins of finite values end.
double endOfBins(std::vector<double>::iterator begin, std::vector<double>::iterator end,
                 CellMeasure measure) {
  constexpr double kShare = 0.995;
  constexpr double kOfNoSize = 1e30;
  if (measure != CellMeasure::aspectRatio) {
    return *std::max_element(begin, end);
  }
  end = std::partition(begin, end, [](double value) { return value < kOfNoSize; });
  if (begin == end) {
    return kOfNoSize;
  }
  const double greatest = *std::max_element(begin, end);
  const auto place = static_cast<double>(end - begin - 1) * kShare;
  const auto almost = begin + static_cast<std::ptrdiff_t>(place);
  std::nth_element(begin, almost, end);
  return greatest > 2 * *almost ? *almost : greatest;
}

/// Halves have a difference wherever they are.
std::size_t binOf(double value, double minimum, double maximum, std::size_t bins) noexcept {
  if (value >= maximum) {
    return maximum > minimum || value > maximum ? bins - 1 : 0;
  }
  const double share = (value / 2 - minimum / 2) / (maximum / 2 - minimum / 2);
  return std::min(static_cast<std::size_t>(share * static_cast<double>(bins)), bins - 1);
}

}  // namespace

std::optional<Histogram> histogramOf(std::vector<double>& values, CellMeasure measure,
                                     std::int64_t uncounted) {
  const auto end = std::partition(values.begin(), values.end(),
                                  [](double value) { return std::isfinite(value); });
  if (end == values.begin()) {
    return std::nullopt;
  }
  Histogram histogram;
  histogram.minimum = *std::min_element(values.begin(), end);
  histogram.maximum = endOfBins(values.begin(), end, measure);
  // What is left by rounding is no distribution.
  constexpr double kRounding = 1e-6;
  const double greatest = std::max(std::abs(histogram.minimum), std::abs(histogram.maximum));
  const bool isConstant = histogram.maximum - histogram.minimum <= kRounding * greatest &&
                          *std::max_element(values.begin(), end) <= histogram.maximum;
  if (isConstant) {
    std::fill(values.begin(), end, histogram.minimum);
    histogram.maximum = histogram.minimum;
  }
  std::for_each(values.begin(), end, [&](double value) {
    ++histogram.counts[binOf(value, histogram.minimum, histogram.maximum, histogram.counts.size())];
    histogram.beyond += value > histogram.maximum ? 1 : 0;
  });
  histogram.cells = static_cast<std::int64_t>(values.size()) + uncounted;
  histogram.without = histogram.cells - (end - values.begin());
  return histogram;
}

std::string_view nameOf(const MeasuredCells& measured) noexcept {
  if (measured.measure != CellMeasure::size) {
    return orvml::name(measured.measure);
  }
  return measured.entity == Entity::edges   ? "length"
         : measured.entity == Entity::faces ? "area"
                                            : "volume";
}

std::vector<MeasuredCells> measuredCells(const orvml::NodesView& nodes, const StoredMesh& stored,
                                         const DrawnMesh& mesh, int threads) {
  const std::vector<Task> tasks = tasksOf(stored);
  std::vector<MeasuredCells> measured(tasks.size());
  std::atomic<std::size_t> next = 0;
  const auto measureSome = [&] {
    for (std::size_t task = next++; task < tasks.size(); task = next++) {
      measured[task] = measure(tasks[task], nodes, stored, mesh);
    }
  };
  std::vector<std::future<void>> others;
  for (int i = 1; i < threads && others.size() + 1 < tasks.size(); ++i) {
    others.push_back(std::async(std::launch::async, measureSome));
  }
  measureSome();
  for (auto& other : others) {
    other.get();
  }
  return measured;
}

}  // namespace orvml_report
