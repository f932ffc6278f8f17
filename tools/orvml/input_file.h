#pragma once

#include <orvml/describe.hpp>
#include <orvml/mapped_file.hpp>
#include <orvml/patch.hpp>

#include <filesystem>
#include <string>

namespace orvml_tool {

/// A file that is named on the command line, where "-" is standard input. HDF5 goes back and forth
/// in a file, so what comes from there is put into one first, which goes with the command.
class InputFile {
 public:
  /// Throws Refusal when standard input cannot be read or kept.
  explicit InputFile(const std::string& name);

  /// Where the bytes lie.
  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  /// The name as it was given, on one line.
  [[nodiscard]] const std::string& shown() const noexcept { return shown_; }
  /// The same for programs: "-" for standard input.
  [[nodiscard]] const std::string& given() const noexcept { return given_; }

 private:
  std::string given_;
  std::filesystem::path path_;
  std::string shown_;
};

/// The documents of a mapped file, as long as that is there.
[[nodiscard]] orvml::Exchange documentsOf(const orvml::MappedFile& file);

}  // namespace orvml_tool
