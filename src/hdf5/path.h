#pragma once

#include "model/limits.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace orvml_io {

/// An absolute path inside a file, of at most 1023 bytes. What does not fit is refused, never cut.
class Path {
 public:
  /// Starts with a parent path. A parent that does not fit leaves the path unusable: every later
  /// append is refused too.
  explicit Path(std::string_view parent) noexcept { (void)append(parent); }

  /// Adds a text as it is; a sub-path brings its own leading slash.
  [[nodiscard]] bool append(std::string_view text) noexcept {
    if (!fits_ || text.size() > kLongestPath - length_) {
      fits_ = false;
      return false;
    }
    std::memcpy(bytes_ + length_, text.data(), text.size());
    length_ += text.size();
    bytes_[length_] = '\0';
    return true;
  }

  /// Adds a slash and the name of a member.
  [[nodiscard]] bool appendMember(std::string_view name) noexcept {
    return append("/") && append(name);
  }

  [[nodiscard]] const char* c_str() const noexcept { return bytes_; }

 private:
  bool fits_ = true;
  std::size_t length_ = 0;
  char bytes_[kLongestPath + 1] = {};
};

}  // namespace orvml_io
