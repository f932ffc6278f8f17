#include "convert/dropped_values.h"
#include "convert/format.h"
#include "convert/written_surface.h"

#include <array>
#include <charconv>
#include <string>

/// The formats that have nodes with numbers: PLY, OBJ and OFF.
namespace orvml_tool {

namespace {

using orvml::DocumentView;

constexpr std::size_t kLongestText = 32;  // of a number

/// A line of numbers, each after a blank but the first one of an empty beginning.
template <class Values>
void writeNumbers(ByteSink& sink, std::string_view beginning, const Values& values) {
  char* const line = sink.room(beginning.size() + values.size() * (kLongestText + 1) + 1);
  char* next = std::copy(beginning.begin(), beginning.end(), line);
  for (const auto value : values) {
    if (next != line) {
      *next++ = ' ';
    }
    next = std::to_chars(next, next + kLongestText, value).ptr;
  }
  *next++ = '\n';
  sink.advance(static_cast<std::size_t>(next - line));
}

void writeNodeLines(const WrittenSurface& surface, std::string_view beginning, ByteSink& sink) {
  surface.forEachNode(
      [&](const std::array<double, 3>& point) { writeNumbers(sink, beginning, point); });
}

/// @param firstNumber  of a node
void writeFaceLines(const WrittenSurface& surface, std::array<std::string_view, 2> beginnings,
                    int firstNumber, ByteSink& sink) {
  surface.forEachFace([&](std::span<const int> nodes) {
    std::array<std::int64_t, 4> numbers = {};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      numbers[i] = std::int64_t{surface.numberOf(nodes[i])} + firstNumber;
    }
    writeNumbers(sink, beginnings[nodes.size() - 3],
                 std::span<const std::int64_t>(numbers.data(), nodes.size()));
  });
}

std::string plyHeader(const WrittenSurface& surface, bool asText) {
  return "ply\nformat " + std::string(asText ? "ascii" : "binary_little_endian") +
         " 1.0\ncomment made by orvml convert\nelement vertex " +
         std::to_string(surface.numberOfNodes()) +
         "\nproperty float x\nproperty float y\nproperty float z\nelement face " +
         std::to_string(surface.numberOfFaces()) +
         "\nproperty list uchar int vertex_indices\nend_header\n";
}

void writePlyBinary(const DocumentView& document, const WrittenSurface& surface, ByteSink& sink,
                    ConversionReport& report) {
  RoundedFloats floats;
  surface.forEachNode([&](const std::array<double, 3>& point) {
    for (const double value : point) {
      sink.writeValue(floats.of(value));
    }
  });
  surface.forEachFace([&](std::span<const int> nodes) {
    sink.writeValue(static_cast<std::uint8_t>(nodes.size()));
    for (const int node : nodes) {
      sink.writeValue(surface.numberOf(node));
    }
  });
  reportRoundedNodes(document, floats.roundedNumbers(), floats.largestError(),
                     "the 32 bits that binary ply has here for a number", report);
}

}  // namespace

/// Coordinates are floats because Gmsh misreads files with doubles. As text they have all of their
/// digits all the same, for readers that keep them.
void writePly(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
              ConversionReport& report) {
  const WrittenSurface surface(document, options, {"ply", true, true}, report);
  sink.write(plyHeader(surface, options.asText));
  if (options.asText) {
    writeNodeLines(surface, "", sink);
    writeFaceLines(surface, {"3", "4"}, 0, sink);
  } else {
    writePlyBinary(document, surface, sink, report);
  }
}

void writeObj(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
              ConversionReport& report) {
  const WrittenSurface surface(document, options, {"obj", true, true}, report);
  sink.write("# made by orvml convert\n");
  writeNodeLines(surface, "v", sink);
  writeFaceLines(surface, {"f", "f"}, 1, sink);
}

void writeOff(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
              ConversionReport& report) {
  const WrittenSurface surface(document, options, {"off", true, true}, report);
  sink.write("OFF\n");
  writeNumbers(sink, "",
               std::array<std::int64_t, 3>{surface.numberOfNodes(), surface.numberOfFaces(), 0});
  writeNodeLines(surface, "", sink);
  writeFaceLines(surface, {"3", "4"}, 0, sink);
}

}  // namespace orvml_tool
