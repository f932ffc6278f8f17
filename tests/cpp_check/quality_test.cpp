// What the measures of quality say, against VTK's and against cells whose values are known.
#include "check/quality_measures.h"
#include "check/shape_facts.h"
#include "cpp_check/meshes.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numbers>
#include <random>
#include <sstream>

namespace orvml_io_tests {
namespace {

using orvml::Shape;
using orvml::detail::Vec;

double measured(Shape shape, std::string_view measure, const std::vector<Vec>& corners) {
  for (const orvml::detail::Measure& one : orvml::detail::measuresOf(shape)) {
    if (one.name == measure) {
      return one.of(corners.data());
    }
  }
  ADD_FAILURE() << "no measure " << measure;
  return 0;
}

/// A cell that record_verdict.py made.
struct RecordedCell {
  Shape shape = Shape::none;
  double scaledJacobian = 0;
  double aspectRatio = 0;
  std::vector<Vec> corners;
};

std::vector<RecordedCell> recordedCells() {
  std::ifstream table(ORVML_CHECK_DATA "/verdict_quality.txt");
  std::vector<RecordedCell> cells;
  for (std::string line; std::getline(table, line);) {
    std::istringstream words(line);
    std::string shape;
    RecordedCell cell;
    words >> shape >> cell.scaledJacobian >> cell.aspectRatio;
    for (const Shape known :
         {Shape::triangle, Shape::quadrilateral, Shape::tetrahedron, Shape::hexahedron}) {
      cell.shape = name(known) == shape ? known : cell.shape;
    }
    for (Vec corner; words >> corner.x >> corner.y >> corner.z;) {
      cell.corners.push_back(corner);
    }
    cells.push_back(cell);
  }
  return cells;
}

TEST(QualityMeasures, AreThoseOfVtk) {
  const std::vector<RecordedCell> cells = recordedCells();
  ASSERT_EQ(cells.size(), 240U);

  for (const RecordedCell& cell : cells) {
    SCOPED_TRACE(name(cell.shape));
    EXPECT_NEAR(measured(cell.shape, "scaled Jacobian", cell.corners), cell.scaledJacobian, 1e-12);
    EXPECT_NEAR(measured(cell.shape, "aspect ratio", cell.corners) / cell.aspectRatio, 1, 1e-12);
  }
}

/// A cell with edges of length 1 and what is known of it.
struct IdealCell {
  const char* name;
  Shape shape;
  std::vector<Vec> corners;
  double smallestAngle;
  double largestAngle;

