// What is measured of each cell by itself.
#include "cpp_check/meshes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvml_io_tests {
namespace {

using orvml::CellMeasure;
using orvml::Entity;
using orvml::Shape;

std::vector<double> measured(const TestMesh& mesh, CellMeasure measure,
                             Entity entity = Entity::elements) {
  const orvml::InputView view = mesh.view();
  return measureCells(view.nodes(), view.cells(entity), measure);
}

struct SizeRow {
  Shape shape;
  int nodes;
  Entity entity;
  double size;  // of the part of the unit cube that the cell is
};

class SizesOfCells : public ::testing::TestWithParam<SizeRow> {};

TEST_P(SizesOfCells, AreLengthsAreasAndVolumes) {
  const SizeRow& row = GetParam();

  const auto sizes = measured(cellOf(formOf(row.shape, row.nodes)), CellMeasure::size, row.entity);

  ASSERT_EQ(sizes.size(), 1U);
  EXPECT_NEAR(sizes[0], row.size, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(Cells, SizesOfCells,
                         ::testing::Values(SizeRow{Shape::triangle, 6, Entity::faces, 0.5},
                                           SizeRow{Shape::quadrilateral, 9, Entity::faces, 1},
                                           SizeRow{Shape::tetrahedron, 4, Entity::elements, 1. / 6},
                                           SizeRow{Shape::tetrahedron, 10, Entity::elements,
                                                   1. / 6},
                                           SizeRow{Shape::hexahedron, 8, Entity::elements, 1},
                                           SizeRow{Shape::prism, 15, Entity::elements, 0.5},
                                           SizeRow{Shape::pyramid, 5, Entity::elements, 1. / 3}),
                         [](const auto& row) {
                           return std::string(name(row.param.shape)) +
                                  std::to_string(row.param.nodes);
                         });

TEST(SizesOfCells, OfHexahedraWithBilinearFacesAreExact) {
  TestMesh mesh;
  // The top is z = 1 + x y, above the unit square.
  mesh.x = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1, 1, 1, 2, 0, 1, 1};
  mesh.elements = {{Shape::hexahedron, 8, {0, 1, 2, 3, 4, 5, 6, 7}}};

  EXPECT_NEAR(measured(mesh, CellMeasure::size).at(0), 1.25, 1e-15);
}

TEST(SizesOfCells, AreNegativeInsideOutAndKeepTheirDigitsFarAway) {
  TestMesh mesh;
  mesh.x = {1e6, 0, 0, 1e6 + 1, 0, 0, 1e6, 1, 0, 1e6, 0, 1};
  mesh.elements = {{Shape::tetrahedron, 4, {1, 0, 2, 3}}};

  EXPECT_NEAR(measured(mesh, CellMeasure::size).at(0), -1. / 6, 1e-15);
}

TEST(SizesOfCells, OfLinesAreLengths) {
  TestMesh mesh;
  mesh.dimension = mesh.coordinatesPerNode = 2;
  mesh.x = {0, 0, 3, 4};
  mesh.edges = {{Shape::line, 2, {0, 1}}};

  EXPECT_EQ(measured(mesh, CellMeasure::size, Entity::edges), std::vector<double>{5});
}

TEST(MeasuredCells, AgreeWithTheFiguresOfACheck) {
  TestMesh mesh = blockOf(formOf(Shape::hexahedron, 8), 3);
  warp(mesh);
  const auto figures = mesh.checked({.quality = true}).quality.back().figures;

  ASSERT_EQ(figures.size(), 4U);
  for (const auto measure : {CellMeasure::scaledJacobian, CellMeasure::aspectRatio,
                             CellMeasure::smallestAngle, CellMeasure::largestAngle}) {
    const auto values = measured(mesh, measure);
    const auto& figure = figures[static_cast<std::size_t>(measure)];
    ASSERT_EQ(values.size(), 27U);
    EXPECT_EQ(*std::min_element(values.begin(), values.end()), figure.minimum) << name(measure);
    EXPECT_EQ(*std::max_element(values.begin(), values.end()), figure.maximum) << name(measure);
  }
}

TEST(MeasuredCells, HaveNoValueWhereThereIsNone) {
  constexpr int kFar = std::numeric_limits<int>::max();
  TestMesh mesh = cellOf(formOf(Shape::tetrahedron, 4));
  mesh.elements = {{Shape::tetrahedron, 4, {0, 1, 2, 3, 0, 1, 2, 4, 0, 1, 2, -1, 0, 1, 2, kFar}},
                   {Shape::tetrahedron, 5, {0, 1, 2, 3, 0}},
                   {Shape::sphere, 1, {0}},
                   {static_cast<Shape>(99), 4, {0, 1, 2, 3}}};

  const auto values = measured(mesh, CellMeasure::scaledJacobian);

  ASSERT_EQ(values.size(), 7U);
  EXPECT_GT(values[0], 0);
  for (std::size_t i = 1; i < values.size(); ++i) {
    EXPECT_TRUE(std::isnan(values[i])) << i;
  }
}

TEST(SizesOfCells, BeyondAllNumbersAreNone) {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1e160, 0, 0, 0, 1e160, 0, 0, 0, 1e160};
  mesh.elements = {{Shape::tetrahedron, 4, {0, 1, 2, 3}}};

  EXPECT_TRUE(std::isnan(measured(mesh, CellMeasure::size).at(0)));
}

TEST(MeasuredCells, HaveNoValueWithoutFiniteCoordinates) {
  TestMesh mesh = cellOf(formOf(Shape::tetrahedron, 4));
  mesh.x[4] = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(std::isnan(measured(mesh, CellMeasure::size).at(0)));

  mesh.hasCoordinates = false;
  EXPECT_TRUE(std::isnan(measured(mesh, CellMeasure::size).at(0)));
}

TEST(MeasuredCells, AreNotThoseOfWhichANumberAloneIsKnown) {
  const orvml::CellsView claimed(
      {orvml::CellGroup::withoutNodes(Shape::tetrahedron, std::numeric_limits<int>::max())});

  try {
    (void)measureCells(orvml::NodesView(), claimed, CellMeasure::size);
    FAIL();
  } catch (const orvml::Error& error) {
    EXPECT_EQ(error.code(), orvml::Code::valuesTooFew);
  }
}

TEST(MeasuredCells, WithoutSizeHaveTheRatioOfDegenerateOnes) {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 2, 0, 0};
  mesh.faces = {{Shape::triangle, 3, {0, 1, 2}}};

  EXPECT_EQ(measured(mesh, CellMeasure::aspectRatio, Entity::faces), std::vector<double>{1e30});
}

}  // namespace
}  // namespace orvml_io_tests
