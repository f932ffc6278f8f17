#include "convert/skin.h"

#include "convert/cell_faces.h"

#include <algorithm>
#include <array>
#include <climits>
#include <numeric>
#include <span>

namespace orvml_tool {

namespace {

/// Cells of one form whose faces have consecutive numbers.
struct SolidGroup {
  orvml::CellGroup cells;
  std::vector<CellFace> faces;
  std::uint64_t firstFace = 0;

  [[nodiscard]] std::uint64_t numberOfFaces() const {
    return static_cast<std::uint64_t>(cells.size()) * faces.size();
  }
};

/// The corners of a face in ascending order, by which faces know each other.
using FaceKey = std::array<int, 4>;

/// A list of the faces at each node, each with the least of its nodes alone.
class FacesAtNodes {
 public:
  FacesAtNodes(const orvml::CellsView& elements, int numberOfNodes)
      : ends_(static_cast<std::size_t>(numberOfNodes) + 1) {
    for (const orvml::CellGroup& group : elements.groups()) {
      auto faces = facesOf({group.shape(), group.nodesPerCell()});
      if (!faces.empty() && group.size() > 0) {
        groups_.push_back({group, std::move(faces), numberOfFaces_});
        numberOfFaces_ += groups_.back().numberOfFaces();
      }
    }
    collect();
  }

  /// Which of the faces are there once.
  [[nodiscard]] std::vector<bool> single() const {
    std::vector<bool> isSingle(numberOfFaces_);
    std::vector<std::pair<FaceKey, std::uint64_t>> faces;
    for (std::size_t node = 0; node + 1 < ends_.size(); ++node) {
      faces.clear();
      for (std::uint64_t i = node == 0 ? 0 : ends_[node - 1]; i < ends_[node]; ++i) {
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
  static FaceKey keyOf(std::span<const int> cell, const CellFace& face) {
    FaceKey key;
    key.fill(INT_MAX);
    std::transform(face.nodes.begin(), face.nodes.begin() + static_cast<int>(face.corners),
                   key.begin(), [&](std::uint8_t place) { return cell[place]; });
    std::sort(key.begin(), key.end());
    return key;
  }

  [[nodiscard]] FaceKey keyOf(std::uint64_t number) const {
    const auto group = std::prev(std::upper_bound(
        groups_.begin(), groups_.end(), number,
        [](std::uint64_t wanted, const SolidGroup& other) { return wanted < other.firstFace; }));
    const std::uint64_t place = number - group->firstFace;
    const auto cell = static_cast<int>(place / group->faces.size());
    return keyOf(group->cells[cell], group->faces[place % group->faces.size()]);
  }

  template <class Take>
  void forEachFace(const Take& take) const {
    for (const SolidGroup& group : groups_) {
      std::uint64_t number = group.firstFace;
      for (int cell = 0; cell < group.cells.size(); ++cell) {
        for (const CellFace& face : group.faces) {
          take(static_cast<std::size_t>(keyOf(group.cells[cell], face).front()), number++);
        }
      }
    }
  }

  /// Counts the faces of each node, then puts each into its place: `ends_` moves from the begin of
  /// each list to its end.
  void collect() {
    forEachFace([&](std::size_t node, std::uint64_t) { ++ends_[node + 1]; });
    std::partial_sum(ends_.begin(), ends_.end(), ends_.begin());
    faces_.resize(numberOfFaces_);
    forEachFace([&](std::size_t node, std::uint64_t number) { faces_[ends_[node]++] = number; });
  }

  std::vector<SolidGroup> groups_;
  std::uint64_t numberOfFaces_ = 0;
  std::vector<std::uint64_t> ends_;
  std::vector<std::uint64_t> faces_;
};

void addSkinFace(std::vector<SkinFaces>& skin, std::span<const int> cell, const CellFace& face) {
  auto same = std::find_if(skin.begin(), skin.end(),
                           [&](const SkinFaces& faces) { return faces.form == face.form; });
  if (same == skin.end()) {
    same = skin.insert(skin.end(), {face.form, {}});
  }
  for (const std::uint8_t place : face.nodes) {
    same->nodes.push_back(cell[place]);
  }
}

}  // namespace

std::vector<SkinFaces> skinOf(const orvml::CellsView& elements, int numberOfNodes) {
  const FacesAtNodes faces(elements, numberOfNodes);
  const std::vector<bool> isSingle = faces.single();
  std::vector<SkinFaces> skin;
  for (const SolidGroup& group : faces.groups()) {
    std::uint64_t number = group.firstFace;
    for (int cell = 0; cell < group.cells.size(); ++cell) {
      for (const CellFace& face : group.faces) {
        if (isSingle[number++]) {
          addSkinFace(skin, group.cells[cell], face);
        }
      }
    }
  }
  return skin;
}

}  // namespace orvml_tool
