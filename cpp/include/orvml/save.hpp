#pragma once

#include <orvml/document.hpp>
#include <orvml/export.hpp>
#include <orvml/view.hpp>

#include <filesystem>

namespace orvml {

struct SaveOptions {
  /// Whether the file is on the disk, and not only in the memory of the system, when save()
  /// returns.
  bool flush = true;
};

/// Writes an exchange file. It is made beside the path, under a hidden name, and moved over what
/// was there once it is whole: whoever looks, and whatever stops the program, finds the old file or
/// the new one. Symbolic links are followed, the permissions of an old file and, where the system
/// allows it, its owner are kept. No array is copied, unless the groups of cells of a view do not
/// lie one behind the other in memory. Programs that have the old file open or mapped keep its
/// content. A file has one identification: of two documents that of the output is kept.
/// Attributes whose lengths are not those of their nodes or cells are written as they are, for such
/// files exist and a copy of one loses nothing.
///
/// Throws Error, after which the old file is there and nothing else: Code::fileHeldForWriting when
/// another process writes the file, Code::folderNotWritable when no file can be made beside it,
/// Code::noSpaceLeft and others; and before anything is touched, what in the views cannot be
/// written: Code::nameTooLong, Code::nameNotAllowed, Code::sizesDisagree, Code::textTooLong,
/// Code::wrongDimension, Code::tooManyValues.
ORVML_EXPORT void save(const std::filesystem::path& path, const InputView& input,
                       const SaveOptions& options = {});
ORVML_EXPORT void save(const std::filesystem::path& path, const OutputView& output,
                       const SaveOptions& options = {});
ORVML_EXPORT void save(const std::filesystem::path& path, const InputView& input,
                       const OutputView& output, const SaveOptions& options = {});

inline void save(const std::filesystem::path& path, const Input& input,
                 const SaveOptions& options = {}) {
  save(path, input.view(), options);
}
inline void save(const std::filesystem::path& path, const Output& output,
                 const SaveOptions& options = {}) {
  save(path, output.view(), options);
}
inline void save(const std::filesystem::path& path, const Input& input, const Output& output,
                 const SaveOptions& options = {}) {
  save(path, input.view(), output.view(), options);
}

}  // namespace orvml
