#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace orvml_tool {

/// Prints an array as a file of NumPy's format, version 1.0.
void printNpy(std::span<const int> values, const std::vector<std::size_t>& shape);
void printNpy(std::span<const double> values, const std::vector<std::size_t>& shape);

}  // namespace orvml_tool
