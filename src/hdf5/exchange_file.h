#pragma once

#include "hdf5/id.h"
#include "hdf5/new_file.h"
#include "hdf5/source_file.h"
#include "model/document.h"

#include <memory>

namespace orvml_io {

/// Creates a file and marks it as an exchange file of the version; not valid when either fails.
[[nodiscard]] NewFile createMarkedFile(const char* fileName, const char* version);

/// Tells whether the root attribute "FORMAT" is exactly the marker of exchange files.
[[nodiscard]] bool IsOrvMeshLibraryIOFormat(hid_t file);

/// Opens an exchange file read-only; an invalid identifier when it cannot be opened or is no
/// exchange file.
[[nodiscard]] FileId OpenFileForReading(const char* fileName);

/// Reads the input document of an open exchange file.
///
/// @param[out] document  the document, also when parts of it failed to read; null when the file has
///                       none of dimension 2 or 3
/// @return 0 when all was read; 1 when anything failed and when there is no document
[[nodiscard]] int ReadOrvInput(SourceFile& file, std::unique_ptr<OrvInput>& document);

/// Reads the output document of an open exchange file.
///
/// Contract: a rejected input is a failure, while a rejected output keeps the result of its read,
/// which may be 0.
[[nodiscard]] int ReadOrvOutput(SourceFile& file, std::unique_ptr<OrvOutput>& document);

}  // namespace orvml_io
