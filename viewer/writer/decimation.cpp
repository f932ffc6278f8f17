#include "decimation.h"

#include <orvml/cell_faces.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace orvml_report {

namespace {

using orvml::CellForm;
using orvml::Shape;
using Key = std::uint64_t;

/// The finest grid has so many cells along the longest side: three places have to fit into a key.
constexpr unsigned kBitsOfPlace = 21;
constexpr std::int64_t kFinest = std::int64_t{1} << kBitsOfPlace;

/// Corners that are told apart by something: triangles have three, whatever the last one is.
template <class Corner>
struct Ring {
  std::array<Corner, 4> corners = {};
  std::size_t size = 0;
};

/// The ring without corners that are the one before them; no corners where no area is left.
template <class Corner>
Ring<Corner> collapsed(const Ring<Corner>& ring) noexcept {
  Ring<Corner> left;
  if (ring.size == 4 &&
      (ring.corners[0] == ring.corners[2] || ring.corners[1] == ring.corners[3])) {
    return left;
  }
  for (std::size_t i = 0; i < ring.size; ++i) {
    if (ring.corners[i] != ring.corners[(i + 1) % ring.size]) {
      left.corners[left.size++] = ring.corners[i];
    }
  }
  left.size = left.size < 3 ? 0 : left.size;
  return left;
}

std::size_t cornersOf(const FlatFace& face) noexcept {
  return face.corners[3] == FlatFace::kNoCorner ? 3 : 4;
}

/// The nodes that the surfaces have, each once, scaled so that the longest side of their bounding
/// box is 1, and which of them each corner of each face is.
class UsedNodes {
 public:
  UsedNodes(std::span<const FlatSurface> surfaces, const NodePlaces& places) {
    std::vector<int> slots(static_cast<std::size_t>(places.size()), kUnused);
    for (const FlatSurface& surface : surfaces) {
      for (const FlatFace& face : surface) {
        for (std::size_t i = 0; i < cornersOf(face); ++i) {
          int& slot = slots[static_cast<std::size_t>(face.corners[i])];
          if (slot == kUnused) {
            slot = static_cast<int>(nodes_.size());
            nodes_.push_back(face.corners[i]);
          }
          corners_.push_back(slot);
        }
      }
    }
    scale(places);
  }

  [[nodiscard]] std::size_t size() const noexcept { return nodes_.size(); }
  [[nodiscard]] int operator[](std::size_t slot) const noexcept { return nodes_[slot]; }
  [[nodiscard]] const Point& place(std::size_t slot) const noexcept { return places_[slot]; }
  /// The slots of the corners of all faces, one after the other.
  [[nodiscard]] std::span<const int> corners() const noexcept { return corners_; }
  /// The length of the longest side, in the unit of the document.
  [[nodiscard]] double longest() const noexcept { return 2 * halfLongest_; }

  /// The cell that each lies in of a grid with so many cells along the longest side.
  void keysInto(std::vector<Key>& keys, std::int64_t cells) const {
    keys.resize(places_.size());
    const auto scale = static_cast<double>(cells);
    const auto last = static_cast<Key>(cells - 1);
    std::transform(places_.begin(), places_.end(), keys.begin(), [&](const Point& place) {
      Key key = 0;
      for (const double coordinate : place) {
        key = (key << kBitsOfPlace) | std::min(static_cast<Key>(coordinate * scale), last);
      }
      return key;
    });
  }

 private:
  static constexpr int kUnused = -1;

  /// Halves of coordinates have differences wherever they lie.
  void scale(const NodePlaces& places) {
    places_.reserve(nodes_.size());
    Point lowest;
    lowest.fill(std::numeric_limits<double>::infinity());
    for (const int node : nodes_) {
      Point place = places[node];
      for (std::size_t axis = 0; axis < place.size(); ++axis) {
        place[axis] /= 2;
        lowest[axis] = std::min(lowest[axis], place[axis]);
      }
      places_.push_back(place);
    }
    for (Point& place : places_) {
      for (std::size_t axis = 0; axis < place.size(); ++axis) {
        place[axis] -= lowest[axis];
        halfLongest_ = std::max(halfLongest_, place[axis]);
      }
    }
    for (Point& place : places_) {
      for (double& coordinate : place) {
        coordinate = halfLongest_ > 0 ? coordinate / halfLongest_ : 0;
      }
    }
  }

