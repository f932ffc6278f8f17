#pragma once

#include "lent_document.h"
#include "safe_file.h"

namespace orvml::detail {

/// Writes all of an exchange file, which is still open then: the marker and one document or both,
/// null for one that is not there. Throws Error when that is not possible.
void writeDocuments(const LentDocument* input, const LentDocument* output, SafeFile& file);

}  // namespace orvml::detail
