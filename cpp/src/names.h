#pragma once

#include <string_view>

namespace orvml::detail {

/// Throws Code::nameTooLong or Code::nameNotAllowed for a name that no file can hold: it is that of
/// an object in a group, and of a record of 80 bytes.
///
/// @param what  what has the name, for the sentence
void requireName(std::string_view name, std::string_view what);

/// Throws Code::textTooLong, or Code::nameNotAllowed for a null byte.
void requireIdentification(std::string_view text, std::string_view what);

/// Throws Code::wrongDimension for any other than 2 and 3.
void requireDimension(int dimension);

}  // namespace orvml::detail
