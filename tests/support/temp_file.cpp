#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <random>

namespace orvml_io_tests {

namespace {

/// Tells the runs apart: process numbers come back, and a run that was stopped leaves files.
const std::string& tagOfThisRun() {
  static const std::string tag = std::to_string(std::random_device()());
  return tag;
}

}  // namespace

TempFile::TempFile() {
  static int counter = 0;
  path_ = ::testing::TempDir() + "orvml_io_" + tagOfThisRun() + "_" + std::to_string(::getpid()) +
          "_" + std::to_string(counter++) + ".h5";
}

TempFile::~TempFile() { std::remove(path_.c_str()); }

}  // namespace orvml_io_tests
