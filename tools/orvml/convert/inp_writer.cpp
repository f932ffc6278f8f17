#include "console.h"
#include "convert/dropped_values.h"
#include "convert/field_numbers.h"
#include "convert/format.h"
#include "convert/placed_groups.h"
#include "convert/solver_mesh.h"
#include "convert/solver_sets.h"
#include "facts.h"
#include "messages.h"

#include <algorithm>
#include <cctype>
#include <climits>

namespace orvml_tool {

namespace {

using orvml::DocumentView;
using orvml::Entity;

/// CalculiX reads so many characters of a number and takes no notice of the rest, not even of an
/// exponent.
constexpr std::size_t kInpNumber = 20;

constexpr std::string_view kInpHead =
    "** Nodes, elements and sets of an exchange file, made by orvml convert.\n"
    "** Materials, sections and steps are to be added.\n";

/// Such as FACES, the name of the set of all faces.
std::string containerSet(Entity container) {
  std::string name = groupName(container);
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
  return name;
}

FieldNumbers writeInpNodes(const SolverMesh& mesh, ByteSink& sink) {
  constexpr std::size_t kLongestLine = 12 + 3 * (2 + kInpNumber) + 1;
  FieldNumbers numbers(kInpNumber, FieldNumbers::Style::plain);
  sink.write("*NODE, NSET=ALL_NODES\n");
  for (std::int64_t node = 0; node < mesh.numberOfNodes(); ++node) {
    char* const begin = sink.room(kLongestLine);
    char* next = std::to_chars(begin, begin + kLongestLine, node + 1).ptr;
    for (const double coordinate : mesh.pointOf(node)) {
      *next++ = ',';
      *next++ = ' ';
      next += numbers.write(next, coordinate);
    }
    *next++ = '\n';
    sink.advance(static_cast<std::size_t>(next - begin));
  }
  return numbers;
}

/// A line has 16 numbers at most and ends with a comma when it goes on.
void writeInpElement(std::int64_t number, std::span<const int> nodes, ByteSink& sink) {
  constexpr std::size_t kMostNumbers = 16;
  constexpr std::size_t kLongestNumber = 12;
  const std::size_t most = (nodes.size() + 1) * (kLongestNumber + 2) + 1;
  char* const begin = sink.room(most);
  char* next = std::to_chars(begin, begin + kLongestNumber, number).ptr;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    *next++ = ',';
    *next++ = (i + 1) % kMostNumbers == 0 ? '\n' : ' ';
    next = std::to_chars(next, next + kLongestNumber, std::int64_t{nodes[i]} + 1).ptr;
  }
  *next++ = '\n';
  sink.advance(static_cast<std::size_t>(next - begin));
}

void writeInpElements(const SolverMesh& mesh, ByteSink& sink) {
  for (const SolverMesh::Group& group : mesh.groups()) {
    if (group.elements() == 0) {
      continue;
    }
    sink.write("*ELEMENT, TYPE=");
    sink.write(group.cell->name);
    sink.write(", ELSET=");
    sink.write(containerSet(group.placed.container));
    sink.write("\n");
    mesh.forEachElement(group, [&](std::int64_t number, int, std::span<const int> nodes) {
      writeInpElement(number, nodes, sink);
    });
  }
}

}  // namespace

void writeInp(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
              ConversionReport& report) {
  constexpr std::string_view kFormat = "inp";
  requireFiniteNodes(document, kFormat);
  const SolverMesh mesh(document, options.containers, kFormat, inpCells(document.dimension()),
                        report);
  if (mesh.numberOfElements() > INT_MAX) {
    throw Refusal(
        "there are " + counted(mesh.numberOfElements(), "element") + ", more than solvers count",
        "leave cells out with --only");
  }
  SolverSets sets(document, options, mesh, report);
  sink.write(kInpHead);
  const FieldNumbers numbers = writeInpNodes(mesh, sink);
  writeInpElements(mesh, sink);
  sets.write(sink);
  reportPaddedNodes(document, report);
  reportRoundedNodes(document, numbers.roundedNumbers(), numbers.largestError(),
                     "the 20 characters that inp has for a number", report);
  reportDroppedValues(
      document, options.containers, kFormat,
      [&](Entity entity, const orvml::Attribute& attribute) {
        return sets.keep(entity, attribute);
      },
      report);
}

}  // namespace orvml_tool
