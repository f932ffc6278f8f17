#pragma once

#include <hdf5.h>

#include <optional>
#include <string>
#include <vector>

namespace orvml_io {

/// Returns the names of all links of a group in ascending order; no answer when HDF5 cannot tell.
/// One pass: asking for one name after the other costs more the further the name.
[[nodiscard]] std::optional<std::vector<std::string>> linkNames(hid_t group);

/// Returns the positions 0 to `end` - 1 that exist as links named by their decimal text, ascending;
/// no answer when HDF5 cannot tell. The work is bounded by the links of the group, whatever `end`
/// claims.
[[nodiscard]] std::optional<std::vector<int>> positionsBelow(hid_t group, int end);

}  // namespace orvml_io
