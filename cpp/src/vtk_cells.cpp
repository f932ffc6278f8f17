#include <orvml/vtk_cells.hpp>

#include <algorithm>
#include <array>
#include <iterator>

namespace orvml {

namespace {

struct NumberedForm {
  CellForm form;
  std::uint8_t vtkType;
};

constexpr NumberedForm kForms[] = {{{Shape::point, 1}, 1},          {{Shape::line, 2}, 3},
                                   {{Shape::line, 3}, 21},          {{Shape::line, 4}, 35},
                                   {{Shape::triangle, 3}, 5},       {{Shape::triangle, 6}, 22},
                                   {{Shape::triangle, 7}, 34},      {{Shape::quadrilateral, 4}, 9},
                                   {{Shape::quadrilateral, 6}, 30}, {{Shape::quadrilateral, 8}, 23},
                                   {{Shape::quadrilateral, 9}, 28}, {{Shape::tetrahedron, 4}, 10},
                                   {{Shape::tetrahedron, 10}, 24},  {{Shape::hexahedron, 8}, 12},
                                   {{Shape::hexahedron, 20}, 25},   {{Shape::hexahedron, 24}, 33},
                                   {{Shape::hexahedron, 27}, 29},   {{Shape::prism, 6}, 13},
                                   {{Shape::prism, 12}, 31},        {{Shape::prism, 15}, 26},
                                   {{Shape::prism, 18}, 32},        {{Shape::pyramid, 5}, 14},
                                   {{Shape::pyramid, 13}, 27},      {{Shape::pyramid, 19}, 37}};

// The bases are mirrored: corner 1 changes places with corner 2, and edges go with their corners.
constexpr std::array<std::uint8_t, 6> kPrism6 = {0, 2, 1, 3, 5, 4};
constexpr std::array<std::uint8_t, 12> kPrism12 = {0, 2, 1, 3, 5, 4, 8, 7, 6, 11, 10, 9};
constexpr std::array<std::uint8_t, 15> kPrism15 = {0, 2,  1,  3, 5,  4,  8, 7,
                                                   6, 11, 10, 9, 12, 14, 13};
constexpr std::array<std::uint8_t, 18> kPrism18 = {0,  2,  1, 3,  5,  4,  8,  7,  6,
                                                   11, 10, 9, 12, 14, 13, 17, 16, 15};

}  // namespace

std::optional<std::uint8_t> vtkCellType(CellForm form) noexcept {
  const auto* found = std::find_if(std::begin(kForms), std::end(kForms),
                                   [&](const NumberedForm& known) { return known.form == form; });
  return found == std::end(kForms) ? std::nullopt : std::optional(found->vtkType);
}

std::optional<CellForm> formOfVtkCell(int vtkCellType) noexcept {
  const auto* found = std::find_if(std::begin(kForms), std::end(kForms), [&](const auto& known) {
    return int{known.vtkType} == vtkCellType;
  });
  return found == std::end(kForms) ? std::nullopt : std::optional(found->form);
}

std::span<const std::uint8_t> olderVtkPrismOrder(int nodesPerCell) noexcept {
  switch (nodesPerCell) {
    case 6:
      return kPrism6;
    case 12:
      return kPrism12;
    case 15:
      return kPrism15;
    case 18:
      return kPrism18;
    default:
      return {};
  }
}

}  // namespace orvml
