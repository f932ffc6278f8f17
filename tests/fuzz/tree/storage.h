#pragma once

#include "fuzz/tree/extents.h"
#include "hdf5/id.h"

namespace orvml_io_tests {

/// More values are not worth the time that it takes to write them.
inline constexpr hsize_t kMostValuesWritten = 140000;

/// How much of a dataset is written.
enum class Written { all, firstChunk, nothing };

/// How the values of a dataset lie in the file.
struct Storage {
  orvml_io::PropertyListId creation;  // none for HDF5's default
  Written written = Written::all;
  bool isExtendible = false;
};

/// Returns a storage for a dataset. Choice 0 is what the Lite interface makes; the others are
/// compact, chunked, filtered, written in part or not at all, unreadable, or kept outside of the
/// file in files that do not exist. The choices repeat.
Storage storageOf(unsigned choice, const std::optional<Lengths>& lengths, hid_t type);

}  // namespace orvml_io_tests
