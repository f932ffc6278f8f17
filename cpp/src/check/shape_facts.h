#pragma once

#include <orvml/shape.hpp>
#include <orvml/view.hpp>

#include <array>
#include <cstdint>
#include <span>

namespace orvml::detail {

/// The corners of one face of a volume element, counter-clockwise seen from outside.
struct FaceCorners {
  std::uint8_t count;
  std::array<std::uint8_t, 4> corners;
};

// The faces of each shape; the order of the nodes is VTK's.
inline constexpr FaceCorners kTetrahedronFaces[] = {
    {3, {0, 1, 3}}, {3, {1, 2, 3}}, {3, {2, 0, 3}}, {3, {0, 2, 1}}};
inline constexpr FaceCorners kHexahedronFaces[] = {{4, {0, 4, 7, 3}}, {4, {1, 2, 6, 5}},
                                                   {4, {0, 1, 5, 4}}, {4, {3, 7, 6, 2}},
                                                   {4, {0, 3, 2, 1}}, {4, {4, 5, 6, 7}}};
inline constexpr FaceCorners kPrismFaces[] = {
    {3, {0, 2, 1}}, {3, {3, 4, 5}}, {4, {0, 1, 4, 3}}, {4, {1, 2, 5, 4}}, {4, {2, 0, 3, 5}}};
inline constexpr FaceCorners kPyramidFaces[] = {
    {4, {0, 3, 2, 1}}, {3, {0, 1, 4}}, {3, {1, 2, 4}}, {3, {2, 3, 4}}, {3, {3, 0, 4}}};

/// A node beyond the corners, which lies in the middle of some of them when the cell is straight.
struct MiddleNode {
  std::uint8_t count;
  std::array<std::uint8_t, 8> corners;
};

/// An edge of a volume element and its two faces, by their numbers.
struct EdgeOfFaces {
  std::array<std::uint8_t, 2> corners;
  std::array<std::uint8_t, 2> faces;
};

/// What is known of a shape, whatever its number of nodes.
struct ShapeFacts {
  Shape shape;
  int dimension;  ///< 0 to 3
  int corners;
  std::span<const int> nodeCounts;      ///< those that have an order of their nodes
  std::span<const FaceCorners> faces;   ///< of volume elements
  std::span<const EdgeOfFaces> edges;   ///< of volume elements
  std::span<const MiddleNode> middles;  ///< of the largest number of nodes that is looked at
};

/// Returns the facts of a shape with straight edges; null for spheres, circles and unknown ones.
[[nodiscard]] const ShapeFacts* factsOf(Shape shape) noexcept;

/// Tells whether the format names the shape.
[[nodiscard]] bool isKnown(Shape shape) noexcept;

/// Tells whether the shape has an order of nodes for that number of them.
[[nodiscard]] bool hasNodeCount(const ShapeFacts& facts, int nodes) noexcept;

/// Tells whether cells of the shape belong to a kind, in a mesh of a dimension.
[[nodiscard]] bool belongsTo(const ShapeFacts& facts, Entity entity, int meshDimension) noexcept;

/// The nodes beyond the corners that tell how a cell is curved, and where they lie when it is not.
/// Their order is that of the hexahedron's faces in the 24- and 27-node forms and of the others in
/// theirs.
[[nodiscard]] std::span<const MiddleNode> middlesOf(const ShapeFacts& facts, int nodes) noexcept;

}  // namespace orvml::detail
