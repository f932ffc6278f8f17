#include "agreement.h"
#include "curve.h"
#include "partition.h"
#include "routes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <tuple>

namespace orvml::parallel::detail {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Point = std::array<double, 3>;

/// The middles of the cells of this rank; no numbers for a cell without nodes.
///
/// @param nodes        the nodes that the cells use, ascending
/// @param coordinates  theirs
std::vector<Point> middlesOf(const SliceCells& cells, std::span<const int> nodes,
                             std::span<const double> coordinates, int dimension) {
  const auto width = static_cast<std::size_t>(dimension);
  std::vector<Point> middles;
  middles.reserve(cells.size());
  for (std::size_t cell = 0; cell < cells.size(); ++cell) {
    Point middle = {};
    const std::span<const int> indices = cells.nodesOf(cell);
    for (const int node : indices) {
      const auto found = std::lower_bound(nodes.begin(), nodes.end(), node);
      const std::size_t first = static_cast<std::size_t>(found - nodes.begin()) * width;
      for (std::size_t i = 0; i < width; ++i) {
        middle[i] += coordinates[first + i] / static_cast<double>(indices.size());
      }
    }
    if (indices.empty()) {
      middle.fill(std::numeric_limits<double>::quiet_NaN());
    }
    middles.push_back(middle);
  }
  return middles;
}

/// The smallest box around the middles of all cells: its lower corner, and the length of its
/// longest side. Nodes that no cell uses would only make it larger.
struct Box {
  Point corner = {};
  double side = 0;
};

Box boxOf(const Communicator& comm, const std::vector<Point>& middles) {
  std::array<double, 6> greatest;  // of the coordinates with the sign turned, then of themselves
  greatest.fill(-kInfinity);
  for (const Point& middle : middles) {
    for (std::size_t i = 0; i < middle.size(); ++i) {
      if (std::isfinite(middle[i])) {
        greatest[i] = std::max(greatest[i], -middle[i]);
        greatest[3 + i] = std::max(greatest[3 + i], middle[i]);
      }
    }
  }
  MPI_Allreduce(MPI_IN_PLACE, greatest.data(), 6, MPI_DOUBLE, MPI_MAX, comm.get());
  Box box;
  for (std::size_t i = 0; i < box.corner.size(); ++i) {
    box.corner[i] = -greatest[i];
    box.side = std::max(box.side, greatest[3 + i] + greatest[i]);
  }
  return box;
}

std::uint64_t placeInBox(const Point& middle, const Box& box, int dimension) {
  Point unit = {};
  for (std::size_t i = 0; i < unit.size(); ++i) {
    unit[i] = (middle[i] - box.corner[i]) / box.side;
  }
  return placeOnCurve(std::span<const double>(unit.data(), static_cast<std::size_t>(dimension)));
}

/// A cell of this rank's slice and where it lies on the curve.
struct PlacedCell {
  std::uint64_t place;
  int index;
};

std::vector<PlacedCell> placedCells(const std::vector<Point>& middles, const Box& box,
                                    int dimension) {
  std::vector<PlacedCell> cells;
  cells.reserve(middles.size());
  for (const Point& middle : middles) {
    cells.push_back({placeInBox(middle, box, dimension), static_cast<int>(cells.size())});
  }
  std::sort(cells.begin(), cells.end(), [](const PlacedCell& a, const PlacedCell& b) {
    return std::tie(a.place, a.index) < std::tie(b.place, b.index);
  });
  return cells;
}

/// How many of some sorted cells lie before a place, or up to it.
std::int64_t numberBefore(std::span<const PlacedCell> cells, std::uint64_t place) {
  return std::partition_point(cells.begin(), cells.end(),
                              [place](const PlacedCell& cell) { return cell.place < place; }) -
         cells.begin();
}
std::int64_t numberUpTo(std::span<const PlacedCell> cells, std::uint64_t place) {
  return std::partition_point(cells.begin(), cells.end(),
                              [place](const PlacedCell& cell) { return cell.place <= place; }) -
         cells.begin();
}

/// Cuts the curve into as many parts as there are ranks, with numbers of cells in them that differ
/// by one at most. Of cells in the same place, those of lower ranks come first.
class CurveCuts {
 public:
  /// @param cells  of this rank, in the order of the curve; borrowed
  explicit CurveCuts(std::span<const PlacedCell> cells, int ranks)
      : cells_(cells),
        places_(static_cast<std::size_t>(ranks) - 1),
        ends_(places_.size(), kEndOfCurve),
        counts_(places_.size()),
        before_(places_.size()),
        wanted_(places_.size()) {}

