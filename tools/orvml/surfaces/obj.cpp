#include "surfaces/surface.h"
#include "surfaces/words.h"

namespace orvml_tool {

namespace {

void addNode(Surface& surface, const Words& words) {
  if (words.line().size() < 1 + kAxes) {
    words.refuse("a vertex has three coordinates");
  }
  for (std::size_t axis = 1; axis <= kAxes; ++axis) {
    surface.coordinates.push_back(words.number(words.line()[axis]));
  }
}

/// Vertices count from 1; negative ones from the last one back.
void addFace(Surface& surface, const Words& words) {
  const auto numberOfNodes = static_cast<std::int64_t>(surface.numberOfNodes());
  std::vector<std::int64_t> nodes;
  for (std::size_t i = 1; i < words.line().size(); ++i) {
    const std::string_view corner = words.line()[i];
    const std::int64_t vertex = words.integer(corner.substr(0, corner.find('/')));
    nodes.push_back(vertex < 0 ? numberOfNodes + vertex : vertex - 1);
  }
  try {
    surface.addFace(nodes);
  } catch (const FormatError& error) {
    words.refuse(error.what());
  }
}

}  // namespace

/// What is neither a vertex nor a face does not belong to the surface. Faces may name vertices that
/// stand before them alone.
Surface surfaceFromObj(std::string_view bytes) {
  Surface surface;
  Words words(bytes);
  while (words.nextLine()) {
    if (words.line().front() == "v") {
      addNode(surface, words);
    } else if (words.line().front() == "f") {
      addFace(surface, words);
    }
  }
  return surface;
}

}  // namespace orvml_tool
