#pragma once

#include "check/finding_list.h"

#include <hdf5.h>

namespace orvml::detail {

/// Looks at how a file is stored, which documents do not show: an old layout, objects that the
/// format does not know, links to other files, and integers that 32 bits do not hold. Values are
/// read of integers of other types alone, piece by piece.
void checkStoredFile(hid_t file, FindingList& findings);

/// Looks at the objects alone, those of the positional layouts or those of the present one.
void checkStoredObjects(hid_t file, bool isLegacy, FindingList& findings);

}  // namespace orvml::detail