  std::vector<int> nodes_;
  std::vector<int> corners_;
  std::vector<Point> places_;
  double halfLongest_ = 0;
};

/// How many faces a grid leaves, but for those that are there already, which are few.
std::size_t survivors(std::span<const FlatSurface> surfaces, const UsedNodes& nodes,
                      std::span<const Key> keys) {
  std::size_t count = 0;
  const int* slot = nodes.corners().data();
  for (const FlatSurface& surface : surfaces) {
    for (const FlatFace& face : surface) {
      Ring<Key> ring;
      ring.size = cornersOf(face);
      for (std::size_t i = 0; i < ring.size; ++i) {
        ring.corners[i] = keys[static_cast<std::size_t>(*slot++)];
      }
      count += collapsed(ring).size > 0 ? 1U : 0U;
    }
  }
  return count;
}

double squaredDistance(const Point& a, const Point& b) noexcept {
  double sum = 0;
  for (std::size_t axis = 0; axis < a.size(); ++axis) {
    sum += (a[axis] - b[axis]) * (a[axis] - b[axis]);
  }
  return sum;
}

/// The one of some nodes that is next to their mean, the first one of several.
std::size_t nextToMean(const UsedNodes& nodes, std::span<const std::pair<Key, int>> cluster) {
  Point mean = {};
  for (const auto& [key, slot] : cluster) {
    for (std::size_t axis = 0; axis < mean.size(); ++axis) {
      mean[axis] +=
          nodes.place(static_cast<std::size_t>(slot))[axis] / static_cast<double>(cluster.size());
    }
  }
  const auto nearest =
      std::min_element(cluster.begin(), cluster.end(), [&](const auto& a, const auto& b) {
        return squaredDistance(nodes.place(static_cast<std::size_t>(a.second)), mean) <
               squaredDistance(nodes.place(static_cast<std::size_t>(b.second)), mean);
      });
  return static_cast<std::size_t>(nearest->second);
}

/// The node that stands for each one.
std::vector<int> standIns(const UsedNodes& nodes, std::span<const Key> keys) {
  std::vector<std::pair<Key, int>> sorted;
  sorted.reserve(keys.size());
  for (const Key key : keys) {
    sorted.emplace_back(key, static_cast<int>(sorted.size()));
  }
  std::sort(sorted.begin(), sorted.end());
  std::vector<int> standIns(keys.size());
  for (auto begin = sorted.begin(); begin != sorted.end();) {
    const auto end = std::find_if(begin, sorted.end(), [key = begin->first](const auto& other) {
      return other.first != key;
    });
    const int node = nodes[nextToMean(nodes, {begin, end})];
    std::for_each(begin, end,
                  [&](const auto& one) { standIns[static_cast<std::size_t>(one.second)] = node; });
    begin = end;
  }
  return standIns;
}

/// Leaves the first of the faces that have the same corners, in whatever order.
void dropRepeated(FlatSurface& surface) {
  std::vector<std::pair<std::array<int, 4>, std::size_t>> faces;
  faces.reserve(surface.size());
  for (const FlatFace& face : surface) {
    std::array<int, 4> corners = face.corners;
    std::sort(corners.begin(), corners.end());
    faces.emplace_back(corners, faces.size());
  }
  std::sort(faces.begin(), faces.end());
  std::vector<bool> isRepeated(surface.size());
  for (std::size_t i = 1; i < faces.size(); ++i) {
    isRepeated[faces[i].second] = faces[i].first == faces[i - 1].first;
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < surface.size(); ++i) {
    if (!isRepeated[i]) {
      surface[kept++] = surface[i];
    }
  }
  surface.resize(kept);
}

std::vector<FlatSurface> clustered(std::span<const FlatSurface> surfaces, const UsedNodes& nodes,
                                   std::span<const Key> keys) {
  const std::vector<int> standIn = standIns(nodes, keys);
  const int* slot = nodes.corners().data();
  std::vector<FlatSurface> made;
  for (const FlatSurface& surface : surfaces) {
    FlatSurface& left = made.emplace_back();
    for (const FlatFace& face : surface) {
      Ring<int> ring;
      ring.size = cornersOf(face);
      for (std::size_t i = 0; i < ring.size; ++i) {
        ring.corners[i] = standIn[static_cast<std::size_t>(*slot++)];
      }
      const Ring<int> corners = collapsed(ring);
      if (corners.size > 0) {
        FlatFace& one = left.emplace_back();
        std::copy_n(corners.corners.begin(), corners.size, one.corners.begin());
        one.number = face.number;
      }
    }
    dropRepeated(left);
  }
  return made;
}

std::size_t numberOfFaces(std::span<const FlatSurface> surfaces) noexcept {
  std::size_t count = 0;
  for (const FlatSurface& surface : surfaces) {
    count += surface.size();
  }
  return count;
}

/// Finds the grid that leaves the most faces, up to a limit. Their number grows with the square of
/// the fineness, nearly; where that leads nowhere the middle of what is left is tried.
std::int64_t finestGrid(std::span<const FlatSurface> surfaces, const UsedNodes& nodes,
                        std::size_t mostFaces) {
  constexpr double kAim = 0.93;
  constexpr double kNearEnough = 0.86;
  std::vector<Key> keys;
  std::int64_t coarse = 1;  // leaves none
  std::int64_t fine = kFinest + 1;
  const auto most = static_cast<double>(mostFaces);
  auto next = static_cast<std::int64_t>(std::clamp(std::sqrt(most / 4), 2.0, 1e6));
  for (int attempt = 0; fine - coarse > 1; ++attempt) {
    nodes.keysInto(keys, next);
    const auto left = static_cast<double>(survivors(surfaces, nodes, keys));
    (left > most ? fine : coarse) = next;
    if (left <= most && left >= kNearEnough * most) {
      break;
    }
    const double guess = static_cast<double>(next) * std::sqrt(kAim * most / std::max(left, 1.0));
    const double middle =
        std::sqrt(static_cast<double>(coarse) * static_cast<double>(std::min(fine, kFinest)));
    constexpr int kGuesses = 6;
    const double wanted = attempt < kGuesses ? guess : middle;
    next = std::clamp(static_cast<std::int64_t>(std::min(wanted, 1e7)), coarse + 1,
                      std::max(fine - 1, coarse + 1));
  }
  return coarse;
}

DrawnGroup groupOf(const FlatSurface& surface, std::size_t corners, std::vector<int>& numbers) {
  DrawnGroup group{
      {corners == 3 ? Shape::triangle : Shape::quadrilateral, static_cast<int>(corners)}, {}, {}};
  for (const FlatFace& face : surface) {
    if (cornersOf(face) == corners) {
      group.own.insert(group.own.end(), face.corners.begin(),
                       face.corners.begin() + static_cast<std::ptrdiff_t>(corners));
      numbers.push_back(face.number);
    }
  }
  return group;
}

}  // namespace

