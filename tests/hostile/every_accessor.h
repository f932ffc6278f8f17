#pragma once

#include <array>

namespace orvml_io_tests {

/// Calls every exported function that looks into a document, and reads every value that it hands
/// out to the last one that it promises, so that a sanitizer sees what lies behind.
void callEveryAccessor(void* document);

/// The numbers of nodes, edges, faces and volume elements of a document.
std::array<int, 4> countsOf(void* document);

}  // namespace orvml_io_tests
