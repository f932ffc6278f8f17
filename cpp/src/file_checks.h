#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace orvml::detail {

/// Throws Code::fileIsADirectory or Code::fileNotRegular: to open anything else than a file may
/// change it, or wait.
void requireRegularFile(const struct stat& status, const std::filesystem::path& path);

/// Whether somebody writes the file, on which a shared lock is taken otherwise; it goes with the
/// descriptor. A file system without locks tells of nobody.
[[nodiscard]] bool isHeldForWriting(int descriptor) noexcept;

/// Throws Code::fileHeldForWriting.
[[noreturn]] void throwHeldForWriting(const std::filesystem::path& path,
                                      const std::string& hdf5Reason);

}  // namespace orvml::detail
