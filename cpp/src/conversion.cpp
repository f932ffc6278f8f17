#include <orvml/conversion.hpp>

#include <array>
#include <cstddef>

namespace orvml {

std::string_view name(Fate fate) noexcept {
  constexpr std::array<std::string_view, 8> kNames = {
      "linked", "copied", "turned", "split", "padded", "renamed", "approximated", "dropped"};
  return kNames[static_cast<std::size_t>(fate)];
}

}  // namespace orvml
