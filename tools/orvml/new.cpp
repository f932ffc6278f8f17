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
#include <cctype>
#include <memory>

namespace orvml_tool {

namespace {

enum class Source { json, stl, obj, off, ply };

struct NewArguments {
  std::string written;
  std::string from;
  std::optional<Source> format;
  std::optional<std::string> module;
  std::optional<std::string> moduleFormatVersion;
  std::string creator = "orvml";
  Assignments assignments;
};

const std::map<std::string, Source>& sources() {
  static const std::map<std::string, Source> kSources = {{"json", Source::json},
                                                         {"stl", Source::stl},
                                                         {"obj", Source::obj},
                                                         {"off", Source::off},
                                                         {"ply", Source::ply}};
  return kSources;
}

/// The format that was named, else that of the file's ending; what comes from a pipe is JSON.
Source sourceOf(const NewArguments& options) {
  if (options.format) {
    return *options.format;
  }
  std::string ending = std::filesystem::path(options.from).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  const auto found = sources().find(ending.empty() ? "" : ending.substr(1));
  if (options.from == "-") {
    return Source::json;
  }
  if (found == sources().end()) {
    throw Refusal(printable(options.from) + ": has no ending that tells what it is",
                  "say it with --format json, stl, obj, off or ply");
  }
  return found->second;
}

/// An input document in space with the surface as its faces.
Draft draftOfSurface(Source source, std::string_view bytes) {
  ConversionReport report;  // of what files have beside a surface, which is all that is asked for
  switch (source) {
    case Source::stl:
      return readStl(bytes, {}, report);
    case Source::obj:
      return readObj(bytes, {}, report);
    case Source::off:
      return readOff(bytes, {}, report);
    default:
      return readPly(bytes, {}, report);
  }
}

Draft draftFrom(const NewArguments& options) {
  if (options.from.empty()) {
    return {orvml::Kind::input, 3};
  }
  const Source source = sourceOf(options);
  const std::string shown = options.from == "-" ? "standard input" : printable(options.from);
  const std::string bytes = bytesOf(options.from);
  if (source == Source::json) {
    return draftFromJson(bytes, shown);
  }
  try {
    return draftOfSurface(source, bytes);
  } catch (const FormatError& error) {
    throw Refusal(shown + ": " + printable(std::string_view(error.what())),
                  "have it written again, as a surface of triangles and quadrilaterals");
  }
}

/// What the command line says goes before what the file says.
void identify(Draft& draft, const NewArguments& options) {
  const bool isOfJson = !options.from.empty() && sourceOf(options) == Source::json;
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
      ->transform(CLI::CheckedTransformer(sources()).description(""));
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
