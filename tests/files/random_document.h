#pragma once

#include "support/document_builder.h"

namespace orvml_io_tests {

/// Makes a small document of any content that a file can hold: any bits in doubles, any integers,
/// any bytes in names, any shapes, empty type groups, kinds with and without cells. The same seed
/// always gives the same document.
BuiltDocument randomDocument(unsigned seed);

}  // namespace orvml_io_tests
