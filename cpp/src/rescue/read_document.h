#pragma once

#include "rescue/losses.h"
#include "rescue/rescued_document.h"

#include <hdf5.h>

#include <functional>
#include <optional>
#include <set>
#include <string>

namespace orvml::detail {

/// What is known of a file before its documents are read.
struct FileFacts {
  std::string statedVersion;  ///< empty when there is none
  std::string version;        ///< by which parameters and attributes are read
  bool isMarked = false;
  /// The objects with integers that 32 bits do not hold, which readers would change.
  std::set<std::string, std::less<>> clamped;
};

/// Looks at a file: its marker, which layout it has, whatever it states, and the objects that do
/// not belong to it, which are losses.
[[nodiscard]] FileFacts factsOf(hid_t file, Losses& losses);

/// Reads as much of a document as can be read, without a look at what it says; no document where
/// the file has none, or none whose dimension is known. All is closed afterwards.
[[nodiscard]] std::optional<RescuedDocument> readDocument(hid_t file, Kind kind,
                                                          const FileFacts& facts, Losses& losses);

}  // namespace orvml::detail
