#include "convert/msh_cells.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace orvml_tool {

using orvml::CellForm;
using orvml::Shape;

namespace {

// Position in this library's cell of each node of Gmsh's, which numbers edges by their ends.
constexpr std::uint8_t kMshTetrahedron10[] = {0, 1, 2, 3, 4, 5, 6, 7, 9, 8};
constexpr std::uint8_t kMshHexahedron20[] = {0,  1, 2,  3,  4,  5,  6,  7,  8,  11,
                                             16, 9, 17, 10, 18, 19, 12, 15, 13, 14};
constexpr std::uint8_t kMshHexahedron27[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  11, 16, 9,  17, 10,
                                             18, 19, 12, 15, 13, 14, 24, 22, 20, 21, 23, 25, 26};
constexpr std::uint8_t kMshPrism15[] = {0, 1, 2, 3, 4, 5, 6, 8, 12, 7, 13, 14, 9, 11, 10};
constexpr std::uint8_t kMshPrism18[] = {0, 1,  2,  3, 4,  5,  6,  8,  12,
                                        7, 13, 14, 9, 11, 10, 15, 17, 16};
// The pyramid of 14 nodes has the centre of its base behind them.
constexpr std::uint8_t kMshPyramid13[] = {0, 1, 2, 3, 4, 5, 8, 9, 6, 10, 7, 11, 12};

struct MshForm {
  CellForm form;
  int type;
  std::span<const std::uint8_t> order;
};

constexpr MshForm kMshForms[] = {{{Shape::point, 1}, 15, {}},
                                 {{Shape::line, 2}, 1, {}},
                                 {{Shape::line, 3}, 8, {}},
                                 {{Shape::line, 4}, 26, {}},
                                 {{Shape::triangle, 3}, 2, {}},
                                 {{Shape::triangle, 6}, 9, {}},
                                 {{Shape::quadrilateral, 4}, 3, {}},
                                 {{Shape::quadrilateral, 8}, 16, {}},
                                 {{Shape::quadrilateral, 9}, 10, {}},
                                 {{Shape::tetrahedron, 4}, 4, {}},
                                 {{Shape::tetrahedron, 10}, 11, kMshTetrahedron10},
                                 {{Shape::hexahedron, 8}, 5, {}},
                                 {{Shape::hexahedron, 20}, 17, kMshHexahedron20},
                                 {{Shape::hexahedron, 27}, 12, kMshHexahedron27},
                                 {{Shape::prism, 6}, 6, {}},
                                 {{Shape::prism, 15}, 18, kMshPrism15},
                                 {{Shape::prism, 18}, 13, kMshPrism18},
                                 {{Shape::pyramid, 5}, 7, {}},
                                 {{Shape::pyramid, 13}, 19, kMshPyramid13}};

constexpr int kMshPyramid14 = 14;

// By type, as Gmsh 4.8.4 tells by getElementProperties; 0 where it tells none. Without the numbers
// of nodes of a cell, nobody knows where the next one begins.
constexpr std::uint16_t kNodesOfMshType[] = {
    0,  2,   3,   4,   4,   8,   6,  5,  3,  6,  9,   10,  27,  18,  14,  1,   8,   20,  15,   13,
    9,  10,  12,  15,  15,  21,  4,  5,  6,  20, 35,  56,  22,  28,  0,   0,   16,  25,  36,   12,
    16, 20,  28,  36,  45,  55,  66, 49, 64, 81, 100, 121, 18,  21,  24,  27,  30,  24,  28,   32,
    36, 40,  7,   8,   9,   10,  11, 0,  0,  0,  0,   84,  120, 165, 220, 286, 0,   0,   0,    34,
    40, 46,  52,  58,  1,   1,   1,  1,  1,  1,  0,   0,   64,  125, 216, 343, 512, 729, 1000, 32,
    44, 56,  68,  80,  92,  104, 0,  0,  0,  0,  0,   0,   0,   0,   0,   0,   0,   0,   30,   55,
    91, 140, 204, 285, 385, 21,  29, 37, 45, 53, 61,  69,  1,   0,   0,   0,   0,   16};

}  // namespace

std::optional<ForeignCell> mshCellOf(CellForm form) {
  const auto* found = std::find_if(std::begin(kMshForms), std::end(kMshForms),
                                   [&](const MshForm& known) { return known.form == form; });
  if (found == std::end(kMshForms)) {
    return std::nullopt;
  }
  return ForeignCell{found->type, {}, found->order};
}

std::optional<MshCell> mshCellOfType(int type) {
  if (type == kMshPyramid14) {
    return MshCell{type, 14, CellForm{Shape::pyramid, 13}, kMshPyramid13};
  }
  if (type < 0 || static_cast<std::size_t>(type) >= std::size(kNodesOfMshType) ||
      kNodesOfMshType[type] == 0) {
    return std::nullopt;
  }
  MshCell cell{type, kNodesOfMshType[type], std::nullopt, {}};
  const auto* found = std::find_if(std::begin(kMshForms), std::end(kMshForms),
                                   [&](const MshForm& known) { return known.type == type; });
  if (found != std::end(kMshForms)) {
    cell.form = found->form;
    cell.order = found->order;
  }
  return cell;
}

int mshDimensionOf(Shape shape) noexcept {
  switch (shape) {
    case Shape::point:
      return 0;
    case Shape::line:
      return 1;
    case Shape::triangle:
    case Shape::quadrilateral:
      return 2;
    default:
      return 3;
  }
}

}  // namespace orvml_tool
