#pragma once

#include <orvml/export.hpp>

#include <string_view>

namespace orvml {

/// Returns the version of the library, which is that of the flat interface that it works with.
[[nodiscard]] ORVML_EXPORT std::string_view version() noexcept;

/// Returns the version of the file format that save() writes.
[[nodiscard]] ORVML_EXPORT std::string_view formatVersion() noexcept;

}  // namespace orvml
