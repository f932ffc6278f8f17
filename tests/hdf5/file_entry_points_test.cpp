#include "orvml_io.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <string>

namespace {

std::string freshPath() {
  static int counter = 0;
  return ::testing::TempDir() + "orvml_" + std::to_string(::getpid()) + "_" +
         std::to_string(counter++) + ".h5";
}

TEST(ReadOrvInput, MissingFileGivesZeroAndNullHandle) {
  void* handle = nullptr;

  const int result = OrvML_IO_ReadOrvInput("no/such/file.h5", handle);

  EXPECT_EQ(result, 0);
  EXPECT_EQ(handle, nullptr);
}

TEST(WriteOrvInput, DocumentComesBackWithItsMeshAndParameters) {
  const std::string path = freshPath();
  double coords[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
  int triangle[] = {0, 1, 2};
  void* written =
      OrvML_IO_NewOrvInputHandleWithFaces("m", "v", "c", 3, 3, coords, 1, triangle, TRIANGLE, 3);
  OrvML_IO_SetParameter(written, "size", 0.5);
  ASSERT_EQ(OrvML_IO_WriteOrvInput(path.c_str(), written), 0);

  void* read = nullptr;
  ASSERT_EQ(OrvML_IO_ReadOrvInput(path.c_str(), read), 0);

  ASSERT_NE(read, nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(read), 3);
  int* connectivities = nullptr;
  ASSERT_EQ(OrvML_IO_GetFaces(read, connectivities), 0);
  EXPECT_EQ(connectivities[2], 2);
  double size = 0;
  EXPECT_EQ(OrvML_IO_GetParameter(read, "size", size), 0);
  EXPECT_EQ(size, 0.5);
  OrvML_IO_DeleteOrvInputHandle(read);
  OrvML_IO_DeleteOrvInputHandle(written);
  std::remove(path.c_str());
}

}  // namespace
