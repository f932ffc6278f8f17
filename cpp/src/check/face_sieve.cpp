// Finds out where the faces of a mesh may not be sound. Each face has two sides, on each of which
// at most one element may be. When as many elements are on one side of every face as on the other,
// those of the document's boundary counted outside, it is enough to look at one of the sides.
#include "check/face_scan.h"
#include "check/task_threads.h"

#include <numeric>
#include <utility>
#include <vector>

namespace orvml::detail {

namespace {

/// Scatters the bits of a node's number less well than scattered(), and faster.
constexpr std::uint64_t quickHash(int node) noexcept {
  const std::uint64_t product = static_cast<std::uint64_t>(node) * 0x9e3779b97f4a7c15U;
  return (product ^ (product >> 32U)) * 0xbf58476d1ce4e5b9U;
}

/// Makes the sum of the hashes of its corners a hash of a face, so that sums of faces tell faces
/// apart and not their corners alone.
constexpr std::uint64_t hashOfFace(std::uint64_t sum) noexcept {
  sum &= ~kFlags;
  return ((sum ^ (sum >> 32U)) * 0x94d049bb133111ebU) & ~kMarks;
}

/// Puts the nodes of a tetrahedron in order. Returns whether that takes an even number of swaps.
bool sortNodes(std::array<int, 4>& nodes) noexcept {
  bool isEven = true;
  const auto order = [&](std::size_t i, std::size_t j) {
    const int lower = std::min(nodes[i], nodes[j]);
    isEven ^= nodes[i] > nodes[j];
    nodes[j] = std::max(nodes[i], nodes[j]);
    nodes[i] = lower;
  };
  order(0, 1);
  order(2, 3);
  order(0, 2);
  order(1, 3);
  order(1, 2);
  return isEven;
}

/// Gives a face of an element to a sieve that looks at one side of the faces.
///
/// @param side  kIsTurned or 0
void addElementFace(const FaceKey& face, std::uint64_t side, KeySieve& sieve) {
  const std::uint64_t key = hashOfFace(face.key);
  sieve.weigh(face.lowest, (face.key & kIsTurned) != 0 ? key : 0 - key);
  sieve.add(face.lowest, key, (face.key & kIsTurned) == side);
}

/// The same of all faces of a tetrahedron, whose sides follow from the order of its nodes without a
/// branch.
void addTetrahedron(const int* cell, std::uint64_t side, KeySieve& sieve) {
  std::array<int, 4> n = {cell[0], cell[1], cell[2], cell[3]};
  const bool isEven = sortNodes(n);
  const std::array<std::uint64_t, 4> h = {quickHash(n[0]), quickHash(n[1]), quickHash(n[2]),
                                          quickHash(n[3])};
  const std::uint64_t face012 = hashOfFace(h[0] + h[1] + h[2]);
  const std::uint64_t face013 = hashOfFace(h[0] + h[1] + h[3]);
  const std::uint64_t face023 = hashOfFace(h[0] + h[2] + h[3]);
  const std::uint64_t face123 = hashOfFace(h[1] + h[2] + h[3]);
  const std::uint64_t sum = face013 + face123 - face012 - face023;
  sieve.weigh(n[0], isEven ? sum : 0 - sum);
  const bool isSecond = isEven == (side == kIsTurned);
  sieve.add(n[0], isSecond ? face013 : face012);
  sieve.add(isSecond ? n[1] : n[0], isSecond ? face123 : face023);
}

/// Asks for the element behind a face of the document.
void addDocumentFace(const FaceKey& face, std::uint64_t side, KeySieve& sieve) {
  const std::uint64_t key = hashOfFace(face.key);
  const bool isTurned = (face.key & kIsTurned) != 0;
  sieve.weigh(face.lowest, isTurned ? 0 - key : key);
  const bool isOtherSide = (face.key & kIsTurned) != side;
  sieve.add(face.lowest, key | kIsAsked | (isOtherSide ? kIsOtherSide : 0));
}

void addBlock(const SievedBlock& block, std::int64_t nodes, std::uint64_t side, KeySieve& sieve) {
  const CheckedGroup& group = *block.group;
  if (group.facts->shape == Shape::tetrahedron) {
    forEachCellOfBlock(group, block.number, nodes, group.hasCollapsed,
                       [&](std::int64_t, const int* cell) { addTetrahedron(cell, side, sieve); });
    return;
  }
  const NodeRange range{sieve.low(), sieve.high()};
  scanBlock<quickHash>(block, nodes, range, [&](std::int64_t, const FaceKey& face) {
    if (block.kind == PlaceKind::face) {
      addDocumentFace(face, side, sieve);
    } else {
      addElementFace(face, side, sieve);
    }
  });
}

/// What is found on one side of the faces.
struct SideVerdict {
  explicit SideVerdict(std::int64_t nodes) : unsound(nodes), opposed(nodes) {}

  NodeParts unsound;
  NodeParts opposed;         // of no matter unless the sides are balanced
  bool areBalanced = false;  // whether on the other side there are as many
};

class FaceSieve {
 public:
  FaceSieve(const CheckedMesh& mesh, std::size_t most, int threads)
      : blocks_(sievedBlocks(mesh, {Entity::elements, Entity::faces})),
        nodes_(mesh.nodes),
        most_(most / static_cast<std::size_t>(std::max(threads, 1))),
        threads_(threads),
        limits_(cutNodes(blocks_, nodes_, rangesFor(threads))) {}

  [[nodiscard]] SideVerdict lookAt(std::uint64_t side) const {
    SideVerdict verdict(nodes_);
    std::vector<std::uint64_t> sums(limits_.size() - 1);
    performAll(sums.size(), threads_, [&](std::size_t range) {
      sums[range] = lookAt(side, limits_[range], limits_[range + 1], verdict);
    });
    verdict.areBalanced = std::accumulate(sums.begin(), sums.end(), std::uint64_t{0}) == 0;
    return verdict;
  }

 private:
  /// More than threads, so that none waits long for the last one.
  static std::size_t rangesFor(int threads) noexcept {
    return threads > 1 ? 2 * static_cast<std::size_t>(threads) : 1;
  }

  /// Returns by how much the two sides are out of balance.
  std::uint64_t lookAt(std::uint64_t side, std::int64_t low, std::int64_t high,
                       SideVerdict& verdict) const {
    KeyJudge judge;
    std::uint64_t all = 0;
    sieveKeys(
        blocks_, low, high, most_,
        [&](const SievedBlock& block, KeySieve& sieve) { addBlock(block, nodes_, side, sieve); },
        [&](std::int64_t first, const KeyPieces& keys, std::uint64_t sum) {
          all += sum;
          const KeyVerdict found = judge.judge(keys);
          if (!found.areSound) {
            verdict.unsound.add(first);
          }
          if (!found.areUnopposed) {
            verdict.opposed.add(first);
          }
        });
    return all;
  }

  std::vector<SievedBlock> blocks_;
  std::int64_t nodes_;
  std::size_t most_;
  int threads_;
  std::vector<std::int64_t> limits_;
};

}  // namespace

NodeParts suspectFaces(const CheckedMesh& mesh, std::size_t most, int threads) {
  const FaceSieve sieve(mesh, most, threads);
  SideVerdict one = sieve.lookAt(kIsTurned);
  one.unsound.add(one.areBalanced ? one.opposed : sieve.lookAt(0).unsound);
  return one.unsound;
}

}  // namespace orvml::detail
