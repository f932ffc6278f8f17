#include "surfaces/surface.h"
#include "surfaces/words.h"

namespace orvml_tool {

namespace {

void nextOffLine(Words& words) {
  if (!words.nextLine()) {
    words.refuse("the file ends too early");
  }
}

/// Vertices of a file of colours have a line each, with the colour behind.
void addColouredNode(Surface& surface, Words& words) {
  nextOffLine(words);
  if (words.line().size() < kAxes) {
    words.refuse("a vertex has three coordinates");
  }
  for (std::size_t axis = 0; axis < kAxes; ++axis) {
    surface.coordinates.push_back(words.number(words.line()[axis]));
  }
  if (words.line().size() > kAxes) {
    ++surface.passedOver["colours of vertices"];
  }
}

/// A face may have a colour behind its nodes, up to the end of the line.
void addOffFace(Surface& surface, Words& words, std::vector<std::int64_t>& nodes) {
  nextOffLine(words);
  const std::size_t size = words.count(words.line().front());
  if (words.line().size() < size + 1) {
    words.refuse("a face has fewer nodes than it says");
  }
  nodes.clear();
  for (std::size_t i = 1; i <= size; ++i) {
    nodes.push_back(words.integer(words.line()[i]));
  }
  if (words.line().size() > size + 1) {
    ++surface.passedOver["colours of faces"];
  }
  try {
    surface.addFace(nodes);
  } catch (const FormatError& error) {
    words.refuse(error.what());
  }
}

}  // namespace

Surface surfaceFromOff(std::string_view bytes) {
  Words words(bytes);
  const std::string_view kind = words.next();
  if (kind != "OFF" && kind != "COFF") {
    words.refuse("there is no OFF at the beginning, so it is another kind of file");
  }
  const std::size_t nodes = words.count(words.next());
  const std::size_t faces = words.count(words.next());
  [[maybe_unused]] const std::size_t edges = words.count(words.next());
  Surface surface;
  for (std::size_t node = 0; kind == "COFF" && node < nodes; ++node) {
    addColouredNode(surface, words);
  }
  for (std::size_t i = 0; kind == "OFF" && i < nodes * kAxes; ++i) {
    surface.coordinates.push_back(words.number(words.next()));
  }
  std::vector<std::int64_t> corners;
  for (std::size_t face = 0; face < faces; ++face) {
    addOffFace(surface, words, corners);
  }
  return surface;
}

}  // namespace orvml_tool
