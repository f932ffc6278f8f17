#pragma once

#include <string>
#include <vector>

namespace orvml_examples {

/// Runs the meshing module as a process of its own and waits for its end. A module that cannot be
/// started, or that ends with another status than 0, is an exception.
void runModule(const std::vector<std::string>& command);

}  // namespace orvml_examples
