#pragma once

#include "sequences/document_model.h"

namespace orvml_io_tests {

/// What the library must answer when it compares two documents; null stands for a null handle.
bool areEqual(const DocumentModel* first, const DocumentModel* second);

}  // namespace orvml_io_tests
