#include "processes/exchange_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace orvml_io_tests {

namespace {

struct stat statusOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status;
}

}  // namespace

ExchangeFolder::ExchangeFolder() {
  // Without links in it, so that paths can be compared with those that the system tells.
  path_ = std::filesystem::canonical(::testing::TempDir()).string() + "/orvml_io_XXXXXX";
  EXPECT_NE(::mkdtemp(path_.data()), nullptr);
  EXPECT_EQ(::chmod(path_.c_str(), 0755), 0);
}

ExchangeFolder::~ExchangeFolder() {
  (void)::chmod(path_.c_str(), 0755);
  std::error_code failure;
  (void)std::filesystem::remove_all(path_, failure);
}

std::vector<std::string> ExchangeFolder::listing() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(path_)) {
    names.push_back(entry.path().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string bytesIn(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  EXPECT_TRUE(stream) << path;
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

ino_t inodeOf(const std::string& path) { return statusOf(path).st_ino; }

mode_t permissionsOf(const std::string& path) { return statusOf(path).st_mode & 07777U; }

gid_t groupOf(const std::string& path) { return statusOf(path).st_gid; }

}  // namespace orvml_io_tests
