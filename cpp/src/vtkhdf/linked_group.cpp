#include "vtkhdf/linked_group.h"

#include "hdf5/id.h"
#include "hdf5/layout.h"
#include "hdf5/silence.h"

namespace orvml::detail {

namespace layout = orvml_io::layout;

/// A link of another kind may lead to another file. The mark of linkVtk() tells its group from one
/// that somebody else made, which may hold what is nowhere else.
VtkGroup vtkGroupOf(hid_t file) noexcept {
  const orvml_io::Silence silence;
  H5L_info_t info = {};
  if (H5Lexists(file, layout::kVtkHdf, H5P_DEFAULT) <= 0) {
    return VtkGroup::none;
  }
  if (H5Lget_info(file, layout::kVtkHdf, &info, H5P_DEFAULT) < 0 || info.type != H5L_TYPE_HARD) {
    return VtkGroup::ofOthers;
  }
  const orvml_io::GroupId group(H5Gopen2(file, layout::kVtkHdf, H5P_DEFAULT));
  const bool isMarked = group.valid() && H5Aexists(group.get(), layout::kLinkedDocument) > 0;
  return isMarked ? VtkGroup::ofLinkVtk : VtkGroup::ofOthers;
}

}  // namespace orvml::detail
