#pragma once

#include "hdf5/id.h"

#include <optional>
#include <vector>

namespace orvml_io_tests {

using Lengths = std::vector<hsize_t>;

/// Returns the extents of a dataset; none for a dataspace that holds nothing at all, an empty list
/// for a scalar. Choice 0 is the normal ones; the others have another rank, are a little off, or
/// count more than any integer of the reader can. The choices repeat.
std::optional<Lengths> lengthsOf(unsigned choice, const Lengths& normal);

/// Makes the dataspace of such extents, which can grow when `isExtendible`.
orvml_io::DataspaceId dataspaceOf(const std::optional<Lengths>& lengths, bool isExtendible);

/// Returns the number of values; no answer when 64 bits cannot count their bytes.
std::optional<hsize_t> numberOfValues(const std::optional<Lengths>& lengths);

}  // namespace orvml_io_tests
