#pragma once

#include <orvml/error.hpp>
#include <orvml/view.hpp>

#include "hdf5/descriptor.h"
#include "hdf5/diagnosis.h"
#include "hdf5/id.h"
#include "hdf5/source_file.h"
#include "model/document.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvml::detail {

/// A file, of exchange or another one, that is open for reading: in HDF5, and beside it with a
/// descriptor of the same file.
class OpenedFile {
 public:
  /// What the marker of a file has to say.
  enum class Marker { exchange, any };

  /// Throws Error that says why the file is none that can be read.
  explicit OpenedFile(const std::filesystem::path& path, Marker marker = Marker::exchange);

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  [[nodiscard]] hid_t id() const noexcept { return file_.get(); }
  [[nodiscard]] int descriptor() const noexcept { return descriptor_.get(); }
  [[nodiscard]] std::uint64_t bytes() const noexcept { return bytes_; }
  [[nodiscard]] bool holds(Kind kind) const noexcept;

  /// Whether what HDF5 tells of places in the file are places behind the descriptor.
  [[nodiscard]] bool isReadDirectly() const noexcept;

  /// Closes the file in HDF5 and hands out the descriptor.
  [[nodiscard]] orvml_io::Descriptor takeDescriptor() noexcept;

 private:
  std::filesystem::path path_;
  std::uint64_t bytes_ = 0;  // set while the descriptor is made
  orvml_io::Descriptor descriptor_;
  orvml_io::FileId file_;
};

/// The path of a document's group: "/OrvInput" or "/OrvOutput".
[[nodiscard]] const char* groupOf(Kind kind) noexcept;

/// Throws that a file holds no document of the kind.
[[noreturn]] void throwMissing(Kind kind, const std::filesystem::path& path);

/// Turns what the core's readers found into findings. What is as the format says is none: a
/// document without scalar parameters, and one without nodes.
[[nodiscard]] std::vector<Finding> findingsOf(const orvml_io::Diagnosis& diagnosis);

/// Throws the first finding that is more than an object too many.
void throwFirst(const std::vector<Finding>& findings, const std::filesystem::path& path);

/// A document of the core with what was found while it was read; no document where the file holds
/// none that could be taken.
struct ReadDocument {
  std::unique_ptr<orvml_io::OrvInputAndOrvOutput> document;
  std::vector<Finding> findings;
};

/// Reads one document of a file, of which it must hold one. All is closed afterwards.
///
/// @param arrays  who is asked for large arrays first; null for nobody
[[nodiscard]] ReadDocument readDocument(const OpenedFile& file, Kind kind, Policy policy,
                                        orvml_io::ArrayReader* arrays);

}  // namespace orvml::detail
