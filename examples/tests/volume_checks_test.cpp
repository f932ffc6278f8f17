#include "exchange/volume_checks.h"

#include "exchange/check.h"
#include "small_meshes.h"

#include <gtest/gtest.h>

#include <utility>

namespace orvml_examples {
namespace {

struct ShapeCase {
  const char* name;
  Mesh (*mesh)();
  double volume;
};

void PrintTo(const ShapeCase& shape, std::ostream* out) { *out << shape.name; }

class VolumeElement : public testing::TestWithParam<ShapeCase> {};

TEST_P(VolumeElement, HasItsVolume) {
  const std::vector<double> volumes = requirePositiveElements(GetParam().mesh());

  ASSERT_EQ(volumes.size(), 1U);
  EXPECT_DOUBLE_EQ(volumes[0], GetParam().volume);
}

TEST_P(VolumeElement, IsRefusedWhenTwoNodesAreSwapped) {
  Mesh mesh = GetParam().mesh();
  std::swap(mesh.elements.connectivities[1], mesh.elements.connectivities[2]);

  EXPECT_THROW(requirePositiveElements(mesh), CheckFailed);
}

/// A corner drawn through the element leaves the volume positive for large shapes.
TEST_P(VolumeElement, IsRefusedWhenItsLastCornerIsTurnedInsideOut) {
  Mesh mesh = GetParam().mesh();
  mesh.coordinates[mesh.coordinates.size() - 1] = -0.01;

  EXPECT_THROW(requirePositiveElements(mesh), CheckFailed);
}

TEST_P(VolumeElement, HasItsFacesAsBoundary) {
  EXPECT_NO_THROW(requireBoundaryIsFaces(GetParam().mesh()));
}

TEST_P(VolumeElement, IsRefusedWhenAFaceIsMissing) {
  Mesh mesh = GetParam().mesh();
  const auto last = static_cast<std::size_t>(mesh.faces.nodesPerCell.back());
  mesh.faces.connectivities.resize(mesh.faces.connectivities.size() - last);
  --mesh.faces.cellsPerGroup.back();

  EXPECT_THROW(requireBoundaryIsFaces(mesh), CheckFailed);
}

TEST_P(VolumeElement, IsRefusedWhenAFaceLooksInwards) {
  Mesh mesh = GetParam().mesh();
  std::swap(mesh.faces.connectivities[0], mesh.faces.connectivities[2]);

  EXPECT_THROW(requireBoundaryIsFaces(mesh), CheckFailed);
}

INSTANTIATE_TEST_SUITE_P(VolumeChecks, VolumeElement,
                         testing::Values(ShapeCase{"Tetrahedron", unitTetrahedron, 1.0 / 6},
                                         ShapeCase{"Prism", unitPrism, 0.5},
                                         ShapeCase{"Cube", unitCube, 1.0}),
                         [](const testing::TestParamInfo<ShapeCase>& shape) {
                           return shape.param.name;
                         });

TEST(BoundaryIsFaces, LeavesOutTheFaceBetweenTwoElements) {
  Mesh mesh;
  mesh.elements.addGroup(TETRAHEDRA, 4, {0, 1, 2, 3, 1, 0, 2, 4});
  mesh.faces.addGroup(TRIANGLE, 3, {0, 1, 3, 1, 2, 3, 2, 0, 3, 1, 0, 4, 0, 2, 4, 2, 1, 4});

  EXPECT_NO_THROW(requireBoundaryIsFaces(mesh));
}

TEST(BoundaryIsFaces, RefusesTwoElementsOnTheSameSideOfAFace) {
  Mesh mesh = unitTetrahedron();
  mesh.elements = Cells();
  mesh.elements.addGroup(TETRAHEDRA, 4, {0, 1, 2, 3, 0, 1, 2, 4});

  EXPECT_THROW(requireBoundaryIsFaces(mesh), CheckFailed);
}

}  // namespace
}  // namespace orvml_examples
