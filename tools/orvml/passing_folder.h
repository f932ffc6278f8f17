#pragma once

#include <filesystem>

namespace orvml_tool {

/// A folder of this process for what comes from standard input and goes to standard output: HDF5
/// wants files with a name. It is made when it is first asked for and goes, with what is in it, at
/// the end of the program, also of one that is interrupted. Throws Refusal when it cannot be made.
///
/// Has to be called before a thread is started.
[[nodiscard]] const std::filesystem::path& passingFolder();

/// Whether a file lies in it.
[[nodiscard]] bool isPassing(const std::filesystem::path& file) noexcept;

}  // namespace orvml_tool
