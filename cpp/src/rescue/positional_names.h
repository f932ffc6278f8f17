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
  bool isCovered = true;  ///< whether the "MAX_ID" of its group covers it; readers go by that
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

/// Lists the vector parameters of a document in its two positional groups, those that replace
/// others of their name last.
///
/// @param moduleName  of the document; an empty one stands for the octree mesher
[[nodiscard]] std::vector<PositionedVector> positionedParameters(
    orvml_io::SourceFile& file, const orvml_io::OpenGroup& document,
    const std::string& documentPath, const std::string& moduleName);

}  // namespace orvml::detail
