#pragma once

#include "model/limits.h"

#include <hdf5.h>

#include <cstddef>
#include <string_view>

namespace orvml_io {

/// An open group of a file, borrowed, in the shape that readers and writers hand down. What lies in
/// it is named relative to it, which spares the way from the root; the limit of paths holds for
/// absolute ones, so the length of the group's own goes with it.
///
/// Sub-paths are names of layout.h, which begin with a slash.
class OpenGroup {
 public:
  /// @param id          identifier of the group, or of a file for its root; a negative one stands
  ///                    for a group that could not be opened, and everything in it fails
  /// @param pathLength  bytes of the group's absolute path, 0 for the root
  OpenGroup(hid_t id, std::size_t pathLength) noexcept : id_(id), pathLength_(pathLength) {}

  /// The group behind a sub-path of this one, once it is open.
  [[nodiscard]] OpenGroup below(hid_t id, std::string_view subPath) const noexcept {
    return {id, pathLength_ + subPath.size()};
  }

  [[nodiscard]] hid_t id() const noexcept { return id_; }

  /// Tells whether the absolute path of what lies at a sub-path is within the limit.
  [[nodiscard]] bool fits(std::string_view subPath) const noexcept {
    return pathLength_ + subPath.size() <= kLongestPath;
  }

  /// Tells the same of a member by its name, which a slash comes before.
  [[nodiscard]] bool fitsMember(std::string_view name) const noexcept {
    return pathLength_ + 1 + name.size() <= kLongestPath;
  }

 private:
  hid_t id_;
  std::size_t pathLength_;
};

/// The name of what lies at a sub-path, as seen from its group.
inline const char* relativeName(const char* subPath) noexcept { return subPath + 1; }

}  // namespace orvml_io
