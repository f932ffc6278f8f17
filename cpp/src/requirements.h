#pragma once

#include <orvml/view.hpp>

#include <cstddef>
#include <string_view>

namespace orvml::detail {

/// Throws Code::nameTooLong or Code::nameNotAllowed for a name that no file can hold: it is that of
/// an object in a group, and of a record of 80 bytes.
///
/// @param what  what has the name, for the sentence
void requireName(std::string_view name, std::string_view what);

/// Throws as requireName() and require32() do.
void requireVector(const Attribute& vector, std::string_view what);

/// Throws Code::textTooLong, or Code::nameNotAllowed for a null byte.
void requireIdentification(std::string_view text, std::string_view what);

/// Throws Code::wrongDimension for any other than 2 and 3.
void requireDimension(int dimension);

/// Throws Code::sizesDisagree for nodes whose coordinates are not known, or not as many each as the
/// mesh has dimensions.
void requireCoordinates(const DocumentView& document);

/// A number of values, cells or groups as the format counts them. Throws Code::tooManyValues for
/// more than 32 bits count.
int require32(std::size_t count);

}  // namespace orvml::detail
