#pragma once

#include "hdf5/id.h"
#include "hdf5/source_file.h"

#include <optional>
#include <string>

namespace orvml_io {

/// Tells whether an object of any kind, or a link to one, lies at a sub-path. The last link is not
/// followed.
[[nodiscard]] bool Orv_H5_GroupExists(const OpenGroup& group, const char* subPath);

/// Returns the absolute path by which an object was opened; empty when HDF5 cannot tell.
[[nodiscard]] std::string pathOfObject(hid_t object);

/// Tells whether the location itself has the attribute. A failed search counts as found.
[[nodiscard]] bool Orv_H5_AttributeExists(hid_t location, const char* name);

/// Reads one string attribute of an open object.
///
/// Contract: whether the attribute exists is asked of the file's root group, not of the object.
/// Flags that were written on member datasets are therefore never found again, and documents read
/// back without them.
///
/// @return 0 and the text; -1 when the attribute is missing or is not one string
[[nodiscard]] int Orv_H5_GetAttributeIfExists(const SourceFile& file, hid_t object,
                                              const char* name, std::string& text);

/// Reads one string attribute of the root group; no answer when it is missing or is not one string.
[[nodiscard]] std::optional<std::string> readRootText(hid_t file, const char* name);

/// Returns the length of the vector in an open dataset; -1 when it holds none.
[[nodiscard]] int Orv_H5_GetVectorDimension(hid_t dataset);

/// Reads the one number of an open attribute as an integer; no answer when there is none or not
/// one.
[[nodiscard]] std::optional<int> readIntegerOf(hid_t attribute);

/// Reads one number of an attribute as an integer; no answer when it is missing or not one number.
/// A fraction is cut off, as the Lite interface of HDF5 does.
[[nodiscard]] std::optional<int> readIntegerAttribute(SourceFile& file, const OpenGroup& group,
                                                      const char* subPath, const char* name);

}  // namespace orvml_io
