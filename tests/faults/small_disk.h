#pragma once

#include <cstddef>
#include <string>

namespace orvml_io_tests {

/// A folder on a file system of its own that holds so many bytes. Only for a child process.
class SmallDisk {
 public:
  explicit SmallDisk(std::size_t bytes);
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  SmallDisk(SmallDisk&&) = delete;
  SmallDisk& operator=(SmallDisk&&) = delete;
  ~SmallDisk();

  /// Not every user may mount file systems.
  [[nodiscard]] bool isMounted() const noexcept { return isMounted_; }
  [[nodiscard]] const std::string& folder() const noexcept { return folder_; }
  [[nodiscard]] std::string path(const char* name) const { return folder_ + "/" + name; }

 private:
  std::string folder_;
  bool isMounted_ = false;
};

}  // namespace orvml_io_tests
