// What the preprocessor makes sure of after it has sent a document.
#pragma once

#include "preprocessor/document.h"

#include <string>

namespace orvml_examples {

/// The file reads back as a document that equals the one that was sent.
void requireEqualWhenReadBack(const Document& sent, const std::string& inputFile);

/// Prints the mesh of a document as text and requires that every node and the two kinds of cells
/// are in it.
void printMeshAndRequireItWhole(const Document& document, const std::string& textFile);

}  // namespace orvml_examples
