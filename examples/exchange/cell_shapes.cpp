#include "exchange/cell_shapes.h"

#include "exchange/check.h"

namespace orvml_examples {

const CellShape& cellShape(ElemType shape) {
  static const CellShape kTetrahedron = {
      4, {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {0, 3, 2}}, {{{0, 1, 2, 3}}}};
  static const CellShape kPrism = {6,
                                   {{0, 2, 1}, {3, 4, 5}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}},
                                   {{{0, 1, 2, 3}},
                                    {{1, 2, 0, 4}},
                                    {{2, 0, 1, 5}},
                                    {{3, 5, 4, 0}},
                                    {{4, 3, 5, 1}},
                                    {{5, 4, 3, 2}}}};
  static const CellShape kHexahedron = {
      8,
      {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}},
      {{{0, 1, 3, 4}},
       {{1, 2, 0, 5}},
       {{2, 3, 1, 6}},
       {{3, 0, 2, 7}},
       {{4, 7, 5, 0}},
       {{5, 4, 6, 1}},
       {{6, 5, 7, 2}},
       {{7, 6, 4, 3}}}};
  switch (shape) {
    case TETRAHEDRA:
      return kTetrahedron;
    case PRISM:
      return kPrism;
    case HEXAHEDRA:
      return kHexahedron;
    default:
      throw CheckFailed("no volume element of these programs has the shape " +
                        std::to_string(static_cast<int>(shape)));
  }
}

std::vector<std::vector<int>> facesOf(ElemType shape, const std::vector<int>& nodes) {
  std::vector<std::vector<int>> faces = cellShape(shape).faces;
  for (std::vector<int>& face : faces) {
    for (int& node : face) {
      node = nodes[static_cast<std::size_t>(node)];
    }
  }
  return faces;
}

}  // namespace orvml_examples
