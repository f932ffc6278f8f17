#include "surfaces/surface.h"
#include "surfaces/words.h"

namespace orvml_tool {

namespace {

/// A face may have a colour behind its nodes, up to the end of the line.
void addFace(Surface& surface, Words& words) {
  if (!words.nextLine()) {
    words.refuse("the file ends too early");
  }
  const std::size_t size = words.count(words.line().front());
  if (words.line().size() < size + 1) {
    words.refuse("a face has fewer nodes than it says");
  }
  std::vector<std::int64_t> nodes;
  for (std::size_t i = 1; i <= size; ++i) {
    nodes.push_back(words.integer(words.line()[i]));
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
  if (words.next() != "OFF") {
    words.refuse("there is no OFF at the beginning, so it is another kind of file");
  }
  const std::size_t nodes = words.count(words.next());
  const std::size_t faces = words.count(words.next());
  [[maybe_unused]] const std::size_t edges = words.count(words.next());
  Surface surface;
  for (std::size_t i = 0; i < nodes * kAxes; ++i) {
    surface.coordinates.push_back(words.number(words.next()));
  }
  for (std::size_t face = 0; face < faces; ++face) {
    addFace(surface, words);
  }
  return surface;
}

}  // namespace orvml_tool
