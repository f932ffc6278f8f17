#include "agreement.h"
#include "curve.h"
#include "partition.h"
#include "routes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace orvml::parallel::detail {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The smallest box around all nodes: its lower corner, and the length of its longest side.
struct Box {
  std::array<double, 3> corner = {};
  double side = 0;
};

Box boxOf(const Communicator& comm, const SliceNodes& nodes) {
  std::array<double, 6> mine;
  mine.fill(-kInfinity);  // the greatest of what is below with the sign turned, then of what is
  const auto width = static_cast<std::size_t>(nodes.dimension);
  for (std::size_t i = 0; i < nodes.coordinates.size(); ++i) {
    const double value = nodes.coordinates[i];
    if (std::isfinite(value)) {
      mine[i % width] = std::max(mine[i % width], -value);
      mine[3 + i % width] = std::max(mine[3 + i % width], value);
    }
  }
  std::array<double, 6> all = mine;
  MPI_Allreduce(mine.data(), all.data(), 6, MPI_DOUBLE, MPI_MAX, comm.get());
  Box box;
  for (std::size_t i = 0; i < width; ++i) {
    box.corner[i] = -all[i];
    box.side = std::max(box.side, all[3 + i] + all[i]);
  }
  return box;
}

/// Where the middles of the cells of this rank lie on the curve.
class CellPlaces {
 public:
  CellPlaces(const SliceCells& cells, std::span<const int> nodes,
             std::span<const double> coordinates, int dimension, const Box& box)
      : nodes_(nodes), coordinates_(coordinates), dimension_(dimension), box_(box) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      places_.push_back(placeOf(cells.nodesOf(i)));
    }
  }
  [[nodiscard]] std::vector<std::uint64_t> take() noexcept { return std::move(places_); }

 private:
  [[nodiscard]] std::uint64_t placeOf(std::span<const int> cell) const {
    const auto width = static_cast<std::size_t>(dimension_);
    std::array<double, 3> middle = {};
    for (const int node : cell) {
      const auto found = std::lower_bound(nodes_.begin(), nodes_.end(), node);
      const std::size_t first = static_cast<std::size_t>(found - nodes_.begin()) * width;
      for (std::size_t i = 0; i < width; ++i) {
        middle[i] += (coordinates_[first + i] - box_.corner[i]) / box_.side;
      }
    }
    for (double& coordinate : middle) {
      coordinate /= static_cast<double>(cell.size());
    }
    return placeOnCurve(std::span<const double>(middle.data(), width));
  }

  std::span<const int> nodes_;
  std::span<const double> coordinates_;
  int dimension_;
  Box box_;
  std::vector<std::uint64_t> places_;
};

/// Halves the curve until it is known where the part of each rank begins: the number of steps, and
/// of messages, depends on the curve alone.
///
/// @param sorted  places of this rank's cells, ascending
std::vector<std::uint64_t> splittersOf(const Communicator& comm,
                                       const std::vector<std::uint64_t>& sorted) {
  constexpr int kBits = 63;
  const auto count = static_cast<std::size_t>(comm.size()) - 1;
  const std::int64_t total = comm.sum(static_cast<std::int64_t>(sorted.size()));
  std::vector<std::uint64_t> low;
  std::vector<std::uint64_t> high;
  std::vector<std::int64_t> below;
  together(comm, [&] {
    low.resize(count, 0);
    high.resize(count, std::uint64_t{1} << static_cast<unsigned>(kBits));
    below.resize(count);
  });
  for (int step = 0; step <= kBits; ++step) {
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint64_t middle = low[i] + (high[i] - low[i]) / 2;
      below[i] = std::lower_bound(sorted.begin(), sorted.end(), middle) - sorted.begin();
    }
    comm.addUp(below);
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint64_t middle = low[i] + (high[i] - low[i]) / 2;
      const std::int64_t wanted = total * (static_cast<std::int64_t>(i) + 1) / comm.size();
      if (below[i] >= wanted) {
        high[i] = middle;
      } else {
        low[i] = std::min(middle + 1, high[i]);
      }
    }
  }
  return high;
}

}  // namespace

std::vector<int> partitionByCurve(const Communicator& comm, const SliceCells& cells,
                                  const SliceNodes& nodes) {
  const Box box = boxOf(comm, nodes);
  std::vector<int> used;
  std::vector<double> coordinates;
  together(comm, [&] {
    used = sortedOnce({cells.nodeIndices().begin(), cells.nodeIndices().end()});
    coordinates.resize(used.size() * static_cast<std::size_t>(nodes.dimension));
  });
  const Routes routes = routesToWanted(comm, nodes.offsets, used);
  carry<double>(comm, routes, nodes.coordinates, coordinates, nodes.dimension);
  std::vector<std::uint64_t> places;
  std::vector<std::uint64_t> sorted;
  together(comm, [&] {
    places = CellPlaces(cells, used, coordinates, nodes.dimension, box).take();
    sorted = places;
    std::sort(sorted.begin(), sorted.end());
  });
  const std::vector<std::uint64_t> splitters = splittersOf(comm, sorted);
  std::vector<int> ranks;
  together(comm, [&] {
    for (const std::uint64_t place : places) {
      ranks.push_back(static_cast<int>(std::upper_bound(splitters.begin(), splitters.end(), place) -
                                       splitters.begin()));
    }
  });
  return ranks;
}

}  // namespace orvml::parallel::detail
