#pragma once

#include "exchange/record.h"
#include "preprocessor/document.h"

#include <string>

namespace orvml_examples {

/// @param group  where the document lies in a file: "OrvInput" or "OrvOutput"
Record recordOf(const Document& document, const std::string& group);

}  // namespace orvml_examples
