// Other programs see the same files: h5dump and h5py print what the library wrote, and the library
// reads what h5py wrote in whatever storage.
#include "files/outside_tools.h"

#include "files/described_document.h"
#include "files/exchange_file_fixture.h"

namespace orvml_io_tests {
namespace {

class SeenByH5dump : public ExchangeFileTest {};

TEST_F(SeenByH5dump, WholeFileIsAsTheLayoutSays) {
  written(documentWithMixedShapes()).close();

  EXPECT_EQ(h5dump(path()), textOf("mixed_shapes.h5dump"));
}

TEST_F(SeenByH5dump, SuperblockHasVersionZero) {
  written(fullDocument()).close();

  EXPECT_NE(h5dump(path(), {"--boot-block"}).find("SUPERBLOCK_VERSION 0"), std::string::npos);
}

TEST_F(SeenByH5dump, FlagStandsOnTheVector) {
  written(fullDocument()).close();

  EXPECT_EQ(h5dump(path(), {"--dataset=/OrvInput/Edges/Attributes/line"}),
            "DATASET \"/OrvInput/Edges/Attributes/line\" {\n"
            "   DATATYPE  H5T_STD_I32LE\n"
            "   DATASPACE  SIMPLE { ( 3 ) / ( 3 ) }\n"
            "   DATA {\n"
            "   (0): 7, 8, 9\n"
            "   }\n"
            "   ATTRIBUTE \"MustBeTransmitted\" {\n"
            "      DATATYPE  H5T_STD_I32LE\n"
            "      DATASPACE  SIMPLE { ( 1 ) / ( 1 ) }\n"
            "      DATA {\n"
            "      (0): 1\n"
            "      }\n"
            "   }\n"
            "}\n"
            "}\n");
}

TEST_F(SeenByH5dump, FileIsPrintedWhileADocumentOfItIsInUse) {
  written(documentWithMixedShapes()).close();
  const ReadDocument document = readInput(path());

  EXPECT_EQ(h5dump(path()), textOf("mixed_shapes.h5dump"));
}

class SeenByH5py : public ExchangeFileTest {};

TEST_F(SeenByH5py, EveryObjectHasItsTypeExtentsAndValues) {
  BuiltDocument output = BuiltDocument::output(2);
  output.identification("m", "1", "").nodes({0.5, 1});
  writtenBoth(fullDocument(), output).close();

  EXPECT_EQ(runScript("describe_file.py", {path()}), textOf("full_document.h5py"));
}

/// The document that write_foreign_file.py writes.
BuiltDocument foreignDocument() {
  BuiltDocument document = BuiltDocument::input(3);
  document.identification("ORVML_OCTREE_MESHER", "2.1", "another program")
      .nodes({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0.5, -0.25, 8})
      .attribute(ORVML_NODES, "size", std::vector<double>{1, 2, 3, 4, 0.5})
      .cells(ORVML_EDGES, {LINEAR}, {2}, {2}, {0, 1, 1, 2})
      .cells(ORVML_FACES, {TRIANGLE, QUADRILATERAL}, {3, 4}, {1, 1}, {0, 1, 2, 0, 1, 2, 3})
      .attribute(ORVML_FACES, "surface", std::vector<int>{7, -8})
      .cells(ORVML_ELEMENTS, {TETRAHEDRA}, {4}, {1}, {0, 1, 2, 3})
      .scalar("size", 0.5)
      .scalar("angle", 40.0)
      .scalar("a longer name with spaces", -1.25)
      .vector("layers", std::vector<int>{3, 2, 1})
      .vector("sizes", std::vector<double>{0.5, 0.25});
  return document;
}

class MadeByH5py : public ExchangeFileTest, public ::testing::WithParamInterface<const char*> {
 protected:
  MadeByH5py() { runScript("write_foreign_file.py", {GetParam(), path()}); }
};

TEST_P(MadeByH5py, InputIsReadWhole) {
  const ReadDocument document = readInput(path());

  EXPECT_EQ(document.result, 0);
  ASSERT_NE(document.handle(), nullptr);
  EXPECT_EQ(describe(document.handle()), describe(foreignDocument().handle()));
}

TEST_P(MadeByH5py, OutputIsReadWhole) {
  const ReadDocument document = readOutput(path());

  EXPECT_EQ(document.result, 0);
  ASSERT_NE(document.handle(), nullptr);
  EXPECT_EQ(describe(document.handle()), describe(foreignDocument().handle()));
}

TEST_P(MadeByH5py, CopyThatTheLibraryWritesIsInItsOwnLayout) {
  const ReadDocument document = readInput(path());
  ASSERT_NE(document.handle(), nullptr);
  const TempFile copy;
  ASSERT_EQ(OrvML_IO_WriteOrvInput(copy.path(), document.handle()), 0);
  const TempFile own;
  ASSERT_EQ(OrvML_IO_WriteOrvInput(own.path(), foreignDocument().handle()), 0);

  EXPECT_EQ(h5dump(copy.path()), h5dump(own.path()));
}

INSTANTIATE_TEST_SUITE_P(Each, MadeByH5py,
                         ::testing::Values("plain", "chunked", "gzip", "checked", "big_endian",
                                           "wide", "narrow", "variable_length_text", "latest",
                                           "track_order", "user_block"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace orvml_io_tests
