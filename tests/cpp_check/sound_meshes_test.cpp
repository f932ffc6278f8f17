// Sound meshes of every form have no finding, whatever their size, place and numbering, and neither
// has what save() makes of them.
#include "cpp_check/meshes.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <ostream>

namespace orvml_io_tests {

std::ostream& operator<<(std::ostream& stream, const FormOfShape& form) {
  return stream << form.name;
}

namespace {

class SoundMeshes : public ::testing::TestWithParam<FormOfShape> {};

TEST_P(SoundMeshes, HaveNoFindings) {
  TestMesh mesh = blockOf(GetParam(), 3);

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST_P(SoundMeshes, HaveNoFindingsWhenTheyAreCurved) {
  TestMesh mesh = blockOf(GetParam(), 3);
  warp(mesh);

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST_P(SoundMeshes, HaveNoFindingsWhateverTheirNumbering) {
  TestMesh mesh = blockOf(GetParam(), 4);
  warp(mesh);
  renumber(mesh, 7);

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST_P(SoundMeshes, HaveNoFindingsFarAwayAndTiny) {
  TestMesh mesh = blockOf(GetParam(), 3);
  for (double& value : mesh.x) {
    value = 1e-6 * (value + 1000);
  }

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST_P(SoundMeshes, AreSavedClean) {
  TestMesh mesh = blockOf(GetParam(), 2);
  warp(mesh);
  mesh.parameters = {{"growth", 1.5}};
  mesh.vectors = {{"sizes", {1, 2, 3}}};
  mesh.attributes[0] = {{"size", std::vector<double>(static_cast<std::size_t>(mesh.nodes()), 0.1)}};
  const TempFile temp;
  orvml::save(temp.path(), mesh.view(), mesh.outputView());

  EXPECT_EQ(toldOf(orvml::check(std::filesystem::path(temp.path()))), "");
}

TEST_P(SoundMeshes, AreFoundOutWhenTheyAreMirrored) {
  TestMesh mesh = blockOf(GetParam(), 2);
  for (std::size_t node = 0; node < mesh.x.size();
       node += static_cast<std::size_t>(mesh.coordinatesPerNode)) {
    mesh.x[node] *= -1;
  }
  const auto cells = (mesh.dimension == 2 ? mesh.view().faces() : mesh.view().elements()).size();

  const orvml::CheckReport report = mesh.checked();

  ASSERT_EQ(codesOf(report), std::vector<std::string>{"orvml.mesh.inverted-cell"});
  EXPECT_EQ(report.findings[0].count, cells);
}

INSTANTIATE_TEST_SUITE_P(Forms, SoundMeshes, ::testing::ValuesIn(formsOfShapes()), RowName());

class SoundSurfaces : public ::testing::TestWithParam<FormOfShape> {};

TEST_P(SoundSurfaces, HaveNoFindings) {
  if (GetParam().faces.empty()) {
    return;  // a mesh of the plane has no surface
  }
  TestMesh surface = surfaceOf(blockOf(GetParam(), 3));
  warp(surface);

  EXPECT_EQ(toldOf(surface.checked()), "");
}

INSTANTIATE_TEST_SUITE_P(Forms, SoundSurfaces, ::testing::ValuesIn(formsOfShapes()), RowName());

TEST(SoundMeshesOfSeveralShapes, HaveNoFindings) {
  // A cube with a pyramid and a prism on it, and the middle layer named by an edge and a point.
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 1, 1,  0,  0, 1,   0,  0, 0,   1,  1, 0,
            1, 1, 1, 1, 0, 1, 1, .5, .5, 2, 1.5, .5, 0, 1.5, .5, 1};
  mesh.elements = {{orvml::Shape::hexahedron, 8, {0, 1, 2, 3, 4, 5, 6, 7}},
                   {orvml::Shape::pyramid, 5, {4, 5, 6, 7, 8}},
                   {orvml::Shape::prism, 6, {1, 9, 2, 5, 10, 6}}};
  mesh.edges = {{orvml::Shape::line, 2, {0, 1}}, {orvml::Shape::point, 1, {3}}};

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST(CloudsOfPoints, HaveNoUnusedNodes) {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 1, 1};

  EXPECT_EQ(toldOf(mesh.checked()), "");
}

TEST(EmptyDocuments, HaveNoFindings) { EXPECT_EQ(toldOf(TestMesh().checked()), ""); }

}  // namespace
}  // namespace orvml_io_tests
