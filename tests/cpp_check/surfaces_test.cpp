// Surfaces, and faces beside volume elements.
#include "cpp_check/meshes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvml_io_tests {
namespace {

using orvml::Shape;

/// Turns a face of the only group round.
void turn(TestMesh& mesh, std::size_t face) {
  TestCells& group = mesh.faces[0];
  const auto width = static_cast<std::size_t>(group.nodes);
  const auto begin = group.indices.begin() + static_cast<std::ptrdiff_t>(face * width);
  std::reverse(begin, begin + static_cast<std::ptrdiff_t>(width));
}

TEST(BoundaryFaces, ThatLookInwardsAreCountedAndTold) {
  TestMesh mesh = blockOf(formOf(Shape::hexahedron, 8), 4);
  renumber(mesh, 3);
  for (const std::size_t face : {5U, 17U, 80U}) {
    turn(mesh, face);
  }

  const orvml::CheckReport report = mesh.checked();

  ASSERT_EQ(codesOf(report), std::vector<std::string>{"orvml.mesh.inward-face"}) << toldOf(report);
  EXPECT_EQ(report.findings[0].places,
            (std::vector<orvml::CheckPlace>{{orvml::PlaceKind::face, 5},
                                            {orvml::PlaceKind::face, 17},
                                            {orvml::PlaceKind::face, 80}}));
}

TEST(InnerFaces, MayLookToEitherSide) {
  for (const auto& indices : {std::vector<int>{1, 2, 6, 5}, std::vector<int>{5, 6, 2, 1}}) {
    TestMesh mesh;
    mesh.x = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 1, 0, 1,
              1, 1, 1, 0, 1, 1, 2, 0, 0, 2, 1, 0, 2, 0, 1, 2, 1, 1};
    mesh.elements = {{Shape::hexahedron, 8, {0, 1, 2, 3, 4, 5, 6, 7, 1, 8, 9, 2, 5, 10, 11, 6}}};
    mesh.faces = {{Shape::quadrilateral, 4, indices}};

    EXPECT_EQ(toldOf(mesh.checked()), "");
  }
}

TEST(FacesOfQuadraticElements, AreComparedByTheirCorners) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 10), 2);
  TestCells& group = mesh.faces[0];
  TestCells corners{Shape::triangle, 3, {}};
  for (std::size_t i = 0; i < group.indices.size(); i += 6) {
    corners.indices.insert(corners.indices.end(),
                           group.indices.begin() + static_cast<std::ptrdiff_t>(i),
                           group.indices.begin() + static_cast<std::ptrdiff_t>(i + 3));
  }
  mesh.faces = {corners};

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST(BoundaryFaces, NeedNotBeWhole) {
  TestMesh mesh = blockOf(formOf(Shape::prism, 6), 2);
  mesh.faces.pop_back();

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST(Faces, AreNotMissedWhereAnElementWasLeftOut) {
  TestMesh mesh = blockOf(formOf(Shape::hexahedron, 8), 2);
  mesh.elements[0].indices[3] = 1000;

  EXPECT_EQ(codesOf(mesh.checked()), std::vector<std::string>{"orvml.mesh.index-out-of-range"});
}

TEST(Surfaces, WithACavityAreSound) {
  TestMesh mesh = surfaceOf(blockOf(formOf(Shape::hexahedron, 8), 3));
  TestMesh cavity = surfaceOf(blockOf(formOf(Shape::hexahedron, 8), 1));
  const int before = mesh.nodes();
  for (std::size_t i = 0; i < cavity.x.size(); ++i) {
    mesh.x.push_back(cavity.x[i] + 1);
  }
  for (std::size_t i = 0; i < 6; ++i) {
    turn(cavity, i);
  }
  for (const int node : cavity.faces[0].indices) {
    mesh.faces[0].indices.push_back(node + before);
  }

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST(MeshesOfThePlane, MayBeOpenAndHaveTwoFacesAtAnEdgeAtMost) {
  TestMesh mesh = blockOf(formOf(Shape::triangle, 3), 2);
  EXPECT_EQ(toldOf(mesh.checked()), "");

  mesh.x.insert(mesh.x.end(), {5, 0.25, 6, 0.5});
  const int last = mesh.nodes() - 1;
  auto& indices = mesh.faces[0].indices;
  indices.insert(indices.end(), {indices[0], last - 1, indices[2], indices[0], last, indices[2]});

  EXPECT_EQ(codesOf(mesh.checked()), std::vector<std::string>{"orvml.surface.non-manifold"});
}

TEST(MeshesOfThePlane, HaveNoVolumeElementsToLookFor) {
  TestMesh mesh = blockOf(formOf(Shape::quadrilateral, 4), 2);
  std::swap(mesh.elements, mesh.faces);
  mesh.edges = {{Shape::line, 2, {0, 1}}};

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

}  // namespace
}  // namespace orvml_io_tests
