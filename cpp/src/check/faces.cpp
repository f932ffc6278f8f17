#include "check/checked_mesh.h"
#include "check/face_scan.h"
#include "check/key_groups.h"
#include "check/rules.h"

#include <algorithm>
#include <utility>

namespace orvml::detail {

namespace {

constexpr std::uint64_t hashOfNode(int node) noexcept {
  return scattered(static_cast<std::uint64_t>(node));
}

/// Calls function(kind, cell, key) with the faces of the volume elements and of the document.
template <class Function>
void scanFaces(const CheckedMesh& mesh, NodeRange nodes, Function function) {
  for (const CheckedCells* cells : {&mesh.elements(), &mesh.faces()}) {
    const PlaceKind kind = placeKindOf(cells->entity);
    for (const CheckedGroup& group : cells->groups) {
      for (std::size_t i = 0; group.facts != nullptr && i < group.blocks.size(); ++i) {
        const IndexRange range = group.blocks[i];
        if (range.highest >= nodes.low && range.lowest < nodes.high) {
          scanBlock<hashOfNode>(
              {&group, i, range, kind}, mesh.nodes, nodes,
              [&](std::int64_t cell, const FaceKey& face) { function(kind, cell, face); });
        }
      }
    }
  }
}

/// What is said of faces, with the keys of the first few.
struct FlaggedFaces {
  Places places;
  std::vector<FlaggedKey> keys;

  void add(std::int64_t bucket, std::uint64_t key, int most) {
    places.count(1);
    if (static_cast<int>(keys.size()) < most) {
      keys.push_back({bucket, key & ~kFlags});
    }
  }
};

struct FaceTrouble {
  bool isAnyOnOneSide = false;  // two elements of a face
  FlaggedFaces withoutElement;
  FlaggedFaces sharedByMany;
  FlaggedFaces inward;
};

/// Judges the faces with one set of corners, whose keys differ in their flags alone.
void judge(std::int64_t bucket, std::span<const std::uint64_t> same, int most,
           FaceTrouble& trouble) {
  std::size_t ofElements = 0;
  while (ofElements < same.size() && (same[ofElements] & kIsDocumentFace) == 0) {
    ++ofElements;
  }
  trouble.isAnyOnOneSide |= ofElements > 1 && same[0] == same[1];
  if (ofElements > 2) {
    trouble.sharedByMany.add(bucket, same[0], most);
  }
  for (const std::uint64_t face : same.subspan(ofElements)) {
    if (ofElements == 0) {
      trouble.withoutElement.add(bucket, face, most);
    } else if (ofElements == 1 && (face & kIsTurned) != (same[0] & kIsTurned)) {
      trouble.inward.add(bucket, face, most);
    }
  }
}

/// The elements or faces of the first few keys.
void tellPlaces(const CheckedMesh& mesh, FlaggedFaces& flagged) {
  std::sort(flagged.keys.begin(), flagged.keys.end());
  scanFaces(mesh, {0, mesh.nodes}, [&](PlaceKind kind, std::int64_t cell, const FaceKey& face) {
    if (kind == flagged.places.kind() &&
        std::binary_search(flagged.keys.begin(), flagged.keys.end(),
                           FlaggedKey{face.lowest, face.key & ~kFlags})) {
      flagged.places.tell(cell);
    }
  });
}

void add(CheckCode code, const CheckedMesh& mesh, FlaggedFaces flagged, const std::string& object,
         const char* what, FindingList& findings) {
  if (!flagged.places.empty()) {
    tellPlaces(mesh, flagged);
    const std::string sentence = "has " + countText(flagged.places.size(), "face", "faces") + what;
    findings.add(ruleOf(code), object, std::move(flagged.places), sentence);
  }
}

/// Brings the faces at some of the nodes together and judges them.
FaceTrouble findTrouble(const CheckedMesh& mesh, const NodeParts& nodes, std::size_t mostKeys,
                        const FindingList& findings) {
  FaceTrouble trouble{false,
                      {findings.places(PlaceKind::face), {}},
                      {findings.places(PlaceKind::element), {}},
                      {findings.places(PlaceKind::face), {}}};
  forEachBucket(
      mesh.nodes, mostKeys,
      [&](std::int64_t low, std::int64_t high, auto emit) {
        scanFaces(mesh, {low, high}, [&](PlaceKind, std::int64_t, const FaceKey& face) {
          if (nodes.holds(face.lowest)) {
            emit(face.lowest, face.key);
          }
        });
      },
      [&](std::int64_t bucket, std::span<const std::uint64_t> keys) {
        for (std::size_t begin = 0; begin < keys.size();) {
          std::size_t end = begin + 1;
          while (end < keys.size() && (keys[end] & ~kFlags) == (keys[begin] & ~kFlags)) {
            ++end;
          }
          judge(bucket, keys.subspan(begin, end - begin), findings.mostPlaces(), trouble);
          begin = end;
        }
      });
  return trouble;
}

}  // namespace

bool checkFaces(const CheckedMesh& mesh, int threads, FindingList& findings) {
  const std::int64_t elements = knownCells(mesh.elements(), 3);
  if (elements == 0 || !mesh.areNodesHeld()) {
    return false;
  }
  const NodeParts suspects = suspectFaces(mesh, mostKeys(elements), threads);
  if (suspects.empty()) {
    return true;
  }
  FaceTrouble trouble = findTrouble(mesh, suspects, mostKeys(elements), findings);
  if (mesh.elements().isWhole) {
    add(CheckCode::faceWithoutElement, mesh, std::move(trouble.withoutElement), mesh.faces().object,
        " without a volume element", findings);
  }
  add(CheckCode::faceSharedByMany, mesh, std::move(trouble.sharedByMany), mesh.elements().object,
      " that more than two elements share", findings);
  add(CheckCode::inwardFace, mesh, std::move(trouble.inward), mesh.faces().object,
      " looking inwards", findings);
  return !trouble.isAnyOnOneSide;
}

}  // namespace orvml::detail
