#pragma once

#include "fuzz/tree/objects.h"

namespace orvml_io_tests {

/// Fills a file with the attributes of its root and one or two documents. Returns nothing about
/// what became of them: that is for the reader to find out.
void makeExchangeTree(Tree& tree);

}  // namespace orvml_io_tests
