#pragma once

#include "check/checked_mesh.h"

namespace orvml::detail {

/// Checks a document of which not everything may be believed, and adds to what has been found.
void checkDocument(const DocumentView& document, const Believed& believed,
                   const CheckOptions& options, FindingList& findings,
                   std::vector<CellQuality>& quality);

}  // namespace orvml::detail
