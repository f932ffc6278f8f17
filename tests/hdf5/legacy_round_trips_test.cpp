// What comes back of a document that was written in a format older than 1.4: values without names.
#include "hdf5/document_file_test.h"

namespace orvml_io_tests {
namespace {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

/// Writes a whole document in the layout of version 1.3, as a writer of that time did.
class LegacyRoundTrips : public DocumentFileTest {
 protected:
  LegacyRoundTrips() : DocumentFileTest("1.3") { built().nodes({0, 0, 0, 1, 0, 0, 0, 1, 0}); }

  /// Writes the document that was built and reads it back.
  void* writeAndRead() {
    EXPECT_EQ(document().WriteCommonPart(file().id(), "/OrvInput", "1.3"), 0);
    file().close();
    EXPECT_EQ(OrvML_IO_ReadOrvInput(path(), readBack_.out()), 0);
    return readBack_.get();
  }

 private:
  Handle readBack_;
};

TEST_F(LegacyRoundTrips, ScalarsAreRenamedByTheOrderOfTheirNames) {
  built().scalar("z", 26).scalar("a", 1);

  void* read = writeAndRead();

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(read), 2U);
  EXPECT_EQ(scalarOf(read, "ORVML_OCTREEMESHER_GENERAL_MESH_SIZE"), 1);
  EXPECT_EQ(scalarOf(read, "ORVML_OCTREEMESHER_SIZE_TRANSITION_FACTOR"), 26);
}

TEST_F(LegacyRoundTrips, TwelfthScalarMakesTheEleventhACountOfVolumeSizes) {
  for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}) {
    built().scalar(name, 0);
  }
  built().scalar("k", 1).scalar("l", 0.5);

  void* read = writeAndRead();

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(read), 10U);
  EXPECT_EQ(doubleParameterOf(read, "ORVML_OCTREEMESHER_VOLUMES_SIZES"), (Doubles{0.5}));
}

TEST_F(LegacyRoundTrips, VectorsAreRenamedByTheOrderOfTheirNames) {
  built().vector("y", Ints{2, 3}).vector("x", Ints{1}).vector("sizes", Doubles{0.5});

  void* read = writeAndRead();

  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(read), 3U);
  EXPECT_EQ(intParameterOf(read, "0"), (Ints{1}));
  EXPECT_EQ(intParameterOf(read, "1"), (Ints{2, 3}));
  EXPECT_EQ(doubleParameterOf(read, "ORVML_OCTREEMESHER_VOLUMES_SIZES"), (Doubles{0.5}));
}

TEST_F(LegacyRoundTrips, EmptyVectorsAreLost) {
  built().vector("x", Ints{}).vector("y", Ints{4});

  void* read = writeAndRead();

  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(read), 1U);
  EXPECT_EQ(intParameterOf(read, "1"), (Ints{4}));
}

// There is no old writer of attributes: they go out by name, where the old reader never looks.
TEST_F(LegacyRoundTrips, AttributesAreWrittenByNameAndNotReadBack) {
  built().attribute(ORVML_NODES, "a", Ints{1, 2, 3}, true);

  void* read = writeAndRead();

  const RawFile written = RawFile::open(path());
  EXPECT_EQ(written.ints("/OrvInput/Nodes/Attributes/a"), (Ints{1, 2, 3}));
  EXPECT_EQ(OrvML_IO_GetAttributeType(read, "a", ORVML_NODES), ORVML_UNKNOWN_VALUE);
}

TEST_F(LegacyRoundTrips, MeshComesBack) {
  built().cells(ORVML_FACES, {TRIANGLE}, {3}, {1}, {2, 1, 0});

  void* read = writeAndRead();

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(read), 3);
  int* connectivities = nullptr;
  ASSERT_EQ(OrvML_IO_GetFaces(read, connectivities), 0);
  ASSERT_NE(connectivities, nullptr);
  EXPECT_EQ(Ints(connectivities, connectivities + 3), (Ints{2, 1, 0}));
}

}  // namespace
}  // namespace orvml_io_tests
