#include "faults/small_disk.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <stdlib.h>  // mkdtemp is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)
#include <sys/mount.h>
#include <unistd.h>

namespace orvml_io_tests {

SmallDisk::SmallDisk(std::size_t bytes) {
  std::string pattern = ::testing::TempDir() + "orvml_io_disk_XXXXXX";
  folder_ = ::mkdtemp(pattern.data()) == nullptr ? "" : pattern;
  const std::string size = "size=" + std::to_string(bytes);
  isMounted_ = !folder_.empty() &&
               ::unshare(CLONE_NEWNS | (::geteuid() == 0 ? 0 : CLONE_NEWUSER)) == 0 &&
               ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               ::mount("tmpfs", folder_.c_str(), "tmpfs", 0, size.c_str()) == 0;
}

SmallDisk::~SmallDisk() {
  if (isMounted_) {
    (void)::umount2(folder_.c_str(), MNT_DETACH);
  }
  (void)::rmdir(folder_.c_str());
}

}  // namespace orvml_io_tests
