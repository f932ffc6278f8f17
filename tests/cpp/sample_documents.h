#pragma once

#include <orvml/document.hpp>

namespace orvml_io_tests {

/// A tetrahedral mesh with everything a document can hold: the same as fullDocument() of the flat
/// interface.
orvml::Input fullInput();

/// Three triangles and two quadrilaterals on seven nodes, with one scalar parameter.
orvml::Output mixedOutput();

}  // namespace orvml_io_tests
