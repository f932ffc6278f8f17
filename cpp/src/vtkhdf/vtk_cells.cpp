#include "vtkhdf/vtk_cells.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace orvml::detail {

namespace {

struct VtkCell {
  Shape shape;
  int nodes;
  std::uint8_t type;
};

// The numbers stand in VTK's vtkCellType.h.
constexpr VtkCell kCells[] = {
    {Shape::line, 2, 3},           {Shape::line, 3, 21},          {Shape::line, 4, 35},
    {Shape::triangle, 3, 5},       {Shape::triangle, 6, 22},      {Shape::triangle, 7, 34},
    {Shape::quadrilateral, 4, 9},  {Shape::quadrilateral, 6, 30}, {Shape::quadrilateral, 8, 23},
    {Shape::quadrilateral, 9, 28}, {Shape::tetrahedron, 4, 10},   {Shape::tetrahedron, 10, 24},
    {Shape::hexahedron, 8, 12},    {Shape::hexahedron, 20, 25},   {Shape::hexahedron, 24, 33},
    {Shape::hexahedron, 27, 29},   {Shape::prism, 6, 13},         {Shape::prism, 12, 31},
    {Shape::prism, 15, 26},        {Shape::prism, 18, 32},        {Shape::pyramid, 5, 14},
    {Shape::pyramid, 13, 27},      {Shape::pyramid, 19, 37},      {Shape::point, 1, 1}};

// Corners; edges of the two triangles; edges between them; faces between them.
constexpr std::uint8_t kTurnedPrism[] = {0,  2,  1, 3,  5,  4,  8,  7,  6,
                                         11, 10, 9, 12, 14, 13, 17, 16, 15};

}  // namespace

std::uint8_t vtkTypeOf(Shape shape, int nodesPerCell) noexcept {
  const auto* found = std::find_if(std::begin(kCells), std::end(kCells), [&](const VtkCell& cell) {
    return cell.shape == shape && cell.nodes == nodesPerCell;
  });
  return found == std::end(kCells) ? std::uint8_t{0} : found->type;
}

std::span<const std::uint8_t> turnedPrism(int nodesPerCell) noexcept {
  // Each form of a prism has the nodes of the ones before it.
  return std::span(kTurnedPrism).first(static_cast<std::size_t>(nodesPerCell));
}

}  // namespace orvml::detail
