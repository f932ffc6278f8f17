#pragma once

#include <hdf5.h>

#include <optional>
#include <string>
#include <vector>

namespace orvml_io {

/// Returns the number of links in a group; no answer when HDF5 cannot tell.
[[nodiscard]] std::optional<hsize_t> numberOfLinks(hid_t group);

/// Returns the name of the link at a position in ascending order of the names.
[[nodiscard]] std::optional<std::string> linkName(hid_t group, hsize_t index);

/// Returns the positions 0 to `end` - 1 that exist as links named by their decimal text, ascending.
/// The work is bounded by the links of the group, whatever `end` claims.
[[nodiscard]] std::vector<int> positionsBelow(hid_t group, int end);

}  // namespace orvml_io
