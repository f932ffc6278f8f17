// Surfaces that have more faces than a page shows.
#include "cpp_check/meshes.h"
#include "decimation.h"
#include "viewer/decoded_page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace orvml_io_tests {
namespace {

using orvml::Shape;

/// A closed surface of triangles or quadrilaterals, n times n of them or twice as many.
TestMesh torus(int n, bool hasQuadrilaterals) {
  TestMesh mesh;
  TestCells faces{
      hasQuadrilaterals ? Shape::quadrilateral : Shape::triangle, hasQuadrilaterals ? 4 : 3, {}};
  const double step = 2 * std::acos(-1.0) / n;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) {
      const double u = i * step;
      const double v = j * step;
      mesh.x.insert(mesh.x.end(), {(3 + std::cos(v)) * std::cos(u), (3 + std::cos(v)) * std::sin(u),
                                   std::sin(v)});
      const int a = j * n + i;
      const int b = j * n + (i + 1) % n;
      const int c = (j + 1) % n * n + (i + 1) % n;
      const int d = (j + 1) % n * n + i;
      if (hasQuadrilaterals) {
        faces.indices.insert(faces.indices.end(), {a, b, c, d});
      } else {
        faces.indices.insert(faces.indices.end(), {a, b, c, a, c, d});
      }
    }
  }
  mesh.faces.push_back(faces);
  return mesh;
}

/// The share of the edges of faces that one face alone has.
double shareOfOpenEdges(const DecodedPage& page, const Json& faces) {
  std::map<std::set<double>, int> edges;
  for (const Json& group : faces.at("groups")) {
    const auto width = group.at("nodesPerCell").get<std::size_t>();
    const auto nodes = page.values(group.at("nodes"));
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const std::size_t first = i / width * width;
      ++edges[{nodes[i], nodes[first + (i + 1 - first) % width]}];
    }
  }
  const auto open =
      std::count_if(edges.begin(), edges.end(), [](const auto& edge) { return edge.second == 1; });
  return static_cast<double>(open) / static_cast<double>(edges.size());
}

/// Where a surface folds onto itself, one of two faces is left, whose edges are no holes.
constexpr double kShareOfFolds = 0.02;

class LargeSurfaces : public ::testing::TestWithParam<bool> {};

TEST_P(LargeSurfaces, KeepNearlyAsManyFacesAsThereMayBe) {
  const TestMesh mesh = torus(100, GetParam());

  const DecodedPage page = decoded(mesh.view(), {.faces = 2000});

  const auto numbers = page.values(page.cells("faces").at("numbers"));
  EXPECT_LE(numbers.size(), 2000U);
  EXPECT_GE(numbers.size(), 1200U);
  EXPECT_NE(notesOf(page.document()).find(" are shown as "), std::string::npos);
}

TEST_P(LargeSurfaces, HaveNoHolesAndNoFacesTwice) {
  const TestMesh mesh = torus(100, GetParam());

  const DecodedPage page = decoded(mesh.view(), {.faces = 2000});

  const Json faces = page.cells("faces");
  EXPECT_LT(shareOfOpenEdges(page, faces), kShareOfFolds);
  std::set<std::set<double>> seen;
  for (const Json& group : faces.at("groups")) {
    const auto width = group.at("nodesPerCell").get<std::size_t>();
    const auto nodes = page.values(group.at("nodes"));
    for (std::size_t first = 0; first < nodes.size(); first += width) {
      const std::set<double> corners(&nodes[first], &nodes[first] + width);
      EXPECT_EQ(corners.size(), width);
      EXPECT_TRUE(seen.insert(corners).second);
    }
  }
}

