#include "surfaces/surface.h"
#include "surfaces/words.h"

namespace orvml_tool {

namespace {

void addObjNode(Surface& surface, const Words& words) {
  if (words.line().size() < 1 + kAxes) {
    words.refuse("a vertex has three coordinates");
  }
  for (std::size_t axis = 1; axis <= kAxes; ++axis) {
    surface.coordinates.push_back(words.number(words.line()[axis]));
  }
  constexpr std::size_t kWithWeight = 2 + kAxes;
  if (words.line().size() > kWithWeight) {
    ++surface.passedOver["v: colours of vertices"];
  } else if (words.line().size() == kWithWeight && words.number(words.line().back()) != 1.0) {
    ++surface.passedOver["v: weights of vertices"];
  }
}

/// Vertices count from 1; negative ones from the last one back. What follows the number of a vertex
/// is of a texture or a normal.
void addObjFace(Surface& surface, const Words& words, std::vector<std::int64_t>& nodes) {
  const auto numberOfNodes = static_cast<std::int64_t>(surface.numberOfNodes());
  nodes.clear();
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

/// How a line is told of that is passed over.
std::string lineName(const Surface& surface, std::string_view keyword) {
  constexpr std::size_t kLongest = 40;
  constexpr std::size_t kMost = 20;
  const std::string name = std::string(keyword.substr(0, kLongest)) + ": lines";
  const bool isKnown = surface.passedOver.count(name) > 0 || surface.passedOver.size() < kMost;
  return isKnown ? name : "other lines";
}

}  // namespace

/// What is neither a vertex nor a face does not belong to the surface. Faces may name vertices that
/// stand before them alone.
Surface surfaceFromObj(std::string_view bytes) {
  Surface surface;
  Words words(bytes, Words::Lines::goOnAfterBackslash);
  std::vector<std::int64_t> nodes;
  while (words.nextLine()) {
    if (words.line().front() == "v") {
      addObjNode(surface, words);
    } else if (words.line().front() == "f") {
      addObjFace(surface, words, nodes);
    } else {
      ++surface.passedOver[lineName(surface, words.line().front())];
    }
  }
  return surface;
}

}  // namespace orvml_tool
