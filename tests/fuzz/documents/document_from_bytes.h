#pragma once

#include "fuzz/harness/byte_source.h"
#include "sequences/document_model.h"

namespace orvml_io_tests {

/// Returns the document that the bytes of an input describe. Zeros describe a mesh with everything
/// that a document can hold.
DocumentModel documentFrom(ByteSource& bytes);

}  // namespace orvml_io_tests
