#pragma once

#include "text/random_mesh.h"

#include <string>

namespace orvml_io_tests {

/// Returns the text that the export of a mesh must give, byte for byte. It is made from the rule of
/// the format alone and shares nothing with the library.
std::string textByTheRule(const Mesh& mesh);

}  // namespace orvml_io_tests
