#pragma once

#include <string>

namespace orvml_io_tests {

/// A document that is told by two things: how many nodes it has, and the name of their attribute.
struct MeshDocument {
  int numberOfNodes = 0;
  std::string attribute;
};

/// All values of such a document as text, computed from these two.
std::string describe(const MeshDocument& document);

/// The names that attributes have here. The library lists none, so a reader asks for each.
inline constexpr const char* kAttributeNames[] = {"quality", "thickness", "id"};

/// Writes such a document as an input or an output; returns the library's result.
enum class Kind { input, output };
int write(const char* path, Kind kind, const MeshDocument& document);

/// The values of a document of the library as text, as describe() has them; "none" for a null
/// handle.
std::string describe(void* handle);

}  // namespace orvml_io_tests