TEST_P(LargeSurfaces, KeepNodesAndFacesOfTheDocument) {
  TestMesh mesh = torus(100, GetParam());
  const auto faceCount = static_cast<std::size_t>(mesh.view().faces().size());
  TestAttribute number{"number", {}};
  for (std::size_t face = 0; face < faceCount; ++face) {
    number.values.push_back(static_cast<double>(face));
  }
  mesh.attributes[2] = {number};

  const DecodedPage page = decoded(mesh.view(), {.faces = 2000, .nodes = 9999});

  const Json faces = page.cells("faces");
  EXPECT_EQ(page.field(faces, "number"), page.values(faces.at("numbers")));
  const auto nodes = page.values(page.nodes().at("numbers"));
  const auto coordinates = page.values(page.nodes().at("coordinates"));
  ASSERT_EQ(coordinates.size(), 3 * nodes.size());
  for (std::size_t i = 0; i < coordinates.size(); ++i) {
    const std::size_t from = 3 * static_cast<std::size_t>(nodes[i / 3]) + i % 3;
    EXPECT_NEAR(coordinates[i], mesh.x[from], 1e-8) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Faces, LargeSurfaces, ::testing::Bool(), [](const auto& row) {
  return row.param ? "Quadrilaterals" : "Triangles";
});

TEST(LargeMeshes, ShowTheirElementsByFewerOuterFaces) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 10), 6);
  mesh.faces.clear();

  const DecodedPage page = decoded(mesh.view(), {.faces = 500});

  const Json elements = page.cells("elements");
  EXPECT_TRUE(elements.at("isSkin").get<bool>());
  const auto numbers = page.values(elements.at("numbers"));
  EXPECT_LE(numbers.size(), 500U);
  EXPECT_GT(numbers.size(), 100U);
  EXPECT_EQ(page.field(elements, "volume").size(), numbers.size());
  EXPECT_LT(shareOfOpenEdges(page, elements), kShareOfFolds);
  EXPECT_NE(
      notesOf(page.document()).find("The 432 outer faces with 1,728 flat parts are shown as "),
      std::string::npos)
      << notesOf(page.document());
}

TEST(LargeMeshes, KeepElementsWholeWhereTheFacesAreTooMany) {
  TestMesh mesh = torus(60, false);
  mesh.elements = {{Shape::tetrahedron, 4, {0, 1, 60, 1800}}};

  const DecodedPage page = decoded(mesh.view(), {.faces = 1000});

  EXPECT_FALSE(page.cells("elements").at("isSkin").get<bool>());
  const auto faces = page.values(page.cells("faces").at("numbers"));
  EXPECT_LE(faces.size(), 996U);
  EXPECT_GE(faces.size(), 500U);
}

TEST(LargeMeshes, MayBeOfNodesAtOnePlace) {
  TestMesh mesh = torus(20, false);
  std::fill(mesh.x.begin(), mesh.x.end(), 4.0);

  const DecodedPage page = decoded(mesh.view(), {.faces = 100});

  EXPECT_TRUE(page.cells("faces").is_null());
  EXPECT_NE(notesOf(page.document()).find("The 800 faces are shown as 0"), std::string::npos);
}

TEST(LargeMeshes, MayBeAsWideAsNumbersAre) {
  TestMesh mesh = torus(60, true);
  for (double& value : mesh.x) {
    value *= 0.4e308;
  }

  const DecodedPage page = decoded(mesh.view(), {.faces = 1000});

  const auto faces = page.values(page.cells("faces").at("numbers"));
  EXPECT_LE(faces.size(), 1000U);
  EXPECT_GE(faces.size(), 600U);
}

TEST(Decimation, TurnsQuadrilateralsWithOneCornerLessIntoTriangles) {
  // Two nodes are so close that any grid of this limit makes them one.
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 1, 1e-9, 0};
  const orvml::InputView view = mesh.view();
  const orvml_report::NodePlaces places(view.nodes());
  std::vector<orvml_report::FlatSurface> surfaces(1);
  surfaces[0] = {
      {{0, 1, 2, 3}, 0}, {{0, 1, 4, 3}, 1}, {{0, 1, 4, orvml_report::FlatFace::kNoCorner}, 2}};

  (void)decimate(surfaces, places, 2);

  ASSERT_EQ(surfaces[0].size(), 2U);
  EXPECT_EQ(surfaces[0][0].number, 0);
  EXPECT_EQ(surfaces[0][1].number, 1);
  EXPECT_EQ(surfaces[0][1].corners[3], orvml_report::FlatFace::kNoCorner);
}

}  // namespace
}  // namespace orvml_io_tests
