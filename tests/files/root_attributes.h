#pragma once

namespace orvml_io_tests {

// The names of the attributes on the root group, besides the marker of exchange files.

inline constexpr char kCreator[] = "ORVML_IO_CREATOR";
inline constexpr char kModule[] = "ORVML_MODULE_NAME";
inline constexpr char kModuleVersion[] = "ORVML_MODULE_FORMAT_VERSION";
inline constexpr char kFormatVersion[] = "ORVMESHLIBRARY_FORMAT_VERSION";

}  // namespace orvml_io_tests
