#pragma once

#include "hdf5/id.h"
#include "hdf5/open_group.h"

#include <string>

namespace orvml_io_tests {

/// A group of a file, open while this lives, in the shape that the library's readers and writers
/// of a section take. One that does not exist stands for a group that could not be opened.
class GroupAt {
 public:
  /// @param path  the group's absolute path
  GroupAt(hid_t file, const std::string& path) : pathLength_(path == "/" ? 0 : path.size()) {
    H5E_BEGIN_TRY { group_ = orvml_io::GroupId(H5Gopen2(file, path.c_str(), H5P_DEFAULT)); }
    H5E_END_TRY
  }

  // Implicit, because it is made where a section is read or written.
  operator orvml_io::OpenGroup() const noexcept { return {group_.get(), pathLength_}; }

 private:
  orvml_io::GroupId group_;
  std::size_t pathLength_;
};

}  // namespace orvml_io_tests
