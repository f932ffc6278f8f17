#include "command.h"
#include "console.h"
#include "exit_codes.h"
#include "input_file.h"
#include "json.h"
#include "messages.h"
#include "named_values.h"
#include "npy.h"
#include "numbers.h"
#include "progress.h"

#include <cmath>
#include <map>
#include <memory>

namespace orvml_tool {

namespace {

enum class Format { text, csv, json, npy };

struct ExtractArguments {
  std::string file;
  std::string name;
  std::string range;
  Format format = Format::text;
};

/// Rows of some values: the nodes or cells that are asked for.
template <class Value>
struct Rows {
  const NamedValue& source;
  std::span<const Value> values;

  [[nodiscard]] std::size_t size() const { return values.size() / source.rowLength; }
  [[nodiscard]] std::span<const Value> operator[](std::size_t row) const {
    return values.subspan(row * source.rowLength, source.rowLength);
  }
};

std::string textOf(int value) { return shown(std::int64_t{value}); }
std::string textOf(double value) { return shown(value); }
std::string jsonOf(int value) { return shown(std::int64_t{value}); }
std::string jsonOf(double value) {
  return std::isfinite(value) ? shown(value) : "\"" + shown(value) + "\"";
}

template <class Value>
std::string joined(std::span<const Value> row, std::string_view separator,
                   std::string (*of)(Value) = textOf) {
  std::string line;
  for (const Value value : row) {
    line.append(line.empty() ? "" : separator).append(of(value));
  }
  return line;
}

template <class Value>
void printText(const Rows<Value>& rows, std::string_view separator) {
  for (std::size_t row = 0; row < rows.size(); ++row) {
    print(joined(rows[row], separator) + "\n");
  }
}

/// A field of CSV: in quotation marks where that is needed, those in it doubled.
std::string field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  std::string quoted = "\"";
  for (const char character : text) {
    quoted += character == '"' ? "\"\"" : std::string(1, character);
  }
  return quoted + "\"";
}

std::string csvHeader(const NamedValue& value) {
  if (value.rowLength == 1) {
    return field(value.name);
  }
  const bool areCoordinates = value.name == "coordinates";
  constexpr std::string_view kAxes = "xyz";
  std::string header;
  for (std::size_t i = 0; i < value.rowLength; ++i) {
    header +=
        (i == 0 ? "" : ",") + (areCoordinates && i < kAxes.size() ? std::string(1, kAxes[i])
                                                                  : "node" + std::to_string(i));
  }
  return header;
}

template <class Value>
void printRowsAsJson(const Rows<Value>& rows) {
  const bool areNested = rows.source.rowLength > 1;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const std::string line = joined<Value>(rows[row], ", ", jsonOf);
    print((row == 0 ? "\n    " : ",\n    ") + (areNested ? "[" + line + "]" : line));
  }
}

template <class Value>
std::vector<std::size_t> shapeOf(const Rows<Value>& rows) {
  if (rows.source.role == Role::parameter) {
    return {};
  }
  return rows.source.rowLength == 1 ? std::vector{rows.size()}
                                    : std::vector{rows.size(), rows.source.rowLength};
}

/// Written piece by piece, for it may be large.
template <class Value>
void printValuesAsJson(const Rows<Value>& rows) {
  const Json path = rows.source.path;
  print("{\n  \"object\": " + path.dump(-1, ' ', false, Json::error_handler_t::replace));
  print(std::string(",\n  \"type\": \"") + (std::is_same_v<Value, int> ? "int" : "double") + "\"");
  if (rows.source.role == Role::parameter) {
    print(",\n  \"shape\": [],\n  \"values\": " + jsonOf(rows.values.front()) + "\n}\n");
    return;
  }
  print(",\n  \"shape\": " + Json(shapeOf(rows)).dump() + ",\n  \"values\": [");
  printRowsAsJson(rows);
  print(rows.size() == 0 ? "]\n}\n" : "\n  ]\n}\n");
}

template <class Value>
void printAs(Format format, const Rows<Value>& rows) {
  switch (format) {
    case Format::text:
      return printText(rows, " ");
    case Format::csv:
      print(csvHeader(rows.source) + "\n");
      return printText(rows, ",");
    case Format::json:
      return printValuesAsJson(rows);
    case Format::npy:
      return printNpy(rows.values, shapeOf(rows));
  }
}

/// The rows from the first to before the second.
struct Bounds {
  std::size_t first = 0;
  std::size_t last = 0;
};

/// One side of a range: a number of a row, or nothing for the end on that side.
std::optional<std::size_t> bound(std::string_view text, std::size_t without) {
  const auto number = integerIn(text);
  if (text.empty()) {
    return without;
  }
  return number && *number >= 0 ? std::optional(static_cast<std::size_t>(*number)) : std::nullopt;
}

Bounds boundsIn(std::string_view text, std::size_t size) {
  const std::size_t colon = text.find(':');
  const auto first = bound(text.substr(0, colon), 0);
  const auto last = colon != std::string_view::npos ? bound(text.substr(colon + 1), size)
                    : first                         ? std::optional(*first + 1)
                                                    : std::nullopt;
  if (text.empty() || !first || !last || *first > *last || *last > size) {
    throw Refusal("'" + printable(text) + "' is no range of " +
                      counted(static_cast<std::int64_t>(size), "row"),
                  "write FIRST:LAST, counted from 0, where LAST is the first one that is left out");
  }
  return {*first, *last};
}

template <class Value>
Rows<Value> rowsOf(const NamedValue& value, std::span<const Value> values,
                   const ExtractArguments& options) {
  Rows<Value> rows{value, values};
  if (options.range.empty()) {
    return rows;
  }
  const Bounds bounds = boundsIn(options.range, rows.size());
  rows.values = values.subspan(bounds.first * value.rowLength,
                               (bounds.last - bounds.first) * value.rowLength);
  return rows;
}

int runExtract(const ExtractArguments& options) {
  if (options.format == Format::npy && isTerminal(Stream::output)) {
    throw Refusal("standard output is a terminal, which shows no .npy files",
                  "send the output to a file or a program");
  }
  const InputFile file(options.file);
  const Progress progress("reading " + file.shown());
  const orvml::MappedFile mapped(file.path());
  const NamedValues values(documentsOf(mapped));
  const NamedValue& value = values.named(options.name, file.shown());
  std::visit([&](auto span) { printAs(options.format, rowsOf(value, span, options)); },
             value.values);
  return kDone;
}

}  // namespace

void addExtract(CLI::App& app, Run& run) {
  const std::map<std::string, Format> formats = {
      {"text", Format::text}, {"csv", Format::csv}, {"json", Format::json}, {"npy", Format::npy}};
  auto options = std::make_shared<ExtractArguments>();
  CLI::App& command =
      addSubcommand(app, "extract", "Print the values of an attribute, a parameter or an array",
                    "orvml extract part.h5 Nodes/coordinates --format csv --range 0:2");
  command.add_option("FILE", options->file, "an exchange file; - is standard input")->required();
  command
      .add_option("NAME", options->name,
                  "a name, with as much of its path before it as tells it from others, "
                  "such as size, Faces/Attributes/size or /OrvInput/Faces/connectivities")
      ->required();
  command.add_option("--format", options->format, "text, csv, json or npy")
      ->transform(CLI::CheckedTransformer(formats).description(""));
  command.add_option("--range", options->range,
                     "FIRST:LAST, nodes, cells or values counted from 0, without LAST itself");
  command.callback([options, &run] { run = [options] { return runExtract(*options); }; });
}

}  // namespace orvml_tool
