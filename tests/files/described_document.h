#pragma once

#include <string>

namespace orvml_io_tests {

/// Prints everything of a document that a file keeps, one line for each thing: two documents are
/// the same up to what files lose when their texts are equal. Doubles are printed so that every bit
/// shows.
///
/// Files lose three things, which are therefore left out: the must-be-transmitted flags, containers
/// without nodes or cells, and the callbacks. The format version of the file is no content.
std::string describe(void* document);

}  // namespace orvml_io_tests
