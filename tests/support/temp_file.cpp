#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>

namespace orvml_io_tests {

TempFile::TempFile() {
  static int counter = 0;
  path_ = ::testing::TempDir() + "orvml_io_" + std::to_string(::getpid()) + "_" +
          std::to_string(counter++) + ".h5";
}

TempFile::~TempFile() { std::remove(path_.c_str()); }

}  // namespace orvml_io_tests
