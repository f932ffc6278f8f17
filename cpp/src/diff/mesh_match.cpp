#include "diff/mesh_match.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <utility>

namespace orvml::detail {

namespace {

constexpr int kNone = -1;

/// Views may be of nodes of any dimension; meshes have 2 or 3.
constexpr int kMostDimensions = 3;

/// Mixes a word into a hash; the constants are those of splitmix64 (Steele, Lea, Flood: "Fast
/// splittable pseudorandom number generators", 2014).
std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) noexcept {
  hash += 0x9e3779b97f4a7c15U + word;
  hash = (hash ^ (hash >> 30U)) * 0xbf58476d1ce4e5b9U;
  hash = (hash ^ (hash >> 27U)) * 0x94d049bb133111ebU;
  return hash ^ (hash >> 31U);
}

/// Items found again by a 64-bit key, and taken one by one. Keys may coincide: who asks compares
/// what has the key.
class KeyedItems {
 public:
  void reserve(std::size_t count) { items_.reserve(count); }
  void add(std::uint64_t key, int item) { items_.emplace_back(key, item); }
  void sort() {
    std::sort(items_.begin(), items_.end());
    nextFree_.resize(items_.size() + 1);
    std::iota(nextFree_.begin(), nextFree_.end(), std::size_t{0});
  }

  /// Visits the items of a key that nobody has taken, with their positions, until one visit returns
  /// true.
  template <class Visit>
  void visitFree(std::uint64_t key, Visit visit) {
    const auto first = std::lower_bound(items_.begin(), items_.end(), std::pair(key, kLowest));
    auto position = freeFrom(static_cast<std::size_t>(first - items_.begin()));
    while (position < items_.size() && items_[position].first == key &&
           !visit(items_[position].second, position)) {
      position = freeFrom(position + 1);
    }
  }

  void take(std::size_t position) noexcept { nextFree_[position] = position + 1; }

 private:
  static constexpr int kLowest = std::numeric_limits<int>::min();

  /// Halves the way on each visit: a thousand equal items are not walked a thousand times.
  std::size_t freeFrom(std::size_t position) noexcept {
    while (nextFree_[position] != position) {
      nextFree_[position] = nextFree_[nextFree_[position]];
      position = nextFree_[position];
    }
    return position;
  }

  std::vector<std::pair<std::uint64_t, int>> items_;
  std::vector<std::size_t> nextFree_;  // the item itself while it is free
};

/// Space cut into cubes, so that what lies within the distance of a point lies in its cube or in
/// those that its surroundings touch.
class Cubes {
 public:
  /// @param dimension  of the points, at most kMostDimensions
  Cubes(double distance, int dimension) : distance_(distance), dimension_(dimension) {}

  [[nodiscard]] std::uint64_t keyOf(std::span<const double> point) const noexcept {
    std::uint64_t key = 0;
    for (int i = 0; i < dimension_; ++i) {
      key = mixed(key, placeOf(point[static_cast<std::size_t>(i)]));
    }
    return key;
  }

  /// Visits the keys of all cubes that hold points within the distance, most often one.
  template <class Visit>
  void visitAround(std::span<const double> point, Visit visit) const {
    const unsigned corners = 1U << static_cast<unsigned>(dimension_);
    std::array<std::uint64_t, 1U << kMostDimensions> seen = {};
    std::size_t count = 0;
    for (unsigned corner = 0; corner < corners; ++corner) {
      std::array<double, kMostDimensions> moved = {};
      for (int i = 0; i < dimension_; ++i) {
        const bool isUp = (corner >> static_cast<unsigned>(i)) % 2 == 1;
        moved[static_cast<std::size_t>(i)] =
            point[static_cast<std::size_t>(i)] + (isUp ? distance_ : -distance_);
      }
      const std::uint64_t key = keyOf(moved);
      if (std::find(seen.begin(), seen.begin() + count, key) == seen.begin() + count) {
        seen[count++] = key;
        visit(key);
      }
    }
  }

 private:
  /// Without a distance only equal values are in one place; the two zeros are equal.
  [[nodiscard]] std::uint64_t placeOf(double value) const noexcept {
    constexpr double kCubePerDistance = 8.0;
    if (distance_ == 0.0 || !std::isfinite(value)) {
      return std::bit_cast<std::uint64_t>(value + 0.0);
    }
    return std::bit_cast<std::uint64_t>(std::floor(value / (kCubePerDistance * distance_)) + 0.0);
  }

  double distance_;
  int dimension_;
};

double squaredDistance(std::span<const double> a, std::span<const double> b) noexcept {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    sum += (a[i] - b[i]) * (a[i] - b[i]);
  }
  return sum;
}

void count(EntityMatch& match, std::int64_t sizeOfSecond) {
  MatchedEntity& counts = match.counts;
  for (std::size_t i = 0; i < match.numbering.size(); ++i) {
    const int other = match.numbering[i];
    counts.matched += other == kNone ? 0 : 1;
    counts.isRenumbered =
        counts.isRenumbered || (other != kNone && static_cast<std::size_t>(other) != i);
  }
  counts.onlyInFirst = static_cast<std::int64_t>(match.numbering.size()) - counts.matched;
  counts.onlyInSecond = sizeOfSecond - counts.matched;
}

bool areInSpace(const NodesView& nodes) noexcept {
  return !nodes.coordinates().empty() && nodes.dimension() <= kMostDimensions;
}

