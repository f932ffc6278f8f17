#pragma once

#include "hostile/reading.h"
#include "hostile/valid_files.h"
#include "support/raw_file.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <string>

namespace orvml_io_tests {

/// A valid file that a test changes with raw HDF5 calls and then hands to the readers.
class AttackedFile : public ::testing::Test {
 protected:
  explicit AttackedFile(const char* version = "1.4") : file_(made(temp_, {"file", version})) {}

  [[nodiscard]] RawFile& file() { return file_; }
  [[nodiscard]] const char* path() const { return temp_.path(); }

  /// Closes the file and reads its input document.
  Reading read() {
    file_.close();
    return readInputInSilence(temp_.path());
  }

  /// Closes the file and reads both documents.
  Readings readAll() {
    file_.close();
    return readInSilence(temp_.path());
  }

 private:
  static RawFile made(const TempFile& temp, const ValidFile& valid) {
    valid.make(temp.path());
    return RawFile::openForWriting(temp.path());
  }

  TempFile temp_;
  RawFile file_;
};

}  // namespace orvml_io_tests
