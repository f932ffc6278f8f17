// Tests of the test helpers: what every other test leans on.
#include "support/captured_output.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/raw_file.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>

namespace orvml_io_tests {
namespace {

TEST(CapturedOutput, SeesBothStreamsAndRawDescriptors) {
  CapturedOutput captured;

  std::printf("a");
  std::fflush(stdout);
  std::fprintf(stderr, "b");
  ASSERT_EQ(::write(STDERR_FILENO, "c", 1), 1);

  EXPECT_EQ(captured.stop(), "abc");
}

TEST(CapturedOutput, SeesTheDiagnosticsOfHdf5) {
  CapturedOutput captured;

  H5Fopen("no/such/file.h5", H5F_ACC_RDONLY, H5P_DEFAULT);

  EXPECT_NE(captured.stop().find("HDF5-DIAG"), std::string::npos);
}

TEST(OpenIds, CountsWhatIsLeftOpenByKindAndClosesIt) {
  const TempFile temp;
  {
    const OpenIds ids;
    RawFile file = RawFile::create(temp.path());
    file.intVector("/v", {1});
    const hid_t dataset = H5Dopen2(file.id(), "/v", H5P_DEFAULT);
    const hid_t group = H5Gopen2(file.id(), "/", H5P_DEFAULT);

    const IdCounts opened = ids.opened();

    EXPECT_EQ(opened, (IdCounts{1, 1, 1, 0, 0})) << dataset << " " << group;
    file.close();
  }
  EXPECT_EQ(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL), 0);
}

TEST(RawFile, TellsPresentPathsFromAbsentOnes) {
  const TempFile temp;
  RawFile file = RawFile::create(temp.path());
  file.group("/g");
  file.intVector("/g/v", {4, 5});

  EXPECT_TRUE(file.isGroup("/g"));
  EXPECT_TRUE(file.isDataset("/g/v"));
  EXPECT_FALSE(file.has("/g/w"));
  EXPECT_FALSE(file.has("/h/v"));
  EXPECT_EQ(file.ints("/g/v"), (std::vector<int>{4, 5}));
}

TEST(TempFile, NeverGivesTheSamePathTwice) {
  const TempFile first;
  const TempFile second;

  EXPECT_STRNE(first.path(), second.path());
}

TEST(BuiltDocument, HandsItsArraysToTheDocument) {
  const BuiltDocument document = documentWithMixedShapes();

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 7);
  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document.handle()), 5);
}

}  // namespace
}  // namespace orvml_io_tests
