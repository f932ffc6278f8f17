#pragma once

#include <optional>
#include <string_view>

/// Numbers in texts. No locale has a say.
namespace orvml_tool {

/// The number that a text is, all of it: as C++ writes it, or inf, -inf, nan. A "+" may stand in
/// front.
[[nodiscard]] std::optional<double> numberIn(std::string_view text) noexcept;

/// The same for an integer of 32 bits.
[[nodiscard]] std::optional<int> integerIn(std::string_view text) noexcept;

}  // namespace orvml_tool
