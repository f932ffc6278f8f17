#pragma once

#include <orvml/document.hpp>
#include <orvml/fingerprint.hpp>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvml_io_tests {

/// An input document with everything that one can hold: several groups on every kind of cell,
/// attributes of both types with and without flags, parameters of both kinds.
///
/// @param tag  a text in it, by which documents differ
orvml::Input inputWithEverything(const std::string& tag = "sample");

/// An output document with a few parts.
orvml::Output smallOutput();

/// A document of many nodes, with as many tetrahedra and an attribute: about 48 bytes a node.
orvml::Input inputOfNodes(int nodes, const std::string& tag = "sample");

/// The digest of the input document at a path; none when it cannot be loaded whole.
std::optional<orvml::Digest> digestAt(const std::filesystem::path& path);

inline orvml::Digest digestOf(const orvml::Input& input) {
  return fingerprint(input.view()).document;
}

/// A fresh folder that is removed at the end with what is in it.
class TempFolder {
 public:
  TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  TempFolder(TempFolder&&) = delete;
  TempFolder& operator=(TempFolder&&) = delete;
  ~TempFolder();

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
    return path_ / name;
  }
  /// The names of what is in it, in order.
  [[nodiscard]] std::vector<std::string> names() const;

 private:
  std::filesystem::path path_;
};

/// How many descriptors this process has open.
std::ptrdiff_t openDescriptors();

}  // namespace orvml_io_tests
