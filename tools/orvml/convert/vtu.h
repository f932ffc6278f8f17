#pragma once

#include <string_view>

// What writer and reader of vtu files agree on beyond VTK's format.
namespace orvml_tool {

/// The array of cells that says which container they are of: 1 edges, 2 faces, 3 elements.
inline constexpr std::string_view kContainerArray = "orvml.container";

/// The array of the field data that holds the document's facts: a text of bytes, because not every
/// reader of the format knows arrays of texts.
inline constexpr std::string_view kFactsArray = "orvml.document";

}  // namespace orvml_tool
