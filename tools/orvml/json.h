#pragma once

#include <orvml/error.hpp>

#include <nlohmann/json.hpp>
#include <string>

namespace orvml_tool {

using Json = nlohmann::ordered_json;

/// A number; those that JSON has none for are "nan", "inf" and "-inf".
[[nodiscard]] Json asJson(double value);

/// As the schemas have an error: code, object, sentence, cure.
[[nodiscard]] Json asJson(const orvml::Error& error);

/// Prints it with a line break at its end. Bytes that are no UTF-8 become U+FFFD.
void printJson(const Json& json);

}  // namespace orvml_tool
