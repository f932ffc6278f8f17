// Random meshes: every exported text is what the rule of the format gives, byte for byte.
#include "orvml_io.h"
#include "support/document_builder.h"
#include "text/exported_text.h"
#include "text/mesh_text_rule.h"
#include "text/random_mesh.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using namespace orvml_io_tests;

constexpr std::uint32_t kMeshesOfEachDimension = 100;

class RandomMesh : public ::testing::TestWithParam<int> {
 protected:
  /// Exports many meshes of the dimension from the documents that a function makes of theirs.
  template <class MakeDocument>
  static void expectTheRule(MakeDocument documentFor) {
    for (std::uint32_t seed = 0; seed < kMeshesOfEachDimension; ++seed) {
      Mesh mesh = randomMesh(GetParam(), seed);
      const Handle document = documentFor(mesh);
      ASSERT_EQ(exportedText(document.get()), textByTheRule(mesh)) << "seed " << seed;
    }
  }
};

TEST_P(RandomMesh, IsExportedAsTheRuleSays) { expectTheRule(documentOf); }

TEST_P(RandomMesh, IsExportedFromACopyAsFromItsSource) {
  expectTheRule(
      [](Mesh& mesh) { return Handle(OrvML_IO_NewOrvInputHandle(documentOf(mesh).get())); });
}

TEST_P(RandomMesh, IsExportedFromAnOutputDocumentAlike) {
  expectTheRule(
      [](Mesh& mesh) { return Handle(OrvML_IO_NewOrvOutputHandle(documentOf(mesh).get())); });
}

INSTANTIATE_TEST_SUITE_P(Dimensions, RandomMesh, ::testing::Values(1, 2, 3, 4, 0, -1));

/// Tells whether some seed of a dimension gives a mesh with a property: the meshes must not all be
/// trivial.
template <class Property>
bool someMesh(Property property) {
  for (std::uint32_t seed = 0; seed < kMeshesOfEachDimension; ++seed) {
    if (property(randomMesh(2, seed))) {
      return true;
    }
  }
  return false;
}

TEST(RandomMeshes, SometimesHaveSeveralGroupsAndNodes) {
  EXPECT_TRUE(someMesh([](const Mesh& mesh) {
    return mesh.numberOfNodes > 3 && mesh.cells[1] && mesh.cells[1]->shapes.size() > 2;
  }));
}

TEST(RandomMeshes, SometimesLeadBehindTheConnectivities) {
  EXPECT_TRUE(someMesh(
      [](const Mesh& mesh) { return textByTheRule(mesh).find(" 0 0 \n") != std::string::npos; }));
}

}  // namespace
