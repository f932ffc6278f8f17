#include "check/checked_mesh.h"
#include "check/key_groups.h"
#include "check/rules.h"
#include "check/vec.h"

#include <algorithm>
#include <utility>

namespace orvml::detail {

namespace {

/// One side of an edge: its higher node, and whether the face goes from there to the lower one.
constexpr std::uint64_t sideOf(int higher, bool isBackwards) noexcept {
  return (static_cast<std::uint64_t>(higher) << 1U) | (isBackwards ? 1U : 0U);
}

/// Calls function(face, lowest node, side) with each edge of each face.
template <class Function>
void scanSides(const CheckedCells& faces, std::int64_t nodes, std::int64_t low, std::int64_t high,
               Function function) {
  for (const CheckedGroup& group : faces.groups) {
    if (group.facts == nullptr || group.facts->dimension != 2) {
      continue;
    }
    const int corners = group.facts->corners;
    forEachCell(group, nodes, low, high, [&](std::int64_t i, const int* cell) {
      int from = cell[corners - 1];
      for (int corner = 0; corner < corners; ++corner) {
        const int to = cell[corner];
        const int lowest = std::min(from, to);
        if (lowest >= low && lowest < high) {
          function(group.first + i, lowest, sideOf(std::max(from, to), from > to));
        }
        from = to;
      }
    });
  }
}

/// What is said of edges, with the keys of the first few.
struct FlaggedEdges {
  Places places;
  std::vector<FlaggedKey> keys;

  void add(std::int64_t lowest, std::uint64_t side, int most) {
    places.count(1);
    if (static_cast<int>(keys.size()) < most) {
      keys.push_back({lowest, side >> 1U});
    }
  }
};

struct EdgeTrouble {
  FlaggedEdges open;
  FlaggedEdges nonManifold;
  FlaggedEdges inconsistent;
};

/// Judges the sides of one edge, those that go forwards first.
void judge(std::int64_t lowest, std::span<const std::uint64_t> sides, int most,
           EdgeTrouble& trouble) {
  if (sides.size() == 1) {
    trouble.open.add(lowest, sides[0], most);
  } else if (sides.size() > 2) {
    trouble.nonManifold.add(lowest, sides[0], most);
  } else if (sides[0] == sides[1]) {
    trouble.inconsistent.add(lowest, sides[0], most);
  }
}

/// The faces at the first few edges.
void tellPlaces(const CheckedMesh& mesh, FlaggedEdges& flagged) {
  std::sort(flagged.keys.begin(), flagged.keys.end());
  scanSides(mesh.faces(), mesh.nodes, 0, mesh.nodes,
            [&](std::int64_t face, std::int64_t lowest, std::uint64_t side) {
              if (std::binary_search(flagged.keys.begin(), flagged.keys.end(),
                                     FlaggedKey{lowest, side >> 1U})) {
                flagged.places.tell(face);
              }
            });
}

void add(CheckCode code, const CheckedMesh& mesh, FlaggedEdges flagged, const char* what,
         FindingList& findings) {
  if (!flagged.places.empty()) {
    tellPlaces(mesh, flagged);
    const std::string sentence =
        "has " + countText(flagged.places.size(), "edge between nodes", "edges between nodes") +
        what;
    findings.add(ruleOf(code), mesh.faces().object, std::move(flagged.places), sentence);
  }
}

/// Six times the volume that the faces enclose, which is negative when they look inwards, as the
/// sum over the triangles of their fans.
double enclosedVolume(const CheckedMesh& mesh) noexcept {
  const Vec origin = pointAt(mesh.coordinates, 3, 0);
  double volume = 0.0;
  for (const CheckedGroup& group : mesh.faces().groups) {
    if (group.facts == nullptr || group.facts->dimension != 2) {
      continue;
    }
    forEachCell(group, mesh.nodes, [&](std::int64_t, const int* cell) {
      const Vec first = pointAt(mesh.coordinates, 3, cell[0]) - origin;
      Vec second = pointAt(mesh.coordinates, 3, cell[1]) - origin;
      for (int corner = 2; corner < group.facts->corners; ++corner) {
        const Vec third = pointAt(mesh.coordinates, 3, cell[corner]) - origin;
        volume += triple(first, second, third);
        second = third;
      }
    });
  }
  return volume;
}

EdgeTrouble findTrouble(const CheckedMesh& mesh, const FindingList& findings) {
  const Places none = findings.places(PlaceKind::face);
  EdgeTrouble trouble{{none, {}}, {none, {}}, {none, {}}};
  forEachBucket(
      mesh.nodes, mostKeys(knownCells(mesh.faces(), 2)),
      [&](std::int64_t low, std::int64_t high, auto emit) {
        scanSides(
            mesh.faces(), mesh.nodes, low, high,
            [&](std::int64_t, std::int64_t lowest, std::uint64_t side) { emit(lowest, side); });
      },
      [&](std::int64_t lowest, std::span<const std::uint64_t> sides) {
        for (std::size_t begin = 0; begin < sides.size();) {
          std::size_t end = begin + 1;
          while (end < sides.size() && sides[end] >> 1U == sides[begin] >> 1U) {
            ++end;
          }
          judge(lowest, sides.subspan(begin, end - begin), findings.mostPlaces(), trouble);
          begin = end;
        }
      });
  return trouble;
}

}  // namespace

void checkSurface(const CheckedMesh& mesh, FindingList& findings) {
  // Faces beside volume elements are parts of their boundary, which need not be whole.
  if (knownCells(mesh.faces(), 2) == 0 || knownCells(mesh.elements(), 3) != 0 ||
      !mesh.areNodesHeld()) {
    return;
  }
  EdgeTrouble trouble = findTrouble(mesh, findings);
  add(CheckCode::nonManifoldSurface, mesh, std::move(trouble.nonManifold),
      " that more than two faces share", findings);
  if (mesh.dimension != 3) {
    return;  // a mesh of the plane has an outline, and orientation is that of its cells
  }
  const bool isClosed = trouble.open.places.empty();
  const bool isConsistent = trouble.inconsistent.places.empty();
  if (mesh.faces().isWhole) {
    add(CheckCode::openSurface, mesh, std::move(trouble.open), " with one face only", findings);
  }
  add(CheckCode::inconsistentSurface, mesh, std::move(trouble.inconsistent),
      " whose faces look to different sides", findings);
  if (isClosed && isConsistent && mesh.coordinates != nullptr && enclosedVolume(mesh) < 0) {
    findings.add(ruleOf(CheckCode::inwardSurface), mesh.faces().object,
                 "is a closed surface whose faces look inwards");
  }
}

}  // namespace orvml::detail
