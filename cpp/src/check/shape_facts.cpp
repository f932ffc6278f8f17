#include "check/shape_facts.h"

#include <algorithm>

namespace orvml::detail {

namespace {

// The order of the nodes is VTK's. Each list of middles serves every form of its shape: a form with
// fewer nodes takes its beginning, but for those that middlesOf() knows.
constexpr int kLineCounts[] = {2, 3, 4};
constexpr int kTriangleCounts[] = {3, 6, 7};
constexpr int kQuadrilateralCounts[] = {4, 6, 8, 9};
constexpr int kTetrahedronCounts[] = {4, 10};
constexpr int kHexahedronCounts[] = {8, 20, 24, 27};
constexpr int kPrismCounts[] = {6, 12, 15, 18};
constexpr int kPyramidCounts[] = {5, 13, 19};
constexpr int kPointCounts[] = {1};

constexpr EdgeOfFaces kTetrahedronEdges[] = {{{0, 1}, {0, 3}}, {{1, 2}, {1, 3}}, {{2, 0}, {2, 3}},
                                             {{0, 3}, {0, 2}}, {{1, 3}, {0, 1}}, {{2, 3}, {1, 2}}};
constexpr EdgeOfFaces kHexahedronEdges[] = {{{0, 1}, {2, 4}}, {{1, 2}, {1, 4}}, {{2, 3}, {3, 4}},
                                            {{3, 0}, {0, 4}}, {{4, 5}, {2, 5}}, {{5, 6}, {1, 5}},
                                            {{6, 7}, {3, 5}}, {{7, 4}, {0, 5}}, {{0, 4}, {0, 2}},
                                            {{1, 5}, {1, 2}}, {{2, 6}, {1, 3}}, {{3, 7}, {0, 3}}};
constexpr EdgeOfFaces kPrismEdges[] = {{{0, 1}, {0, 2}}, {{1, 2}, {0, 3}}, {{2, 0}, {0, 4}},
                                       {{3, 4}, {1, 2}}, {{4, 5}, {1, 3}}, {{5, 3}, {1, 4}},
                                       {{0, 3}, {2, 4}}, {{1, 4}, {2, 3}}, {{2, 5}, {3, 4}}};
constexpr EdgeOfFaces kPyramidEdges[] = {{{0, 1}, {0, 1}}, {{1, 2}, {0, 2}}, {{2, 3}, {0, 3}},
                                         {{3, 0}, {0, 4}}, {{0, 4}, {1, 4}}, {{1, 4}, {1, 2}},
                                         {{2, 4}, {2, 3}}, {{3, 4}, {3, 4}}};

// The centre of the 7-node triangle and the inner nodes of the 19-node pyramid are left out.
constexpr MiddleNode kTriangleMiddles[] = {{2, {0, 1}}, {2, {1, 2}}, {2, {2, 0}}};
constexpr MiddleNode kQuadrilateralMiddles[] = {
    {2, {0, 1}}, {2, {1, 2}}, {2, {2, 3}}, {2, {3, 0}}, {4, {0, 1, 2, 3}}};
constexpr MiddleNode kTwoEdgesOfQuadrilateral[] = {{2, {0, 1}}, {2, {2, 3}}};
constexpr MiddleNode kTetrahedronMiddles[] = {{2, {0, 1}}, {2, {1, 2}}, {2, {2, 0}},
                                              {2, {0, 3}}, {2, {1, 3}}, {2, {2, 3}}};
constexpr MiddleNode kHexahedronMiddles[] = {{2, {0, 1}},
                                             {2, {1, 2}},
                                             {2, {2, 3}},
                                             {2, {3, 0}},
                                             {2, {4, 5}},
                                             {2, {5, 6}},
                                             {2, {6, 7}},
                                             {2, {7, 4}},
                                             {2, {0, 4}},
                                             {2, {1, 5}},
                                             {2, {2, 6}},
                                             {2, {3, 7}},
                                             {4, {0, 4, 7, 3}},
                                             {4, {1, 2, 6, 5}},
                                             {4, {0, 1, 5, 4}},
                                             {4, {3, 7, 6, 2}},
                                             {4, {0, 3, 2, 1}},
                                             {4, {4, 5, 6, 7}},
                                             {8, {0, 1, 2, 3, 4, 5, 6, 7}}};
constexpr MiddleNode kPrismMiddles[] = {
    {2, {0, 1}}, {2, {1, 2}}, {2, {2, 0}}, {2, {3, 4}},       {2, {4, 5}},       {2, {5, 3}},
    {2, {0, 3}}, {2, {1, 4}}, {2, {2, 5}}, {4, {0, 1, 4, 3}}, {4, {1, 2, 5, 4}}, {4, {2, 0, 3, 5}}};
constexpr MiddleNode kPyramidMiddles[] = {{2, {0, 1}}, {2, {1, 2}}, {2, {2, 3}}, {2, {3, 0}},
                                          {2, {0, 4}}, {2, {1, 4}}, {2, {2, 4}}, {2, {3, 4}}};

constexpr ShapeFacts kFacts[] = {
    {Shape::line, 1, 2, kLineCounts, {}, {}, {}},
    {Shape::triangle, 2, 3, kTriangleCounts, {}, {}, kTriangleMiddles},
    {Shape::quadrilateral, 2, 4, kQuadrilateralCounts, {}, {}, kQuadrilateralMiddles},
    {Shape::tetrahedron, 3, 4, kTetrahedronCounts, kTetrahedronFaces, kTetrahedronEdges,
     kTetrahedronMiddles},
    {Shape::hexahedron, 3, 8, kHexahedronCounts, kHexahedronFaces, kHexahedronEdges,
     kHexahedronMiddles},
    {Shape::prism, 3, 6, kPrismCounts, kPrismFaces, kPrismEdges, kPrismMiddles},
    {Shape::pyramid, 3, 5, kPyramidCounts, kPyramidFaces, kPyramidEdges, kPyramidMiddles},
    {Shape::point, 0, 1, kPointCounts, {}, {}, {}}};

}  // namespace

const ShapeFacts* factsOf(Shape shape) noexcept {
  const auto* found =
      std::find_if(std::begin(kFacts), std::end(kFacts),
                   [shape](const ShapeFacts& facts) { return facts.shape == shape; });
  return found == std::end(kFacts) ? nullptr : found;
}

bool isKnown(Shape shape) noexcept {
  return factsOf(shape) != nullptr || shape == Shape::sphere || shape == Shape::circle;
}

bool hasNodeCount(const ShapeFacts& facts, int nodes) noexcept {
  return std::find(facts.nodeCounts.begin(), facts.nodeCounts.end(), nodes) !=
         facts.nodeCounts.end();
}

bool belongsTo(const ShapeFacts& facts, Entity entity, int meshDimension) noexcept {
  switch (facts.dimension) {
    case 0:
      return true;
    case 1:
      return entity == Entity::edges;
    case 2:
      return entity == Entity::faces || (entity == Entity::elements && meshDimension == 2);
    default:
      return entity == Entity::elements && meshDimension == 3;
  }
}

std::span<const MiddleNode> middlesOf(const ShapeFacts& facts, int nodes) noexcept {
  if (facts.shape == Shape::quadrilateral && nodes == 6) {
    return kTwoEdgesOfQuadrilateral;
  }
  const auto wanted = static_cast<std::size_t>(std::max(nodes - facts.corners, 0));
  return facts.middles.first(std::min(wanted, facts.middles.size()));
}

}  // namespace orvml::detail
