#pragma once

#include <hdf5.h>

namespace orvml::detail {

/// Who made the group that shows a file to VTK.
enum class VtkGroup { none, ofLinkVtk, ofOthers };

[[nodiscard]] VtkGroup vtkGroupOf(hid_t file) noexcept;

}  // namespace orvml::detail
