#pragma once

#include <orvml/document.hpp>
#include <orvml/error.hpp>
#include <orvml/export.hpp>

#include <filesystem>
#include <optional>
#include <vector>

namespace orvml {

struct LoadOptions {
  Policy policy = Policy::strict;
  /// Threads that read large arrays, of which at most 256 are used. HDF5 itself is only ever called
  /// from the caller's.
  int threads = 1;
};

/// What a file held. Views are of its documents, and end with them: keep it in a variable before
/// asking for one.
struct Loaded {
  std::optional<Input> input;
  std::optional<Output> output;
  std::vector<Finding> findings;  ///< empty when the policy is strict
};

/// Reads the documents of an exchange file, of which there is at least one. Nothing stays open in
/// HDF5 afterwards. The must-be-transmitted flags are those that the file stores.
///
/// Throws Error: that the file is none (Code::fileNotFound and the others of files), that it holds
/// no document (Code::noDocument), and when the policy is strict whatever in a document is not as
/// the format says. Documents without scalar parameters and without nodes are as the format says.
[[nodiscard]] ORVML_EXPORT Loaded load(const std::filesystem::path& path,
                                       const LoadOptions& options = {});

/// Reads the input document alone; throws Code::noInput when there is none. What a tolerant read
/// found is not told; load() tells it.
[[nodiscard]] ORVML_EXPORT Input loadInput(const std::filesystem::path& path,
                                           const LoadOptions& options = {});

/// Reads the output document alone; throws Code::noOutput when there is none.
[[nodiscard]] ORVML_EXPORT Output loadOutput(const std::filesystem::path& path,
                                             const LoadOptions& options = {});

}  // namespace orvml
