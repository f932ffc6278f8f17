#include "check/checked_mesh.h"
#include "check/key_groups.h"
#include "check/rules.h"
#include "check/sieved_blocks.h"
#include "check/task_threads.h"

#include <algorithm>
#include <utility>

namespace orvml::detail {

namespace {

// A key of a face has the hash of its corners in the upper bits.
constexpr std::uint64_t kIsTurned = kIsOtherSide;    // which way round the corners go
constexpr std::uint64_t kIsDocumentFace = kIsAsked;  // of the faces of the document, no element's
constexpr std::uint64_t kFlags = kIsTurned | kIsDocumentFace;

struct FaceKey {
  std::int64_t lowest;
  std::uint64_t key;
};

/// Which way round three corners go: from the lowest one to the greater or to the smaller of the
/// others, which the parity of their order tells.
std::uint64_t turnOf(int a, int b, int c) noexcept {
  const bool isOdd = (a > b) != ((a > c) != (b > c));
  return isOdd ? 0 : kIsTurned;
}

/// The same of four: the neighbours of the lowest one are compared.
std::uint64_t turnOf(int a, int b, int c, int d) noexcept {
  const bool isLowestAmongBD = std::min(b, d) < std::min(a, c);
  return ((b < d) != (c < a)) != isLowestAmongBD ? kIsTurned : 0;
}

/// The nodes whose faces are looked for: a face belongs to its lowest one.
struct NodeRange {
  std::int64_t low;
  std::int64_t high;

  [[nodiscard]] bool holds(int node) const noexcept { return node >= low && node < high; }
};

// The number of a face is known to the compiler, which makes straight code of all faces of a cell
// and compares two corners once for all of them.

template <const auto& kFaces, std::size_t kFace>
int lowestOf(const int* nodes) noexcept {
  constexpr FaceCorners kCorners = kFaces[kFace];
  constexpr auto c = kCorners.corners;
  const int lowest = std::min({nodes[c[0]], nodes[c[1]], nodes[c[2]]});
  return kCorners.count == 4 ? std::min(lowest, nodes[c[3]]) : lowest;
}

/// The key of a face.
///
/// @param hashes  those of the nodes, by the same numbers as the nodes
template <const auto& kFaces, std::size_t kFace>
std::uint64_t keyOf(const int* nodes, const std::uint64_t* hashes) noexcept {
  constexpr FaceCorners kCorners = kFaces[kFace];
  constexpr auto c = kCorners.corners;
  const std::uint64_t sum = hashes[c[0]] + hashes[c[1]] + hashes[c[2]];
  if constexpr (kCorners.count == 4) {
    return ((sum + hashes[c[3]]) & ~kFlags) |
           turnOf(nodes[c[0]], nodes[c[1]], nodes[c[2]], nodes[c[3]]);
  } else {
    return (sum & ~kFlags) | turnOf(nodes[c[0]], nodes[c[1]], nodes[c[2]]);
  }
}

/// Calls a function with those faces of a cell that belong to a range of nodes.
template <std::size_t kCorners, const auto& kFaces, std::size_t... kFace, class Function>
void scanCell(const int* cell, NodeRange range, std::index_sequence<kFace...> /*faces*/,
              Function function) {
  std::array<int, kCorners> nodes;
  std::copy_n(cell, kCorners, nodes.begin());
  const std::array<int, sizeof...(kFace)> lowest = {lowestOf<kFaces, kFace>(nodes.data())...};
  if (!(range.holds(lowest[kFace]) || ...)) {
    return;
  }
  std::array<std::uint64_t, kCorners> hashes;
  for (std::size_t corner = 0; corner < kCorners; ++corner) {
    hashes[corner] = scattered(static_cast<std::uint64_t>(nodes[corner]));
  }
  const auto tell = [&](int node, std::uint64_t key) {
    if (range.holds(node)) {
      function(FaceKey{node, key});
    }
  };
  (tell(lowest[kFace], keyOf<kFaces, kFace>(nodes.data(), hashes.data())), ...);
}

/// Calls function(cell, key) with the faces of the cells of a block.
template <std::size_t kCorners, const auto& kFaces, class Function>
void scanBlock(const SievedBlock& block, std::int64_t nodes, NodeRange range, Function& function) {
  const std::uint64_t flags = block.kind == PlaceKind::face ? kIsDocumentFace : 0;
  const CheckedGroup& group = *block.group;
  forEachCellOfBlock(
      group, block.number, nodes, group.hasCollapsed, [&](std::int64_t i, const int* cell) {
        scanCell<kCorners, kFaces>(
            cell, range, std::make_index_sequence<std::size(kFaces)>(), [&](const FaceKey& face) {
              function(group.first + i, FaceKey{face.lowest, face.key | flags});
            });
      });
}

constexpr FaceCorners kTriangleItself[] = {{3, {0, 1, 2}}};
constexpr FaceCorners kQuadrilateralItself[] = {{4, {0, 1, 2, 3}}};

template <class Function>
void scanBlock(const SievedBlock& block, std::int64_t nodes, NodeRange range, Function function) {
  switch (block.group->facts->shape) {
    case Shape::tetrahedron:
      return scanBlock<4, kTetrahedronFaces>(block, nodes, range, function);
    case Shape::hexahedron:
      return scanBlock<8, kHexahedronFaces>(block, nodes, range, function);
    case Shape::prism:
      return scanBlock<6, kPrismFaces>(block, nodes, range, function);
    case Shape::pyramid:
      return scanBlock<5, kPyramidFaces>(block, nodes, range, function);
    case Shape::triangle:
      return scanBlock<3, kTriangleItself>(block, nodes, range, function);
    case Shape::quadrilateral:
      return scanBlock<4, kQuadrilateralItself>(block, nodes, range, function);
    default:
      return;
  }
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
          scanBlock({&group, i, range, kind}, mesh.nodes, nodes,
                    [&](std::int64_t cell, const FaceKey& face) { function(kind, cell, face); });
        }
      }
    }
  }
}

/// The parts of the nodes where two elements are on one side of a face, or the element that a face
/// of the document bounds is not on its inner side: nothing is to be said of faces elsewhere.
NodeParts suspectParts(const CheckedMesh& mesh, std::size_t most, int threads) {
  const std::vector<SievedBlock> blocks = sievedBlocks(mesh, {Entity::elements, Entity::faces});
  return suspectParts(
      blocks, mesh.nodes, most, threads,
      [&](const SievedBlock& block, KeySieve& sieve) {
        scanBlock(block, mesh.nodes, {sieve.low(), sieve.high()},
                  [&](std::int64_t, const FaceKey& face) { sieve.add(face.lowest, face.key); });
      },
      [](const KeyPieces& keys, KeyJudge& judge) { return judge.areDistinct(keys); });
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

}  // namespace

bool checkFaces(const CheckedMesh& mesh, int threads, FindingList& findings) {
  const std::int64_t elements = knownCells(mesh.elements(), 3);
  if (elements == 0 || !mesh.areNodesHeld()) {
    return false;
  }
  const NodeParts suspects = suspectParts(mesh, mostKeys(elements), threads);
  if (suspects.empty()) {
    return true;
  }
  FaceTrouble trouble{false,
                      {findings.places(PlaceKind::face), {}},
                      {findings.places(PlaceKind::element), {}},
                      {findings.places(PlaceKind::face), {}}};
  forEachBucket(
      mesh.nodes, mostKeys(elements),
      [&](std::int64_t low, std::int64_t high, auto emit) {
        scanFaces(mesh, {low, high}, [&](PlaceKind, std::int64_t, const FaceKey& face) {
          if (suspects.holds(face.lowest)) {
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