std::size_t numberOfFlatFaces(const DrawnCells& faces) {
  std::size_t count = 0;
  for (const DrawnGroup& group : faces.groups) {
    count += group.size() * orvml::linearPartsOf(group.form).size();
  }
  return count;
}

FlatSurface flattened(const DrawnCells& faces) {
  FlatSurface surface;
  surface.reserve(numberOfFlatFaces(faces));
  std::size_t number = 0;
  for (const DrawnGroup& group : faces.groups) {
    const auto& parts = orvml::linearPartsOf(group.form);
    const auto width = static_cast<std::size_t>(group.form.nodesPerCell);
    for (std::size_t cell = 0; cell < group.size(); ++cell, ++number) {
      const auto nodes = group.nodes().subspan(cell * width, width);
      for (const auto& part : parts) {
        FlatFace& face = surface.emplace_back();
        std::transform(part.begin(), part.end(), face.corners.begin(),
                       [&](std::uint8_t place) { return nodes[place]; });
        face.number = faces.numberOf(number);
      }
    }
  }
  return surface;
}

double decimate(std::span<FlatSurface> surfaces, const NodePlaces& places, std::size_t mostFaces) {
  constexpr double kFewest = 0.6;
  const UsedNodes nodes(surfaces, places);
  std::vector<FlatSurface> best(surfaces.size());
  std::size_t most = mostFaces;
  std::int64_t cells = 1;
  // Faces that are there already do not count above: the second grid makes up for them.
  for (int attempt = 0; attempt < 2; ++attempt) {
    const std::int64_t finer = finestGrid(surfaces, nodes, most);
    std::vector<Key> keys;
    nodes.keysInto(keys, finer);
    std::vector<FlatSurface> made = clustered(surfaces, nodes, keys);
    const std::size_t left = numberOfFaces(made);
    if (left > mostFaces || left < numberOfFaces(best)) {
      break;
    }
    best = std::move(made);
    cells = finer;
    if (static_cast<double>(left) >= kFewest * static_cast<double>(mostFaces) || left == 0) {
      break;
    }
    most = mostFaces * most / left;
  }
  std::move(best.begin(), best.end(), surfaces.begin());
  return nodes.longest() / static_cast<double>(cells);
}

DrawnCells cellsOf(const FlatSurface& surface, orvml::Entity entity, bool isSkin) {
  DrawnCells cells{entity, isSkin, {}, {}, {}};
  std::vector<int> numbers;
  numbers.reserve(surface.size());
  for (const std::size_t corners : {std::size_t{3}, std::size_t{4}}) {
    DrawnGroup group = groupOf(surface, corners, numbers);
    if (!group.own.empty()) {
      cells.groups.push_back(std::move(group));
    }
  }
  cells.numbers = std::move(numbers);
  return cells;
}

}  // namespace orvml_report
