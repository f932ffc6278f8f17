#pragma once

#include <orvml/check.hpp>

namespace orvml::detail {

/// The rule that findings of a code come from. A code of readers that no finding has gives the one
/// of unreadable objects.
[[nodiscard]] const CheckRule& ruleOf(CheckCode code) noexcept;
[[nodiscard]] const CheckRule& ruleOf(Code code) noexcept;

}  // namespace orvml::detail
