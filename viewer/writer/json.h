#pragma once

#include <nlohmann/json.hpp>

namespace orvml_report {

using Json = nlohmann::ordered_json;

/// A number; those that JSON has none for are "nan", "inf" and "-inf".
[[nodiscard]] inline Json asJson(double value) {
  if (value != value) {
    return "nan";
  }
  if (value - value != 0.0) {
    return value > 0 ? "inf" : "-inf";
  }
  return value;
}

[[nodiscard]] inline Json asJson(int value) { return value; }

}  // namespace orvml_report
