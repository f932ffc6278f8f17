#pragma once

#include <orvml/export.hpp>

#include <string>
#include <string_view>
#include <vector>

/// What becomes of a document in the form of another program, for nothing changes in silence.
namespace orvml {

/// What became of something in another form. The first three lose nothing.
enum class Fate {
  linked,        ///< it is shown where it lies
  copied,        ///< it is there with all its values, as a copy
  turned,        ///< its nodes come in another order, and mean the same
  split,         ///< it is there in several parts
  padded,        ///< it has values that it did not have, where there have to be some
  renamed,       ///< it has another name
  approximated,  ///< it has other values, as close as may be
  dropped        ///< it is not there
};

/// Returns the word itself, such as "linked".
[[nodiscard]] ORVML_EXPORT std::string_view name(Fate fate) noexcept;

/// Whether something is not as it was.
[[nodiscard]] constexpr bool isLoss(Fate fate) noexcept {
  return fate != Fate::linked && fate != Fate::copied && fate != Fate::turned;
}

/// One thing and what became of it.
struct ConversionNote {
  Fate fate = Fate::linked;
  std::string object;    ///< its absolute path in the exchange file
  std::string sentence;  ///< what became of it, beginning with the object
};

}  // namespace orvml
