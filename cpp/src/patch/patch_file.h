#pragma once

#include "opened_file.h"
#include "patch/script.h"

#include <hdf5.h>

#include <optional>
#include <string>
#include <vector>

namespace orvml::detail {

/// What a patch does to one document.
struct DocumentPatch {
  std::optional<std::string> base;    ///< fingerprint of what it is for; none to make the document
  std::optional<std::string> result;  ///< fingerprint of what comes out; none to remove it
  std::vector<Step> steps;
};

/// Marks an open file as a patch. Returns whether that was possible, as the others here do.
[[nodiscard]] bool markAsPatch(hid_t file);

[[nodiscard]] bool writeDocumentPatch(hid_t file, Kind kind, const DocumentPatch& patch);

/// Throws Code::noPatch for a file without that mark.
void requirePatch(const OpenedFile& file);

/// Reads what a patch does to a document; throws Code::patchDamaged.
[[nodiscard]] DocumentPatch readDocumentPatch(const OpenedFile& file, Kind kind,
                                              OwnedArrays& arrays);

}  // namespace orvml::detail
