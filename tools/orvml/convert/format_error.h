#pragma once

#include <stdexcept>

namespace orvml_tool {

/// A file of another format is not what it should be.
class FormatError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orvml_tool
