#include <orvml/vtkhdf.hpp>

#include "command.h"
#include "console.h"
#include "document_choice.h"
#include "exit_codes.h"
#include "facts.h"
#include "json.h"
#include "messages.h"
#include "output_file.h"
#include "progress.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace orvml_tool {

namespace {

struct LinkArguments {
  std::string file;
  DocumentChoice choice;
  std::vector<std::string> cells;
  bool turnsPrisms = false;
  bool isStrict = false;
  bool removes = false;
  bool asJson = false;
};

bool isAmong(const std::vector<std::string>& cells, const std::string& kind) {
  return cells.empty() || std::find(cells.begin(), cells.end(), kind) != cells.end();
}

orvml::VtkLinkOptions optionsOf(const LinkArguments& arguments) {
  orvml::VtkLinkOptions options;
  if (arguments.choice.isInput || arguments.choice.isOutput) {
    options.document = arguments.choice.isInput ? orvml::Kind::input : orvml::Kind::output;
  }
  options.edges = isAmong(arguments.cells, "edges");
  options.faces = isAmong(arguments.cells, "faces");
  options.elements = isAmong(arguments.cells, "elements");
  options.turnsPrisms = arguments.turnsPrisms;
  options.isStrict = arguments.isStrict;
  return options;
}

Json asJson(const std::string& file, const orvml::VtkLinkReport& report) {
  Json notes = Json::array();
  for (const orvml::ConversionNote& note : report.notes) {
    notes.push_back(
        {{"kind", name(note.fate)}, {"object", note.object}, {"sentence", note.sentence}});
  }
  return {{"file", file},
          {"isLinked", true},
          {"document", kindName(report.document)},
          {"points", report.points},
          {"cells", report.cells},
          {"bytesBefore", report.bytesBefore},
          {"bytesAfter", report.bytesAfter},
          {"changes", std::move(notes)}};
}

std::string textOf(const std::string& shown, const orvml::VtkLinkReport& report) {
  std::string text = shown + ": the " + kindName(report.document) + " with " +
                     counted(report.points, "point") + " and " + counted(report.cells, "cell") +
                     ", from " + shownBytes(report.bytesBefore) + " to " +
                     shownBytes(report.bytesAfter) + "\n";
  for (const orvml::ConversionNote& note : report.notes) {
    text += "  " + std::string(name(note.fate)) + ": " + printable(note.sentence) + "\n";
  }
  return text;
}

/// ParaView chooses the reader by the end of the name.
void tellOfName(const LinkArguments& arguments, const std::string& shown) {
  if (std::filesystem::path(arguments.file).extension() != ".hdf") {
    tellNote(shown + ": ParaView opens it under a name that ends in .hdf; a symbolic link will do");
  }
}

int runLink(const LinkArguments& arguments, const std::string& shown) {
  orvml::VtkLinkReport report;
  {
    const Progress progress("linking " + shown);
    report = orvml::linkVtk(arguments.file, optionsOf(arguments));
  }
  if (arguments.asJson) {
    printJson(asJson(arguments.file, report));
  } else {
    print(textOf(shown, report));
  }
  tellOfName(arguments, shown);
  return kDone;
}

int runUnlink(const LinkArguments& arguments, const std::string& shown) {
  const std::filesystem::path path(arguments.file);
  std::uint64_t before = 0;
  const bool wasLinked = orvml::isLinkedForVtk(path);
  before = file_size(path);
  (void)orvml::unlinkVtk(path);
  const std::uint64_t after = file_size(path);
  if (arguments.asJson) {
    printJson({{"file", arguments.file},
               {"isLinked", false},
               {"wasLinked", wasLinked},
               {"bytesBefore", before},
               {"bytesAfter", after}});
  } else {
    print(shown +
          (wasLinked ? ": from " + shownBytes(before) + " to " + shownBytes(after)
                     : std::string(": there was no group to remove")) +
          "\n");
  }
  return kDone;
}

int runLinkVtk(const LinkArguments& arguments) {
  if (arguments.file == "-") {
    throw Refusal("a file is linked in place, and standard input has none", "name the file");
  }
  const OutputFile interruptible(arguments.file);
  const std::string shown = shownFile(arguments.file);
  return arguments.removes ? runUnlink(arguments, shown) : runLink(arguments, shown);
}

}  // namespace

void addLinkVtk(CLI::App& app, Run& run) {
  auto arguments = std::make_shared<LinkArguments>();
  CLI::App& command =
      addSubcommand(app, "link-vtk", "Have VTK and ParaView open a file as it is, in place",
                    "orvml link-vtk part.hdf");
  command.add_option("FILE", arguments->file, "an exchange file")->required();
  addChoice(command, arguments->choice);
  auto* cells =
      command
          .add_option("--only", arguments->cells,
                      "KINDS: edges, faces and elements, with commas between them; else all")
          ->delimiter(',')
          ->check(CLI::IsMember({"edges", "faces", "elements"}))
          ->allow_extra_args(false);
  auto* turned = command.add_flag("--older-prisms", arguments->turnsPrisms,
                                  "show prisms as VTK before 9.7 and ParaView 5.11 take them");
  auto* strict = command.add_flag("--strict", arguments->isStrict,
                                  "refuse what would be dropped, padded or renamed");
  command.add_flag("--remove", arguments->removes, "take the link away, and its space")
      ->excludes(cells)
      ->excludes(turned)
      ->excludes(strict);
  command.add_flag("--json", arguments->asJson, "print JSON");
  command.callback([arguments, &run] { run = [arguments] { return runLinkVtk(*arguments); }; });
}

}  // namespace orvml_tool
