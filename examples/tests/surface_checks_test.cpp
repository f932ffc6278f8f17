#include "exchange/surface_checks.h"

#include "exchange/check.h"
#include "small_meshes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvml_examples {
namespace {

TEST(ClosedSurface, CountsEverySideOfATetrahedronOnce) {
  const SurfaceCounts counts = requireClosedSurface(unitTetrahedron());

  EXPECT_EQ(counts.nodes, 4);
  EXPECT_EQ(counts.edges, 6);
  EXPECT_EQ(counts.faces, 4);
  EXPECT_EQ(counts.eulerCharacteristic(), 2);
}

TEST(ClosedSurface, CountsTrianglesAndQuadrilateralsTogether) {
  const SurfaceCounts counts = requireClosedSurface(unitPrism());

  EXPECT_EQ(counts.edges, 9);
  EXPECT_EQ(counts.eulerCharacteristic(), 2);
}

TEST(ClosedSurface, RefusesAMissingFace) {
  Mesh mesh = unitTetrahedron();
  mesh.faces.connectivities.resize(9);
  mesh.faces.cellsPerGroup[0] = 3;

  EXPECT_THROW(requireClosedSurface(mesh), CheckFailed);
}

TEST(ClosedSurface, RefusesAFaceThatLooksInwards) {
  Mesh mesh = unitTetrahedron();
  std::swap(mesh.faces.connectivities[0], mesh.faces.connectivities[1]);

  EXPECT_THROW(requireClosedSurface(mesh), CheckFailed);
}

TEST(ClosedSurface, RefusesFacesThatAllLookInwards) {
  Mesh mesh = unitTetrahedron();
  std::reverse(mesh.faces.connectivities.begin(), mesh.faces.connectivities.end());

  EXPECT_THROW(requireClosedSurface(mesh), CheckFailed);
}

TEST(ClosedSurface, RefusesANodeThatNoFaceUses) {
  Mesh mesh = unitTetrahedron();
  mesh.coordinates.insert(mesh.coordinates.end(), {5, 5, 5});

  EXPECT_THROW(requireClosedSurface(mesh), CheckFailed);
}

TEST(EdgesOnSurface, AcceptsASideOfAFace) {
  Mesh mesh = unitCube();
  mesh.edges.addGroup(LINEAR, 2, {0, 4});

  EXPECT_NO_THROW(requireEdgesOnSurface(mesh));
}

TEST(EdgesOnSurface, RefusesTheDiagonalOfAFace) {
  Mesh mesh = unitCube();
  mesh.edges.addGroup(LINEAR, 2, {0, 2});

  EXPECT_THROW(requireEdgesOnSurface(mesh), CheckFailed);
}

}  // namespace
}  // namespace orvml_examples
