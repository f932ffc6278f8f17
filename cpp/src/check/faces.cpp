#include "check/checked_mesh.h"
#include "check/key_groups.h"
#include "check/rules.h"

#include <utility>

namespace orvml::detail {

namespace {

// A key of a face has the hash of its corners in the upper bits.
constexpr std::uint64_t kIsTurned = 1;        // which way round the corners go
constexpr std::uint64_t kIsDocumentFace = 2;  // of the faces of the document, not of an element
constexpr std::uint64_t kFlags = kIsTurned | kIsDocumentFace;

struct FaceKey {
  std::int64_t lowest;
  std::uint64_t key;
};

/// The lowest corner of a face alone.
template <int Count>
int lowestOf(const std::array<int, 4>& nodes) noexcept {
  int lowest = std::min({nodes[0], nodes[1], nodes[2]});
  return Count == 4 ? std::min(lowest, nodes[3]) : lowest;
}

/// Which way round the corners go: from the lowest one to the greater or to the smaller of its
/// neighbours.
template <int Count>
std::uint64_t turnOf(const std::array<int, 4>& nodes, int lowest) noexcept {
  std::size_t at = 0;
  while (nodes[at] != lowest) {
    ++at;
  }
  constexpr std::size_t kCount = Count;
  return nodes[(at + 1) % kCount] < nodes[(at + kCount - 1) % kCount] ? kIsTurned : 0;
}

/// Calls a function with the lowest corner and the key of a face, if the corner is from `low` to
/// before `high`.
template <int Count, class Function>
void scanFace(const std::array<int, 4>& nodes, std::uint64_t flags, std::int64_t low,
              std::int64_t high, Function& function) {
  const int lowest = lowestOf<Count>(nodes);
  if (lowest < low || lowest >= high) {
    return;
  }
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < Count; ++i) {
    sum += scattered(static_cast<std::uint64_t>(nodes[i]));
  }
  function(FaceKey{lowest, (sum & ~kFlags) | flags | turnOf<Count>(nodes, lowest)});
}

template <class Function>
void scanFaceOf(const int* cell, const FaceCorners& face, std::int64_t low, std::int64_t high,
                Function& function) {
  const std::array<int, 4> nodes = {cell[face.corners[0]], cell[face.corners[1]],
                                    cell[face.corners[2]], cell[face.corners[3]]};
  if (face.count == 3) {
    scanFace<3>(nodes, 0, low, high, function);
  } else {
    scanFace<4>(nodes, 0, low, high, function);
  }
}

/// Calls function(kind, cell, key) with the faces of the volume elements and of the document.
template <class Function>
void scanFaces(const CheckedMesh& mesh, std::int64_t low, std::int64_t high, Function function) {
  for (const CheckedGroup& group : mesh.elements().groups) {
    if (group.facts == nullptr) {
      continue;
    }
    forEachCell(group, mesh.nodes, low, high, [&](std::int64_t i, const int* cell) {
      auto emit = [&](const FaceKey& key) { function(PlaceKind::element, group.first + i, key); };
      for (const FaceCorners& face : group.facts->faces) {
        scanFaceOf(cell, face, low, high, emit);
      }
    });
  }
  for (const CheckedGroup& group : mesh.faces().groups) {
    if (group.facts == nullptr || group.facts->dimension != 2) {
      continue;
    }
    const bool isTriangle = group.facts->corners == 3;
    forEachCell(group, mesh.nodes, low, high, [&](std::int64_t i, const int* cell) {
      auto emit = [&](const FaceKey& key) { function(PlaceKind::face, group.first + i, key); };
      const std::array<int, 4> nodes = {cell[0], cell[1], cell[2], cell[isTriangle ? 2 : 3]};
      if (isTriangle) {
        scanFace<3>(nodes, kIsDocumentFace, low, high, emit);
      } else {
        scanFace<4>(nodes, kIsDocumentFace, low, high, emit);
      }
    });
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
  scanFaces(mesh, 0, mesh.nodes, [&](PlaceKind kind, std::int64_t cell, const FaceKey& face) {
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

}  // namespace

void checkFaces(const CheckedMesh& mesh, FindingList& findings) {
  const std::int64_t elements = knownCells(mesh.elements(), 3);
  if (elements == 0) {
    return;
  }
  FaceTrouble trouble{{findings.places(PlaceKind::face), {}},
                      {findings.places(PlaceKind::element), {}},
                      {findings.places(PlaceKind::face), {}}};
  forEachBucket(
      mesh.nodes, mostKeys(elements),
      [&](std::int64_t low, std::int64_t high, auto emit) {
        scanFaces(mesh, low, high, [&](PlaceKind, std::int64_t, const FaceKey& face) {
          emit(face.lowest, face.key);
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
  if (mesh.elements().isWhole) {
    add(CheckCode::faceWithoutElement, mesh, std::move(trouble.withoutElement), mesh.faces().object,
        " without a volume element", findings);
  }
  add(CheckCode::faceSharedByMany, mesh, std::move(trouble.sharedByMany), mesh.elements().object,
      " that more than two elements share", findings);
  add(CheckCode::inwardFace, mesh, std::move(trouble.inward), mesh.faces().object,
      " looking inwards", findings);
}

}  // namespace orvml::detail
