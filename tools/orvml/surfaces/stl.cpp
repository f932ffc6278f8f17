#include "surfaces/surface.h"
#include "surfaces/words.h"

#include <array>
#include <cstring>
#include <map>

namespace orvml_tool {

namespace {

constexpr std::size_t kHeaderBytes = 80;
constexpr std::size_t kFacetBytes = 50;  // a normal and three corners, then two bytes of its own
constexpr std::size_t kNormalBytes = 12;

using Point = std::array<double, 3>;

/// Corners that become nodes, one for each place.
class Corners {
 public:
  void add(Point point) {
    for (double& value : point) {
      value += 0.0;  // -0.0 is the same place
    }
    const auto next = static_cast<int>(surface.numberOfNodes());
    const auto [found, isNew] = nodes_.try_emplace(point, next);
    if (isNew) {
      surface.coordinates.insert(surface.coordinates.end(), point.begin(), point.end());
    }
    surface.triangles.push_back(found->second);
  }

  Surface surface;

 private:
  std::map<Point, int> nodes_;
};

std::uint32_t wordAt(std::string_view bytes, std::size_t position) {
  std::uint32_t word = 0;
  for (std::size_t i = 0; i < sizeof word; ++i) {
    word |= std::uint32_t{static_cast<unsigned char>(bytes[position + i])} << (8 * i);
  }
  return word;
}

double floatAt(std::string_view bytes, std::size_t position) {
  const std::uint32_t word = wordAt(bytes, position);
  float value = 0.0F;
  std::memcpy(&value, &word, sizeof value);
  return double{value};
}

/// Binary files may begin with "solid", too; their size tells.
bool isBinary(std::string_view bytes) {
  return bytes.size() >= kHeaderBytes + 4 &&
         bytes.size() == kHeaderBytes + 4 + kFacetBytes * std::size_t{wordAt(bytes, kHeaderBytes)};
}

Surface fromBinary(std::string_view bytes) {
  Corners corners;
  for (std::size_t facet = kHeaderBytes + 4; facet < bytes.size(); facet += kFacetBytes) {
    for (std::size_t corner = 0; corner < 3; ++corner) {
      const std::size_t place = facet + kNormalBytes + 12 * corner;
      corners.add({floatAt(bytes, place), floatAt(bytes, place + 4), floatAt(bytes, place + 8)});
    }
  }
  return std::move(corners.surface);
}

/// Takes the corners of the outer loop of a facet, whose line was read.
void addFacet(Corners& corners, Words& words) {
  int count = 0;
  while (words.nextLine() && words.line().front() != "endfacet") {
    if (words.line().front() != "vertex") {
      continue;
    }
    if (words.line().size() != 4 || ++count > 3) {
      words.refuse("a facet has three corners of three coordinates");
    }
    corners.add({words.number(words.line()[1]), words.number(words.line()[2]),
                 words.number(words.line()[3])});
  }
  if (count != 3 || words.line().empty()) {
    words.refuse("a facet has three corners of three coordinates, and an end");
  }
}

Surface fromText(std::string_view bytes) {
  Words words(bytes);
  if (!words.nextLine() || words.line().front() != "solid") {
    words.refuse("it is neither a text that begins with solid nor a binary file of its size");
  }
  Corners corners;
  while (words.nextLine()) {
    if (words.line().front() == "facet") {
      addFacet(corners, words);
    } else if (words.line().front() != "endsolid" && words.line().front() != "solid") {
      words.refuse("there is something else than facets");
    }
  }
  return std::move(corners.surface);
}

}  // namespace

Surface surfaceFromStl(std::string_view bytes) {
  return isBinary(bytes) ? fromBinary(bytes) : fromText(bytes);
}

}  // namespace orvml_tool