/// Takes the nearest node of the second mesh that is free.
int takeNearest(const Cubes& cubes, KeyedItems& items, const NodesView& second,
                std::span<const double> point, double distance) {
  int nearest = kNone;
  std::size_t taken = 0;
  double least = distance * distance;
  cubes.visitAround(point, [&](std::uint64_t key) {
    items.visitFree(key, [&](int node, std::size_t position) {
      const double squared = squaredDistance(point, second[node]);
      if (nearest == kNone ? squared <= least : squared < least) {
        nearest = node;
        taken = position;
        least = squared;
      }
      return nearest != kNone && least == 0.0;
    });
  });
  if (nearest != kNone) {
    items.take(taken);
  }
  return nearest;
}

EntityMatch matchNodes(const NodesView& first, const NodesView& second, double distance) {
  EntityMatch match;
  match.numbering.assign(static_cast<std::size_t>(first.size()), kNone);
  if (first.dimension() == second.dimension() && areInSpace(first) && areInSpace(second)) {
    const Cubes cubes(distance, first.dimension());
    KeyedItems items;
    items.reserve(static_cast<std::size_t>(second.size()));
    for (int node = 0; node < second.size(); ++node) {
      items.add(cubes.keyOf(second[node]), node);
    }
    items.sort();
    for (int node = 0; node < first.size(); ++node) {
      match.numbering[static_cast<std::size_t>(node)] =
          takeNearest(cubes, items, second, first[node], distance);
    }
  }
  count(match, second.size());
  return match;
}

/// Cells by what makes them the same: their shape and their nodes, in the numbers of the second
/// mesh and ascending.
class CellKeys {
 public:
  /// @param numbering  of the nodes; empty when they have the numbers of the second mesh
  explicit CellKeys(std::span<const int> numbering) : numbering_(numbering) {}

  /// Prepares a cell; false where one of its nodes has no place in the second mesh.
  bool take(const CellGroup& group, std::span<const int> cell) {
    shape_ = group.shape();
    nodes_.assign(cell.begin(), cell.end());
    for (int& node : nodes_) {
      if (!numbering_.empty()) {
        const bool isThere = node >= 0 && static_cast<std::size_t>(node) < numbering_.size();
        node = isThere ? numbering_[static_cast<std::size_t>(node)] : kNone;
      }
      if (node < 0) {
        return false;
      }
    }
    std::sort(nodes_.begin(), nodes_.end());
    return true;
  }

  [[nodiscard]] std::uint64_t key() const noexcept {
    return std::accumulate(
        nodes_.begin(), nodes_.end(), mixed(static_cast<std::uint64_t>(shape_), nodes_.size()),
        [](std::uint64_t hash, int node) { return mixed(hash, static_cast<std::uint64_t>(node)); });
  }

  [[nodiscard]] bool isSameAs(const CellKeys& other) const noexcept {
    return shape_ == other.shape_ && nodes_ == other.nodes_;
  }

 private:
  std::span<const int> numbering_;
  Shape shape_ = Shape::none;
  std::vector<int> nodes_;
};

/// Calls with each cell that has nodes, its group and its number among all cells of its kind.
template <class Visit>
void forEachCell(const CellsView& cells, Visit visit) {
  int number = 0;
  for (const CellGroup& group : cells.groups()) {
    for (int i = 0; i < group.size(); ++i, ++number) {
      if (group.nodesPerCell() > 0) {
        visit(group, group[i], number);
      }
    }
  }
}

/// A cell by its number.
class CellPlaces {
 public:
  explicit CellPlaces(const CellsView& cells) : cells_(cells) {
    int next = 0;
    for (const CellGroup& group : cells.groups()) {
      begins_.push_back(next);
      next += group.size();
    }
  }

  bool takeInto(CellKeys& keys, int number) const {
    const auto after = std::upper_bound(begins_.begin(), begins_.end(), number);
    const auto group = static_cast<std::size_t>(after - begins_.begin() - 1);
    return keys.take(cells_.groups()[group], cells_.groups()[group][number - begins_[group]]);
  }

 private:
  CellsView cells_;
  std::vector<int> begins_;
};

EntityMatch matchCells(const CellsView& first, const CellsView& second,
                       std::span<const int> nodeNumbering) {
  EntityMatch match;
  match.numbering.assign(static_cast<std::size_t>(first.size()), kNone);
  CellKeys candidate({});
  KeyedItems items;
  items.reserve(static_cast<std::size_t>(second.size()));
  forEachCell(second, [&](const CellGroup& group, std::span<const int> cell, int number) {
    if (candidate.take(group, cell)) {
      items.add(candidate.key(), number);
    }
  });
  items.sort();
  const CellPlaces places(second);
  CellKeys wanted(nodeNumbering);
  forEachCell(first, [&](const CellGroup& group, std::span<const int> cell, int number) {
    int& found = match.numbering[static_cast<std::size_t>(number)];
    if (nodeNumbering.empty() || !wanted.take(group, cell)) {
      return;
    }
    items.visitFree(wanted.key(), [&](int other, std::size_t position) {
      if (places.takeInto(candidate, other) && candidate.isSameAs(wanted)) {
        found = other;
        items.take(position);
      }
      return found != kNone;
    });
  });
  count(match, second.size());
  return match;
}

}  // namespace

const EntityMatch& MeshMatch::of(Entity entity) const noexcept {
  switch (entity) {
    case Entity::edges:
      return edges;
    case Entity::faces:
      return faces;
    case Entity::elements:
      return elements;
    default:
      return nodes;
  }
}

MeshMatch matchMeshes(const DocumentView& first, const DocumentView& second, double distance) {
  MeshMatch match;
  match.nodes = matchNodes(first.nodes(), second.nodes(), distance);
  const std::span<const int> numbering = match.nodes.numbering;
  match.edges = matchCells(first.edges(), second.edges(), numbering);
  match.faces = matchCells(first.faces(), second.faces(), numbering);
  match.elements = matchCells(first.elements(), second.elements(), numbering);
  return match;
}

}  // namespace orvml::detail
