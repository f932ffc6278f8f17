#pragma once

#include "hdf5/legacy_layouts.h"
#include "hdf5/source_file.h"

#include <functional>
#include <string>
#include <vector>

namespace orvml::detail {

/// A vector of an old layout: where it lies, and the name that it gets.
struct PositionedVector {
  std::string object;  ///< its absolute path
  std::string name;
  int position = 0;
  int end = 0;  ///< the "MAX_ID" of its group, by which readers go; 0 where there is none

  [[nodiscard]] bool isCovered() const noexcept { return position < end; }
};

/// Lists the vectors in a group of positions; none where there is no such group.
///
/// @param parentPath  the absolute path of the group that it lies in
/// @param nameOf      gives the name of a position
[[nodiscard]] std::vector<PositionedVector> positionedVectors(
    orvml_io::SourceFile& file, const orvml_io::OpenGroup& parent, const std::string& parentPath,
    const char* subPath, const std::function<std::string(int)>& nameOf);

/// Lists the attributes of a container in its four positional groups.
[[nodiscard]] std::vector<PositionedVector> positionedAttributes(
    orvml_io::SourceFile& file, const orvml_io::OpenGroup& container,
    const std::string& containerPath, ORVML_TYPE_OF_ENTITY entity);

}  // namespace orvml::detail
