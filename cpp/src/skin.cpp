#include <orvml/cell_faces.hpp>
#include <orvml/skin.hpp>

#include <algorithm>
#include <array>
#include <climits>
#include <numeric>
#include <span>
#include <utility>

namespace orvml {

namespace {

/// Cells of one form whose faces have consecutive numbers.
struct SolidGroup {
  CellGroup cells;
  std::vector<CellFace> faces;
  int firstCell = 0;
  std::uint64_t firstFace = 0;

  [[nodiscard]] std::uint64_t numberOfFaces() const {
    return static_cast<std::uint64_t>(cells.size()) * faces.size();
  }
};

std::vector<SolidGroup> solidGroupsOf(const CellsView& elements) {
  std::vector<SolidGroup> groups;
  int firstCell = 0;
  std::uint64_t firstFace = 0;
  for (const CellGroup& group : elements.groups()) {
    auto faces = facesOf({group.shape(), group.nodesPerCell()});
    if (!faces.empty() && group.size() > 0) {
      groups.push_back({group, std::move(faces), firstCell, firstFace});
      firstFace += groups.back().numberOfFaces();
    }
    firstCell += group.size();
  }
  return groups;
}

/// The corners of a face in ascending order, by which faces know each other.
using FaceKey = std::array<int, 4>;

FaceKey cornersOf(std::span<const int> cell, const CellFace& face) {
  FaceKey key;
  key.fill(INT_MAX);
  std::transform(face.nodes.begin(), face.nodes.begin() + static_cast<int>(face.corners),
                 key.begin(), [&](std::uint8_t place) { return cell[place]; });
  std::sort(key.begin(), key.end());
  return key;
}

/// The faces in lists, each by the least of its nodes.
class FacesAtNodes {
 public:
  FacesAtNodes(const CellsView& elements, int numberOfNodes)
      : groups_(solidGroupsOf(elements)), numberOfNodes_(numberOfNodes) {
    if (!groups_.empty()) {
      numberOfFaces_ = groups_.back().firstFace + groups_.back().numberOfFaces();
    }
    // No more lists than faces: a few bytes can claim billions of nodes. Lists are shared then.
    const auto nodes = static_cast<std::uint64_t>(std::max(numberOfNodes, 0));
    lists_ = std::max<std::uint64_t>(std::min(nodes, numberOfFaces_), 1);
    ends_.assign(lists_ + 1, 0);
    collect();
  }

  /// Which of the faces are there once; none of those of cells without faces.
  [[nodiscard]] std::vector<bool> single() const {
    std::vector<bool> isSingle(numberOfFaces_);
    std::vector<std::pair<FaceKey, std::uint64_t>> faces;
    for (std::size_t list = 0; list < lists_; ++list) {
      faces.clear();
      for (std::uint64_t i = list == 0 ? 0 : ends_[list - 1]; i < ends_[list]; ++i) {
        faces.emplace_back(keyOf(faces_[i]), faces_[i]);
      }
      std::sort(faces.begin(), faces.end());
      for (std::size_t i = 0; i < faces.size(); ++i) {
        isSingle[faces[i].second] = (i == 0 || faces[i - 1].first != faces[i].first) &&
                                    (i + 1 == faces.size() || faces[i + 1].first != faces[i].first);
      }
    }
    return isSingle;
  }

  [[nodiscard]] const std::vector<SolidGroup>& groups() const noexcept { return groups_; }

 private:
  [[nodiscard]] FaceKey keyOf(std::uint64_t number) const {
    const auto group = std::prev(std::upper_bound(
        groups_.begin(), groups_.end(), number,
        [](std::uint64_t wanted, const SolidGroup& other) { return wanted < other.firstFace; }));
    const std::uint64_t place = number - group->firstFace;
    const auto cell = static_cast<int>(place / group->faces.size());
    return cornersOf(group->cells[cell], group->faces[place % group->faces.size()]);
  }

  [[nodiscard]] bool hasFaces(std::span<const int> cell) const noexcept {
    return std::all_of(cell.begin(), cell.end(),
                       [&](int node) { return node >= 0 && node < numberOfNodes_; });
  }

  template <class Take>
  void forEachFace(const Take& take) const {
    for (const SolidGroup& group : groups_) {
      std::uint64_t number = group.firstFace;
      for (int cell = 0; cell < group.cells.size(); ++cell, number += group.faces.size()) {
        if (!hasFaces(group.cells[cell])) {
          continue;
        }
        for (std::size_t side = 0; side < group.faces.size(); ++side) {
          const int least = cornersOf(group.cells[cell], group.faces[side]).front();
          take(static_cast<std::uint64_t>(least) % lists_, number + side);
        }
      }
    }
  }

  /// Counts the faces of each list, then puts each into its place: `ends_` moves from the begin of
  /// each list to its end.
  void collect() {
    forEachFace([&](std::uint64_t list, std::uint64_t) { ++ends_[list + 1]; });
    std::partial_sum(ends_.begin(), ends_.end(), ends_.begin());
    faces_.resize(ends_.back());
    forEachFace([&](std::uint64_t list, std::uint64_t number) { faces_[ends_[list]++] = number; });
  }

  std::vector<SolidGroup> groups_;
  int numberOfNodes_;
  std::uint64_t numberOfFaces_ = 0;
  std::uint64_t lists_ = 0;
  std::vector<std::uint64_t> ends_;
  std::vector<std::uint64_t> faces_;
};

SkinFaces& facesOfForm(std::vector<SkinFaces>& skin, CellForm form) {
  const auto same = std::find_if(skin.begin(), skin.end(),
                                 [&](const SkinFaces& faces) { return faces.form == form; });
  return same == skin.end() ? skin.emplace_back(SkinFaces{form, {}, {}, {}}) : *same;
}

void addSkinFace(std::vector<SkinFaces>& skin, const SolidGroup& group, int cell,
                 std::size_t side) {
  const CellFace& face = group.faces[side];
  SkinFaces& faces = facesOfForm(skin, face.form);
  const std::span<const int> nodes = group.cells[cell];
  for (const std::uint8_t place : face.nodes) {
    faces.nodes.push_back(nodes[place]);
  }
  faces.elements.push_back(group.firstCell + cell);
  faces.sides.push_back(static_cast<std::uint8_t>(side));
}

}  // namespace

std::vector<SkinFaces> skinOf(const CellsView& elements, int numberOfNodes) {
  const FacesAtNodes faces(elements, numberOfNodes);
  const std::vector<bool> isSingle = faces.single();
  std::vector<SkinFaces> skin;
  for (const SolidGroup& group : faces.groups()) {
    std::uint64_t number = group.firstFace;
    for (int cell = 0; cell < group.cells.size(); ++cell) {
      for (std::size_t side = 0; side < group.faces.size(); ++side) {
        if (isSingle[number++]) {
          addSkinFace(skin, group, cell, side);
        }
      }
    }
  }
  return skin;
}

}  // namespace orvml
