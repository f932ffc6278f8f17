#pragma once

#include <string>

namespace orvml_examples {

/// For which module a document is, and who made it.
struct Identification {
  std::string moduleName;
  std::string moduleFormatVersion;
  std::string creator;
};

}  // namespace orvml_examples
