#include <orvml/save.hpp>

#include "assignments.h"
#include "command.h"
#include "console.h"
#include "convert/format.h"
#include "convert/format_error.h"
#include "document_json.h"
#include "exit_codes.h"
#include "file_bytes.h"
#include "messages.h"
#include "output_file.h"
#include "progress.h"
#include "save_documents.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

namespace orvml_tool {

namespace {

struct NewArguments {
  std::string written;
  std::string from;
  std::string format;  // empty: the ending tells
  std::optional<std::string> module;
  std::optional<std::string> moduleFormatVersion;
  std::string creator = "orvml";
  Assignments assignments;
};

constexpr std::string_view kJson = "json";

/// JSON, and the surfaces among the formats.
std::vector<std::string> sourceNames() { return {std::string(kJson), "stl", "obj", "off", "ply"}; }

/// The format that was named, else that of the file's ending; what comes from a pipe is JSON.
std::string sourceOf(const NewArguments& options) {
  if (!options.format.empty()) {
    return options.format;
  }
  if (options.from == "-") {
    return std::string(kJson);
  }
  const std::vector<std::string> names = sourceNames();
  std::string ending = endingOf(options.from);
  if (std::find(names.begin(), names.end(), ending) == names.end()) {
    throw Refusal(printable(options.from) + ": has no ending that tells what it is",
                  "say it with --format json, stl, obj, off or ply");
  }
  return ending;
}

Draft draftFrom(const NewArguments& options) {
  if (options.from.empty()) {
    return {orvml::Kind::input, 3};
  }
  const std::string source = sourceOf(options);
  const std::string shown = options.from == "-" ? "standard input" : printable(options.from);
  const std::string bytes = bytesOf(options.from);
  if (source == kJson) {
    return draftFromJson(bytes, shown);
  }
  try {
    ConversionReport report;  // of what files have beside a surface, which is all that is asked for
    return formatNamed(source)->reads(bytes, {}, report);
  } catch (const FormatError& error) {
    throw Refusal(shown + ": " + printable(std::string_view(error.what())),
                  "have it written again, as a surface of triangles and quadrilaterals");
  }
}

/// What the command line says goes before what the file says.
void identify(Draft& draft, const NewArguments& options) {
  const bool isOfJson = !options.from.empty() && sourceOf(options) == kJson;
  if (options.module) {
    draft.setModule(*options.module);
  }
  if (options.moduleFormatVersion) {
    draft.setModuleFormatVersion(*options.moduleFormatVersion);
  }
  if (!isOfJson) {
    draft.setCreator(options.creator);
  }
}

int runNew(const NewArguments& options) {
  const OutputFile written(options.written);
  const Progress progress("making " + printable(options.written));
  Draft draft = about(options.from.empty() ? options.written : options.from, [&] {
    Draft made = draftFrom(options);
    identify(made, options);
    options.assignments.applyTo(made);
    return made;
  });
  written.write([&](const std::filesystem::path& path) { saveDocuments(path, draft.documents()); });
  return kDone;
}

}  // namespace

void addNew(CLI::App& app, Run& run) {
  auto options = std::make_shared<NewArguments>();
  CLI::App& command = addSubcommand(app, "new", "Make a file from JSON or a surface",
                                    "orvml new part.h5 --from part.stl --param mesh-size=0.25");
  command.add_option("OUT", options->written, "the file that is written; - is standard output")
      ->required();
  command.add_option(
      "--from", options->from,
      "a document as JSON (share/orvml/schema/document.schema.json), or a "
      "surface as .stl, .obj, .off or .ply; - is standard input; without it there is no mesh");
  command
      .add_option("--format", options->format, "json, stl, obj, off or ply, else the ending says")
      ->check(CLI::IsMember(sourceNames()).description(""));
  command.add_option("--module", options->module, "the meshing module that it is for");
  command.add_option("--module-format", options->moduleFormatVersion,
                     "the version of the module's parameters");
  command
      .add_option("--creator", options->creator, "the program that made it, unless JSON says which")
      ->capture_default_str();
  addAssignments(command, options->assignments);
  command.callback([options, &run] { run = [options] { return runNew(*options); }; });
}

}  // namespace orvml_tool