  friend std::ostream& operator<<(std::ostream& stream, const IdealCell& cell) {
    return stream << cell.name;
  }
};

std::vector<IdealCell> idealCells() {
  const double h = std::sqrt(3.0) / 2;
  const double up = std::sqrt(2.0 / 3);
  const double half = std::sqrt(0.5);
  const double tetrahedron = std::acos(1.0 / 3) * 180 / std::numbers::pi;
  return {{"Triangle", Shape::triangle, {{0, 0, 0}, {1, 0, 0}, {.5, h, 0}}, 60, 60},
          {"Square", Shape::quadrilateral, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, 90, 90},
          {"Tetrahedron",
           Shape::tetrahedron,
           {{0, 0, 0}, {1, 0, 0}, {.5, h, 0}, {.5, h / 3, up}},
           tetrahedron,
           tetrahedron},
          {"Cube",
           Shape::hexahedron,
           {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
           90,
           90},
          {"Prism",
           Shape::prism,
           {{0, 0, 0}, {1, 0, 0}, {.5, h, 0}, {0, 0, 1}, {1, 0, 1}, {.5, h, 1}},
           60,
           90},
          {"Pyramid",
           Shape::pyramid,
           {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {.5, .5, half}},
           std::atan(std::sqrt(2.0)) * 180 / std::numbers::pi,
           180 - tetrahedron}};
}

class IdealCells : public ::testing::TestWithParam<IdealCell> {};

TEST_P(IdealCells, HaveTheBestValues) {
  const IdealCell& cell = GetParam();
  const bool isSolid = cell.shape != Shape::triangle && cell.shape != Shape::quadrilateral;
  const std::string kind = isSolid ? "dihedral angle" : "angle";

  EXPECT_NEAR(measured(cell.shape, "scaled Jacobian", cell.corners), 1, 1e-12);
  EXPECT_NEAR(measured(cell.shape, "aspect ratio", cell.corners), 1, 1e-12);
  EXPECT_NEAR(measured(cell.shape, "smallest " + kind, cell.corners), cell.smallestAngle, 1e-10);
  EXPECT_NEAR(measured(cell.shape, "largest " + kind, cell.corners), cell.largestAngle, 1e-10);
}

TEST_P(IdealCells, HaveTheSameValuesInOtherPlacesAndSizes) {
  IdealCell cell = GetParam();
  const double before = measured(cell.shape, "scaled Jacobian", cell.corners);
  for (Vec& corner : cell.corners) {
    corner = Vec{3 * corner.y + 5, 3 * corner.z - 7, 3 * corner.x + 1};
  }

  EXPECT_NEAR(measured(cell.shape, "scaled Jacobian", cell.corners), before, 1e-12);
}

TEST_P(IdealCells, HaveWorseValuesWhenTheyAreSheared) {
  IdealCell cell = GetParam();
  for (Vec& corner : cell.corners) {
    corner.x += 0.5 * corner.y + 0.5 * corner.z;
  }
  const bool isSolid = cell.shape != Shape::triangle && cell.shape != Shape::quadrilateral;
  const std::string kind = isSolid ? "dihedral angle" : "angle";

  EXPECT_LT(measured(cell.shape, "scaled Jacobian", cell.corners), 0.95);
  EXPECT_GT(measured(cell.shape, "aspect ratio", cell.corners), 1.001);
  EXPECT_LT(measured(cell.shape, "smallest " + kind, cell.corners), cell.smallestAngle - 1);
  EXPECT_GT(measured(cell.shape, "largest " + kind, cell.corners), cell.largestAngle + 1);
}

INSTANTIATE_TEST_SUITE_P(Cells, IdealCells, ::testing::ValuesIn(idealCells()), RowName());

TEST(ShapeFacts, HaveEdgesOfTheTwoFacesThatTheyName) {
  for (const Shape shape : {Shape::tetrahedron, Shape::hexahedron, Shape::prism, Shape::pyramid}) {
    const orvml::detail::ShapeFacts& facts = *orvml::detail::factsOf(shape);
    EXPECT_EQ(facts.edges.size() + 2, facts.faces.size() + static_cast<std::size_t>(facts.corners));
    for (const auto& edge : facts.edges) {
      EXPECT_NE(edge.faces[0], edge.faces[1]);
      for (const auto face : edge.faces) {
        const auto& corners = facts.faces[face].corners;
        const auto* end = corners.begin() + facts.faces[face].count;
        EXPECT_NE(std::find(corners.begin(), end, edge.corners[0]), end) << name(shape);
        EXPECT_NE(std::find(corners.begin(), end, edge.corners[1]), end) << name(shape);
      }
    }
  }
}

/// 1,000 hexahedra of heights from 0.001 to 1, at random, the mesh is in two groups.
TestMesh columns(std::vector<double>& ratios) {
  TestMesh mesh;
  std::mt19937 random(5);
  mesh.elements = {{Shape::hexahedron, 8, {}}, {Shape::hexahedron, 8, {}}};
  const std::vector<Vec> cube = idealCells()[3].corners;
  for (int i = 0; i < 1000; ++i) {
    ratios.push_back(1 + i);
  }
  std::shuffle(ratios.begin(), ratios.end(), random);
  for (std::size_t i = 0; i < ratios.size(); ++i) {
    auto& indices = mesh.elements[i < 300 ? 0 : 1].indices;
    for (const Vec& corner : cube) {
      indices.push_back(mesh.nodes());
      const double left = 2 * static_cast<double>(i);
      mesh.x.insert(mesh.x.end(), {corner.x + left, corner.y, corner.z / ratios[i]});
    }
  }
  return mesh;
}

TEST(QualityFigures, TellMinimumPercentilesMaximumAndTheWorst) {
  std::vector<double> ratios;
  const TestMesh mesh = columns(ratios);

  const orvml::CheckReport report = mesh.checked({.quality = true});

  ASSERT_EQ(report.quality.size(), 1U);
  const orvml::CellQuality& quality = report.quality[0];
  EXPECT_EQ(quality.shape, Shape::hexahedron);
  EXPECT_EQ(quality.cells, 1000);
  ASSERT_EQ(quality.figures.size(), 4U);
  const orvml::QualityFigure& aspect = quality.figures[1];
  EXPECT_EQ(aspect.name, "aspect ratio");
  EXPECT_NEAR(aspect.minimum, 1, 1e-9);
  EXPECT_NEAR(aspect.maximum, 1000, 1e-6);
  const std::array<double, 7> expected = {10, 50, 250, 500, 750, 950, 990};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_NEAR(aspect.percentiles[i], expected[i], 1e-4 * expected[i]);
  }
  ASSERT_EQ(aspect.worst.size(), 10U);
  for (std::size_t i = 0; i < 10; ++i) {
    const double ratio = 1000 - static_cast<double>(i);
    EXPECT_NEAR(aspect.worst[i].value, ratio, 1e-6);
    EXPECT_EQ(ratios[static_cast<std::size_t>(aspect.worst[i].cell)], ratio);
  }
}

TEST(QualityFigures, AreThereWhenTheyAreAskedForAlone) {
  const TestMesh mesh = blockOf(formOf(Shape::prism, 15), 2);

  EXPECT_TRUE(mesh.checked().quality.empty());
  const auto quality = mesh.checked({.quality = true}).quality;
  ASSERT_EQ(quality.size(), 3U);
  EXPECT_EQ(quality[0].entity, orvml::Entity::faces);
  EXPECT_EQ(quality[2].shape, Shape::prism);
  EXPECT_EQ(quality[2].cells, 16);
}

TEST(QualityFigures, LeaveCellsWithoutPlaceOut) {
  TestMesh mesh = blockOf(formOf(Shape::triangle, 3), 2);
  mesh.x[0] = std::nan("");

  const auto quality = mesh.checked({.quality = true}).quality;

  ASSERT_EQ(quality.size(), 1U);
  EXPECT_EQ(quality[0].cells, 6);
}

TEST(QualityFigures, CallTheRatioOfFlatCellsHuge) {
  TestMesh mesh = cellOf(formOf(Shape::triangle, 3));
  mesh.x = {0, 0, 1, 0, 2, 0};

  EXPECT_EQ(mesh.checked({.quality = true}).quality.at(0).figures[1].maximum, 1e30);
}

}  // namespace
}  // namespace orvml_io_tests
