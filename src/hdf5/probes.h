#pragma once

#include "hdf5/id.h"
#include "hdf5/source_file.h"

#include <optional>
#include <string>

namespace orvml_io {

/// Tells whether an object of any kind, or a link to one, exists at the path. The last link is not
/// followed, and the groups before it have been opened by its readers already.
[[nodiscard]] bool Orv_H5_GroupExists(const SourceFile& file, const char* path);

/// Tells whether the location itself has the attribute. A failed search counts as found.
[[nodiscard]] bool Orv_H5_AttributeExists(hid_t location, const char* name);

/// Reads one string attribute of an object.
///
/// Contract: whether the attribute exists is asked of the file's root group, not of the object at
/// the path. Flags that were written on member datasets are therefore never found again, and
/// documents read back without them.
///
/// @return 0 and the text; -1 when the attribute is missing or is not one string
[[nodiscard]] int Orv_H5_GetAttributeIfExists(const SourceFile& file, const char* objectPath,
                                              const char* name, std::string& text);

/// Reads one string attribute of the root group; no answer when it is missing or is not one string.
[[nodiscard]] std::optional<std::string> readRootText(hid_t file, const char* name);

/// The dataset has another rank than 1, more values than a vector can hold, or values that are not
/// stored.
inline constexpr int kNotAVector = -2;

/// Returns the length of a dataset of rank 1; -1 when it cannot be opened; kNotAVector when it is
/// no vector.
///
/// Contract: the dataset stays open (KeptOpen::extentProbe).
[[nodiscard]] int Orv_H5_GetVectorDimension(const SourceFile& file, const char* path,
                                            std::size_t valueBytes);

/// Reads one integer attribute of an object; no answer when it is missing or not one integer.
[[nodiscard]] std::optional<int> readIntegerAttribute(const SourceFile& file,
                                                      const char* objectPath, const char* name);

}  // namespace orvml_io
