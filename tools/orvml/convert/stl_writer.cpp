#include "console.h"
#include "convert/dropped_values.h"
#include "convert/format.h"
#include "convert/placed_groups.h"
#include "convert/written_surface.h"
#include "messages.h"
#include "surfaces/places.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace orvml_tool {

namespace {

using orvml::DocumentView;
using Corner = std::array<double, 3>;

constexpr std::string_view kStl = "stl";

/// Of unit length; 0 for a triangle without an area.
Corner normalOf(const std::array<Corner, 3>& corners) {
  Corner a = {};
  Corner b = {};
  for (std::size_t axis = 0; axis < a.size(); ++axis) {
    a[axis] = corners[1][axis] - corners[0][axis];
    b[axis] = corners[2][axis] - corners[0][axis];
  }
  const Corner normal = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                         a[0] * b[1] - a[1] * b[0]};
  const double length = std::hypot(normal[0], normal[1], normal[2]);
  return std::isnormal(length) ? Corner{normal[0] / length, normal[1] / length, normal[2] / length}
                               : Corner{};
}

std::array<Corner, 3> cornersOf(const WrittenSurface& surface, std::span<const int> nodes) {
  std::array<Corner, 3> corners = {};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    corners[i] = surface.pointOf(static_cast<std::size_t>(nodes[i]));
  }
  return corners;
}

void writeStlText(const WrittenSurface& surface, ByteSink& sink) {
  const auto writePoint = [&](std::string_view before, const Corner& point) {
    sink.write(before);
    for (const double value : point) {
      sink.write(" ");
      sink.writeText(value);
    }
    sink.write("\n");
  };
  sink.write("solid orvml\n");
  surface.forEachFace([&](std::span<const int> nodes) {
    const auto corners = cornersOf(surface, nodes);
    writePoint("facet normal", normalOf(corners));
    sink.write("outer loop\n");
    for (const Corner& corner : corners) {
      writePoint("vertex", corner);
    }
    sink.write("endloop\nendfacet\n");
  });
  sink.write("endsolid orvml\n");
}

/// A normal and three corners of three floats each, then two bytes of no meaning here.
void writeStlBinary(const WrittenSurface& surface, ByteSink& sink) {
  constexpr std::size_t kHeaderSize = 80;
  constexpr std::size_t kBytes = 50;
  std::string header = "made by orvml convert";
  header.resize(kHeaderSize, ' ');
  sink.write(header);
  sink.writeValue(static_cast<std::uint32_t>(surface.numberOfFaces()));
  RoundedFloats floats;
  surface.forEachFace([&](std::span<const int> nodes) {
    const auto corners = cornersOf(surface, nodes);
    const Corner normal = normalOf(corners);
    std::array<float, 12> values = {};
    std::size_t next = 0;
    for (const Corner& point : {normal, corners[0], corners[1], corners[2]}) {
      for (const double value : point) {
        values[next++] = floats.of(value);
      }
    }
    char* facet = sink.room(kBytes);
    std::memset(facet, 0, kBytes);
    std::memcpy(facet, values.data(), sizeof values);
    sink.advance(kBytes);
  });
}

/// Which coordinates lose digits, each counted once.
void reportStlFloats(const DocumentView& document, const WrittenSurface& surface,
                     ConversionReport& report) {
  RoundedFloats floats;
  surface.forEachNode([&](const Corner& point) {
    for (const double value : point) {
      (void)floats.of(value);
    }
  });
  reportRoundedNodes(document, floats.roundedNumbers(), floats.largestError(),
                     "the 32 bits that binary stl has for a number", report);
}

/// Facets repeat their corners, so nodes are known by their places alone, and are numbered as they
/// come.
void reportStlNodes(const DocumentView& document, const WrittenSurface& surface, bool asText,
                    ConversionReport& report) {
  Places places;
  std::vector<bool> isSeen(static_cast<std::size_t>(document.nodes().size()));
  RoundedFloats floats;
  std::int64_t merged = 0;
  std::int64_t moved = 0;
  int last = -1;
  surface.forEachFace([&](std::span<const int> nodes) {
    for (const int node : nodes) {
      const auto index = static_cast<std::size_t>(node);
      if (isSeen[index]) {
        continue;
      }
      isSeen[index] = true;
      Corner point = surface.pointOf(index);
      for (double& value : point) {
        value = asText ? value : static_cast<double>(floats.of(value));
      }
      merged += places.numberOf(point).isNew ? 0 : 1;
      moved += node < last ? 1 : 0;
      last = node;
    }
  });
  if (merged > 0) {
    report.add(orvml::Fate::dropped, pathOf(document, orvml::Entity::nodes), merged,
               "has " + counted(merged, "node") +
                   " at the places of others, which become one with them in stl");
  }
  if (moved > 0) {
    report.add(orvml::Fate::turned, pathOf(document, orvml::Entity::nodes), moved,
               "are numbered by stl in the order in which facets have them");
  }
}

}  // namespace

void writeStl(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
              ConversionReport& report) {
  const WrittenSurface surface(document, options, {kStl, false, false}, report);
  if (surface.numberOfFaces() > std::numeric_limits<std::uint32_t>::max()) {
    throw Refusal(
        "there are " + counted(surface.numberOfFaces(), "triangle") + ", more than stl counts",
        "write ply");
  }
  if (options.asText) {
    writeStlText(surface, sink);
  } else {
    writeStlBinary(surface, sink);
    reportStlFloats(document, surface, report);
  }
  reportStlNodes(document, surface, options.asText, report);
}

}  // namespace orvml_tool
