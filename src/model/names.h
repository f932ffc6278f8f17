#pragma once

namespace orvml_io {

inline constexpr char kLibraryVersion[] = "1.10.0";

/// The version of the file format that is written. Every document can be saved in it.
inline constexpr char kFormatVersion[] = "1.4";

/// Returns the number that a version text begins with, as `strtod` reads it in the "C" locale; 0
/// when it begins with none. A process that shows a decimal comma to its user reads files like any
/// other.
[[nodiscard]] double versionNumber(const char* version) noexcept;

}  // namespace orvml_io
