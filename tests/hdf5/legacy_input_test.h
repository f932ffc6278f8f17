#pragma once

#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/open_ids.h"
#include "support/raw_file.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <string>

namespace orvml_io_tests {

/// A vector parameter that old formats keep among the scalars, or name by its position.
inline constexpr char kVolumesSizes[] = "ORVML_OCTREEMESHER_VOLUMES_SIZES";

/// A file of an old format with one input document: four nodes in space, and whatever a test puts
/// beside them with raw HDF5 calls. read() hands it to the library.
class LegacyInputTest : public ::testing::Test {
 protected:
  explicit LegacyInputTest(const std::string& version = "1.3")
      : file_(RawFile::createMarked(temp_.path(), version)) {
    file_.documentGroup("/OrvInput", 3);
    file_.group("/OrvInput/Nodes");
    file_.doubleTable("/OrvInput/Nodes/coordinates", 4, 3, {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  }

  [[nodiscard]] RawFile& file() { return file_; }

  /// Adds three edges, two faces and one volume element on the four nodes.
  void addCells() {
    file_.elements("/OrvInput/Edges", {3}, {LINEAR}, {2}, {0, 1, 1, 2, 2, 0});
    file_.elements("/OrvInput/Faces", {2}, {TRIANGLE}, {3}, {0, 1, 2, 0, 1, 3});
    file_.elements("/OrvInput/Elements", {1}, {TETRAHEDRA}, {4}, {0, 1, 2, 3});
  }

  /// Makes a group of vectors that are named by their positions.
  void addPositions(const std::string& path, int maxId) {
    file_.group(path);
    file_.intAttributeValue(path, "MAX_ID", maxId);
  }

  /// Makes a dataset of texts, which no reader of numbers can convert.
  void addTexts(const std::string& path, hsize_t length) {
    const std::string texts(length, 'x');
    file_.dataset(path, H5T_C_S1, {length}, texts.data());
  }

  void setModule(const std::string& name) { file_.textAttribute("/", "ORVML_MODULE_NAME", name); }

  /// Reads the input document through the exported function and returns its result.
  int read() {
    file_.close();
    const int status = OrvML_IO_ReadOrvInput(temp_.path(), document_.out());
    EXPECT_NE(document(), nullptr);
    return status;
  }

  [[nodiscard]] void* document() const { return document_.get(); }
  [[nodiscard]] const char* path() const { return temp_.path(); }

 private:
  TempFile temp_;
  OpenIds ids_;
  RawFile file_;
  Handle document_;
};

}  // namespace orvml_io_tests
