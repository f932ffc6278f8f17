#include "surfaces/places.h"
#include "surfaces/surface.h"
#include "surfaces/words.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <utility>

namespace orvml_tool {

namespace {

constexpr std::size_t kHeaderBytes = 80;
constexpr std::size_t kFacetBytes = 50;  // a normal and three corners, then two bytes of its own
constexpr std::size_t kNormalBytes = 12;

/// Corners that become nodes, one for each place.
class Corners {
 public:
  void add(const Places::Point& point) {
    const Places::Number node = places_.numberOf(point);
    if (node.isNew) {
      surface.coordinates.insert(surface.coordinates.end(), point.begin(), point.end());
    }
    surface.triangles.push_back(node.value);
  }

  Surface surface;

 private:
  Places places_;
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

/// What is told of a file that is too short or too long for its facets.
std::string sizesOf(std::string_view bytes) {
  if (bytes.size() < kHeaderBytes + 4) {
    return "";
  }
  const std::uint64_t facets = wordAt(bytes, kHeaderBytes);
  return ": one of " + std::to_string(facets) + " facets has " +
         std::to_string(kHeaderBytes + 4 + kFacetBytes * facets) + " bytes, this one has " +
         std::to_string(bytes.size());
}

Surface fromBinary(std::string_view bytes) {
  Corners corners;
  for (std::size_t facet = kHeaderBytes + 4; facet < bytes.size(); facet += kFacetBytes) {
    for (std::size_t corner = 0; corner < 3; ++corner) {
      const std::size_t place = facet + kNormalBytes + 12 * corner;
      corners.add({floatAt(bytes, place), floatAt(bytes, place + 4), floatAt(bytes, place + 8)});
    }
    if (bytes[facet + kFacetBytes - 2] != 0 || bytes[facet + kFacetBytes - 1] != 0) {
      ++corners.surface.passedOver["attribute words of facets"];
    }
  }
  return std::move(corners.surface);
}

/// Whether a line is of a kind; some programs write all in capitals.
bool isLine(const Words& words, std::string_view kind) {
  const std::string_view word = words.line().front();
  return std::equal(word.begin(), word.end(), kind.begin(), kind.end(),
                    [](unsigned char a, unsigned char b) { return std::tolower(a) == b; });
}

/// Takes the corners of the outer loop of a facet, whose line was read.
void addFacet(Corners& corners, Words& words) {
  int count = 0;
  while (words.nextLine() && !isLine(words, "endfacet")) {
    if (!isLine(words, "vertex")) {
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
  if (!words.nextLine() || !isLine(words, "solid")) {
    words.refuse("it is neither a text that begins with solid nor a binary file of its size" +
                 sizesOf(bytes));
  }
  Corners corners;
  while (words.nextLine()) {
    if (isLine(words, "facet")) {
      addFacet(corners, words);
    } else if (!isLine(words, "endsolid") && !isLine(words, "solid")) {
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
