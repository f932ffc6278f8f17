#include <orvml/check.hpp>
#include <orvml/vtkhdf.hpp>

#include "assignments.h"
#include "command.h"
#include "console.h"
#include "document_choice.h"
#include "exit_codes.h"
#include "input_file.h"
#include "messages.h"
#include "named_values.h"
#include "output_file.h"
#include "progress.h"
#include "save_documents.h"

#include <algorithm>
#include <memory>

namespace orvml_tool {

namespace {

struct EditArguments {
  std::string file;
  DocumentChoice choice;
  Assignments assignments;
  std::vector<std::string> removed;
};

/// Whether what a finding is about is another thing, or gone, in a file that is written anew.
bool isLostWhenWritten(const orvml::CheckFinding& finding) {
  return finding.code == text(orvml::Code::objectForeign) ||
         finding.code == text(orvml::CheckCode::integersClamped) ||
         finding.code == text(orvml::CheckCode::lostWhenWritten);
}

void requireNothingToLose(const InputFile& file) {
  const auto report = orvml::check(file.path(), {.coincidenceTolerance = -1.0, .threads = 2});
  for (const orvml::CheckFinding& finding : report.findings) {
    const std::string found =
        file.shown() + ": " + printable(finding.sentence) + " [" + std::string(finding.code) + "]";
    if (finding.code == text(orvml::CheckCode::legacyLayout)) {
      throw Refusal(found, "bring it to the present format with orvml upgrade OLD NEW");
    }
    if (isLostWhenWritten(finding)) {
      throw Refusal(found + ", and would be lost", std::string(finding.cure));
    }
  }
}

void remove(Draft& draft, const NamedValue& value, const std::string& shown) {
  switch (value.role) {
    case Role::parameter:
      return draft.removeParameter(value.name);
    case Role::vectorParameter:
      return draft.removeVectorParameter(value.name);
    case Role::attribute:
      return draft.removeAttribute(value.entity, value.name);
    case Role::array:
      throw Refusal(shown + ": " + value.path + " is a part of the mesh",
                    "remove parameters and attributes alone");
  }
}

/// The documents of a file, of which the draft takes the place of one.
orvml::Exchange with(const Draft& draft, const orvml::Exchange& old) {
  orvml::Exchange documents = draft.documents();
  if (!documents.input) {
    documents.input = old.input;
  }
  if (!documents.output) {
    documents.output = old.output;
  }
  return documents;
}

int runEdit(const EditArguments& options) {
  if (options.assignments.empty() && options.removed.empty()) {
    throw Refusal("nothing is to be changed", "see orvml edit --help");
  }
  const OutputFile written(options.file);
  const InputFile file(options.file);
  const Progress progress("changing " + file.shown());
  requireNothingToLose(file);
  const orvml::MappedFile mapped(file.path());
  const orvml::Exchange old = documentsOf(mapped);
  const auto kind = options.choice.of(old.input.has_value(), old.output.has_value(), file.shown());
  const orvml::Exchange chosen = kind == orvml::Kind::input ? orvml::Exchange{.input = old.input}
                                                            : orvml::Exchange{.output = old.output};
  Draft draft(kind == orvml::Kind::input ? orvml::DocumentView(*old.input)
                                         : orvml::DocumentView(*old.output));
  const NamedValues values(chosen);
  for (const std::string& name : options.removed) {
    remove(draft, values.named(name, file.shown()), file.shown());
  }
  about(file.path(), [&] { options.assignments.applyTo(draft); });
  const bool wasLinked = orvml::isLinkedForVtk(file.path());
  written.write([&](const std::filesystem::path& path) { saveDocuments(path, with(draft, old)); });
  if (wasLinked) {
    tellNote(file.shown() + ": VTK opens it no more; orvml link-vtk links it again");
  }
  return kDone;
}

}  // namespace

void addEdit(CLI::App& app, Run& run) {
  auto options = std::make_shared<EditArguments>();
  CLI::App& command =
      addSubcommand(app, "edit", "Set or remove parameters and attributes, in place",
                    "orvml edit part.h5 --param growth=1.3 --remove Faces/Attributes/size");
  command
      .add_option("FILE", options->file,
                  "an exchange file; - reads standard input and writes standard output")
      ->required();
  addChoice(command, options->choice);
  addAssignments(command, options->assignments);
  command
      .add_option("--remove", options->removed,
                  "NAME: remove a parameter or an attribute, named as for extract; comes before "
                  "what is set")
      ->allow_extra_args(false);
  command.callback([options, &run] { run = [options] { return runEdit(*options); }; });
}

}  // namespace orvml_tool
