#pragma once

#include "check/key_groups.h"
#include "check/sieved_blocks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace orvml::detail {

// A key of a face has the hash of its corners in the upper bits.
inline constexpr std::uint64_t kIsTurned = 1;        // which way round the corners go
inline constexpr std::uint64_t kIsDocumentFace = 2;  // of the faces of the document, no element's
inline constexpr std::uint64_t kFlags = kIsTurned | kIsDocumentFace;

struct FaceKey {
  std::int64_t lowest;
  std::uint64_t key;
};

/// Which way round three corners go: from the lowest one to the greater or to the smaller of the
/// others, which the parity of their order tells.
inline std::uint64_t turnOf(int a, int b, int c) noexcept {
  const bool isOdd = (a > b) != ((a > c) != (b > c));
  return isOdd ? 0 : kIsTurned;
}

/// The same of four: the neighbours of the lowest one are compared.
inline std::uint64_t turnOf(int a, int b, int c, int d) noexcept {
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
  constexpr auto kAt = kCorners.corners;
  const int lowest = std::min({nodes[kAt[0]], nodes[kAt[1]], nodes[kAt[2]]});
  return kCorners.count == 4 ? std::min(lowest, nodes[kAt[3]]) : lowest;
}

/// The key of a face.
///
/// @param hashes  those of the nodes, by the same numbers as the nodes
template <const auto& kFaces, std::size_t kFace>
std::uint64_t keyOf(const int* nodes, const std::uint64_t* hashes) noexcept {
  constexpr FaceCorners kCorners = kFaces[kFace];
  constexpr auto kAt = kCorners.corners;
  const std::uint64_t sum = hashes[kAt[0]] + hashes[kAt[1]] + hashes[kAt[2]];
  if constexpr (kCorners.count == 4) {
    return ((sum + hashes[kAt[3]]) & ~kFlags) |
           turnOf(nodes[kAt[0]], nodes[kAt[1]], nodes[kAt[2]], nodes[kAt[3]]);
  } else {
    return (sum & ~kFlags) | turnOf(nodes[kAt[0]], nodes[kAt[1]], nodes[kAt[2]]);
  }
}

/// Calls a function with those faces of a cell that belong to a range of nodes.
///
/// @param kHash  the hash of a node
template <auto kHash, std::size_t kCorners, const auto& kFaces, std::size_t... kFace,
          class Function>
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
    hashes[corner] = kHash(nodes[corner]);
  }
  const auto tell = [&](int node, std::uint64_t key) {
    if (range.holds(node)) {
      function(FaceKey{node, key});
    }
  };
  (tell(lowest[kFace], keyOf<kFaces, kFace>(nodes.data(), hashes.data())), ...);
}

/// Calls function(cell, key) with the faces of the cells of a block.
template <auto kHash, std::size_t kCorners, const auto& kFaces, class Function>
void scanBlock(const SievedBlock& block, std::int64_t nodes, NodeRange range, Function& function) {
  const std::uint64_t flags = block.kind == PlaceKind::face ? kIsDocumentFace : 0;
  const CheckedGroup& group = *block.group;
  forEachCellOfBlock(
      group, block.number, nodes, group.hasCollapsed, [&](std::int64_t i, const int* cell) {
        scanCell<kHash, kCorners, kFaces>(
            cell, range, std::make_index_sequence<std::size(kFaces)>(), [&](const FaceKey& face) {
              function(group.first + i, FaceKey{face.lowest, face.key | flags});
            });
      });
}

inline constexpr FaceCorners kTriangleItself[] = {{3, {0, 1, 2}}};
inline constexpr FaceCorners kQuadrilateralItself[] = {{4, {0, 1, 2, 3}}};

template <auto kHash, class Function>
void scanBlock(const SievedBlock& block, std::int64_t nodes, NodeRange range, Function function) {
  switch (block.group->facts->shape) {
    case Shape::tetrahedron:
      return scanBlock<kHash, 4, kTetrahedronFaces>(block, nodes, range, function);
    case Shape::hexahedron:
      return scanBlock<kHash, 8, kHexahedronFaces>(block, nodes, range, function);
    case Shape::prism:
      return scanBlock<kHash, 6, kPrismFaces>(block, nodes, range, function);
    case Shape::pyramid:
      return scanBlock<kHash, 5, kPyramidFaces>(block, nodes, range, function);
    case Shape::triangle:
      return scanBlock<kHash, 3, kTriangleItself>(block, nodes, range, function);
    case Shape::quadrilateral:
      return scanBlock<kHash, 4, kQuadrilateralItself>(block, nodes, range, function);
    default:
      return;
  }
}

/// The parts of the nodes where a face may be that something is to be said of: two elements are on
/// one side of it, or it is one of the document without the element inside that it bounds.
[[nodiscard]] NodeParts suspectFaces(const CheckedMesh& mesh, std::size_t most, int threads);

}  // namespace orvml::detail
