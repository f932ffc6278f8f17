#include "console.h"
#include "convert/dropped_values.h"
#include "convert/field_numbers.h"
#include "convert/format.h"
#include "convert/placed_groups.h"
#include "convert/solver_mesh.h"
#include "messages.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace orvml_tool {

namespace {

using orvml::Attribute;
using orvml::DocumentView;
using orvml::Entity;

// A line has a name and eight values in fields of eight characters, then the mark of a line that
// goes on; one with a star in its name has four values in fields of sixteen.
constexpr std::size_t kSmallField = 8;
constexpr std::size_t kLargeField = 16;
constexpr std::size_t kValuesInLine = 8;
constexpr std::int64_t kGreatestNumber = 99'999'999;

void requireNastranNumber(std::int64_t number, const std::string& what) {
  if (number > kGreatestNumber || number < 1) {
    throw Refusal(
        what + " " + shown(number) + ", does not fit: Nastran has numbers from 1 to 99999999",
        "leave cells out with --only, or write another format, such as inp");
  }
}

/// One card; its fields have to fit.
class CardText {
 public:
  explicit CardText(ByteSink& sink) : sink_(sink), begin_(sink.room(kMostBytes)), next_(begin_) {}

  void add(std::string_view text, std::size_t width) {
    next_ = std::copy(text.begin(), text.end(), next_);
    next_ = std::fill_n(next_, width - text.size(), ' ');
  }
  void add(std::int64_t number, std::size_t width) {
    char* const end = std::to_chars(next_, next_ + width, number).ptr;
    next_ = std::fill_n(end, width - static_cast<std::size_t>(end - next_), ' ');
  }
  void add(double number, FieldNumbers& numbers) {
    char* const end = next_ + numbers.write(next_, number);
    next_ = std::fill_n(end, kLargeField - static_cast<std::size_t>(end - next_), ' ');
  }
  /// Ends a line and begins the next one with the same mark.
  void goOn(char mark) {
    *next_++ = mark;
    *next_++ = '\n';
    add(std::string_view(&mark, 1), kSmallField);
  }
  void end() {
    while (next_[-1] == ' ') {
      --next_;
    }
    *next_++ = '\n';
    sink_.advance(static_cast<std::size_t>(next_ - begin_));
  }

 private:
  static constexpr std::size_t kMostBytes = 512;

  ByteSink& sink_;
  char* begin_;
  char* next_;
};

FieldNumbers writeGrid(const SolverMesh& mesh, ByteSink& sink) {
  FieldNumbers numbers(kLargeField, FieldNumbers::Style::withoutLetter);
  for (std::int64_t node = 0; node < mesh.numberOfNodes(); ++node) {
    const auto point = mesh.pointOf(node);
    CardText card(sink);
    card.add("GRID*", kSmallField);
    card.add(node + 1, kLargeField);
    card.add("", kLargeField);  // the system of coordinates: the basic one
    card.add(point[0], numbers);
    card.add(point[1], numbers);
    card.goOn('*');
    card.add(point[2], numbers);
    card.end();
  }
  return numbers;
}

void writeCard(std::string_view name, std::int64_t number, std::int64_t property,
               std::span<const int> nodes, ByteSink& sink) {
  CardText card(sink);
  card.add(name, kSmallField);
  card.add(number, kSmallField);
  card.add(property, kSmallField);
  std::size_t values = 2;
  for (const int node : nodes) {
    if (values == kValuesInLine) {
      card.goOn('+');
      values = 0;
    }
    card.add(std::int64_t{node} + 1, kSmallField);
    ++values;
  }
  card.end();
}

/// The numbers of the properties of cells, which are the groups that readers make of a file.
class PropertyNumbers {
 public:
  PropertyNumbers(const DocumentView& document, const ExportOptions& options) {
    for (const Entity container : options.containers) {
      const Attribute* attribute = document.attributes(container).find(options.entityAttribute);
      if (!options.entityAttribute.empty() && attribute != nullptr && attribute->holdsInts()) {
        values_[static_cast<std::size_t>(container)] = attribute->ints();
      }
    }
    require(document, options);
  }

  [[nodiscard]] bool isOf(Entity container) const { return valuesOf(container).has_value(); }

  /// Cells without the attribute have a number of their container behind all others.
  [[nodiscard]] std::int64_t of(Entity container, std::size_t cell) const {
    const auto& values = valuesOf(container);
    return values ? (*values)[cell] : greatest_ + static_cast<std::int64_t>(container);
  }

 private:
  [[nodiscard]] const std::optional<std::span<const int>>& valuesOf(Entity container) const {
    return values_[static_cast<std::size_t>(container)];
  }

  void require(const DocumentView& document, const ExportOptions& options) {
    const std::string& name = options.entityAttribute;
    if (!name.empty() && std::none_of(values_.begin(), values_.end(),
                                      [](const auto& values) { return values.has_value(); })) {
      throw Refusal(
          "there is no attribute '" + printable(name) + "' of integers that numbers cells",
          "see which attributes there are with orvml info");
    }
    for (const Entity container : options.containers) {
      for (const int value : valuesOf(container).value_or(std::span<const int>())) {
        requireNastranNumber(value,
                             attributePath(document, container, printable(name)) + ": the value");
        greatest_ = std::max<std::int64_t>(greatest_, value);
      }
    }
    requireNastranNumber(greatest_ + 3, "the property of cells without the attribute, number");
  }

  std::array<std::optional<std::span<const int>>, 4> values_;  // by container
  std::int64_t greatest_ = 0;
};

void writeCards(const SolverMesh& mesh, const PropertyNumbers& properties, ByteSink& sink) {
  for (const SolverMesh::Group& group : mesh.groups()) {
    mesh.forEachElement(group, [&](std::int64_t number, int cell, std::span<const int> nodes) {
      const std::size_t place = group.placed.first + static_cast<std::size_t>(cell);
      writeCard(group.cell->name, number, properties.of(group.placed.container, place), nodes,
                sink);
    });
  }
}

}  // namespace

void writeNastran(const DocumentView& document, const ExportOptions& options, ByteSink& sink,
                  ConversionReport& report) {
  constexpr std::string_view kFormat = "nastran";
  requireFiniteNodes(document, kFormat);
  const SolverMesh mesh(document, options.containers, kFormat, nastranCells(), report);
  requireNastranNumber(std::max<std::int64_t>(1, mesh.numberOfNodes()), "the last node, number");
  requireNastranNumber(std::max<std::int64_t>(1, mesh.numberOfElements()),
                       "the last element, number");
  const PropertyNumbers properties(document, options);
  sink.write("CEND\nBEGIN BULK\n");
  const FieldNumbers numbers = writeGrid(mesh, sink);
  writeCards(mesh, properties, sink);
  sink.write("ENDDATA\n");
  reportPaddedNodes(document, report);
  reportRoundedNodes(document, numbers.roundedNumbers(), numbers.largestError(),
                     "the 16 characters that Nastran has for a number", report);
  reportDroppedValues(
      document, options.containers, kFormat,
      [&](Entity entity, const Attribute& attribute) {
        return entity != Entity::nodes && properties.isOf(entity) &&
               attribute.name == options.entityAttribute;
      },
      report);
}

}  // namespace orvml_tool
