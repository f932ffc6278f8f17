#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace orvml_parallel_tests {

/// What HDF5's own functions tell of each object of a file and of each attribute, by its path:
/// kind, type, extents, layout, place in the file, bytes of its values, order of creation.
std::map<std::string, std::string> objectsOf(const std::filesystem::path& path);

}  // namespace orvml_parallel_tests
