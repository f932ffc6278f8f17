#pragma once

#include <string>

namespace orvml_tool {

/// All bytes of a file, or of standard input for "-". Throws Refusal when it cannot be read.
[[nodiscard]] std::string bytesOf(const std::string& name);

}  // namespace orvml_tool