  /// Where the parts of the ranks but the first begin among this rank's cells. Collective; nothing
  /// in it can fail.
  [[nodiscard]] std::span<const std::int64_t> find(const Communicator& comm) noexcept {
    const std::int64_t total = comm.sum(static_cast<std::int64_t>(cells_.size()));
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
      wanted_[i] = total * (static_cast<std::int64_t>(i) + 1) / comm.size();
    }
    for (int bit = 0; bit < kBits; ++bit) {
      halve(comm);
    }
    shareOutTies(comm);
    return counts_;
  }

 private:
  static constexpr int kBits = 63;
  static constexpr std::uint64_t kEndOfCurve = (std::uint64_t{1} << 63U) - 1;

  /// Halves the stretch of the curve in which each part ends: the number of steps, and of messages,
  /// depends on the curve alone. A part ends at the first place up to which there are enough cells.
  void halve(const Communicator& comm) noexcept {
    for (std::size_t i = 0; i < counts_.size(); ++i) {
      counts_[i] = numberUpTo(cells_, middle(i));
    }
    comm.addUp(counts_);
    for (std::size_t i = 0; i < counts_.size(); ++i) {
      if (counts_[i] >= wanted_[i]) {
        ends_[i] = middle(i);
      } else {
        places_[i] = middle(i) + 1;
      }
    }
  }

  /// Of the cells in the very place where a part ends, as many as it still wants belong to it.
  void shareOutTies(const Communicator& comm) noexcept {
    for (std::size_t i = 0; i < counts_.size(); ++i) {
      counts_[i] = numberBefore(cells_, places_[i]);
      before_[i] = numberUpTo(cells_, places_[i]) - counts_[i];
    }
    comm.addUp(counts_);
    comm.addUpBefore(before_);
    for (std::size_t i = 0; i < counts_.size(); ++i) {
      const std::int64_t first = numberBefore(cells_, places_[i]);
      const std::int64_t ties = numberUpTo(cells_, places_[i]) - first;
      const std::int64_t wanted = wanted_[i] - counts_[i] - before_[i];
      counts_[i] = first + std::clamp<std::int64_t>(wanted, 0, ties);
    }
  }

  [[nodiscard]] std::uint64_t middle(std::size_t i) const noexcept {
    return places_[i] + (ends_[i] - places_[i]) / 2;
  }

  std::span<const PlacedCell> cells_;
  std::vector<std::uint64_t> places_;  // from here on each part may end,
  std::vector<std::uint64_t> ends_;    // up to here
  std::vector<std::int64_t> counts_;
  std::vector<std::int64_t> before_;  // of the ranks before this one
  std::vector<std::int64_t> wanted_;  // cells in each part and those before it
};

}  // namespace

std::vector<int> partitionByCurve(const Communicator& comm, const SliceCells& cells,
                                  const SliceNodes& nodes) {
  std::vector<int> used;
  std::vector<double> coordinates;
  together(comm, [&] {
    used = sortedOnce({cells.nodeIndices().begin(), cells.nodeIndices().end()});
    coordinates.resize(used.size() * static_cast<std::size_t>(nodes.dimension));
  });
  const Routes routes = routesToWanted(comm, nodes.offsets, used);
  carry<double>(comm, routes, nodes.coordinates, coordinates, nodes.dimension);
  std::vector<Point> middles;
  together(comm, [&] { middles = middlesOf(cells, used, coordinates, nodes.dimension); });
  const Box box = boxOf(comm, middles);
  std::vector<PlacedCell> placed;
  std::optional<CurveCuts> cuts;
  std::vector<int> ranks;
  together(comm, [&] {
    placed = placedCells(middles, box, nodes.dimension);
    cuts.emplace(placed, comm.size());
    ranks.resize(cells.size());
  });
  const std::span<const std::int64_t> begins = cuts->find(comm);
  auto next = begins.begin();
  for (std::size_t i = 0; i < placed.size(); ++i) {
    next = std::find_if(next, begins.end(),
                        [i](std::int64_t begin) { return begin > static_cast<std::int64_t>(i); });
    ranks[static_cast<std::size_t>(placed[i].index)] = static_cast<int>(next - begins.begin());
  }
  return ranks;
}

}  // namespace orvml::parallel::detail
