#include <orvml/fingerprint.hpp>
#include <orvml/patch.hpp>

#include "command.h"
#include "exit_codes.h"
#include "input_file.h"
#include "messages.h"
#include "output_file.h"
#include "progress.h"
#include "save_documents.h"

#include <memory>

namespace orvml_tool {

namespace {

/// The names of what is read first, in the order of the command line, and of what is written.
struct Files {
  std::string first;
  std::string second;
  std::string written;
};

std::optional<orvml::Digest> digestOf(const std::optional<orvml::DocumentView>& document) {
  return document ? std::optional(fingerprint(*document).document) : std::nullopt;
}

bool areSame(const orvml::Exchange& first, const orvml::Exchange& second) {
  return digestOf(first.input) == digestOf(second.input) &&
         digestOf(first.output) == digestOf(second.output);
}

int runPatch(const Files& files) {
  const OutputFile written(files.written);
  const InputFile first(files.first);
  const InputFile second(files.second);
  const Progress progress("comparing " + first.shown() + " with " + second.shown());
  const orvml::MappedFile from(first.path());
  const orvml::MappedFile to(second.path());
  written.write([&](const std::filesystem::path& path) {
    savePatch(path, documentsOf(from), documentsOf(to));
  });
  return areSame(documentsOf(from), documentsOf(to)) ? kDone : kDifferent;
}

int applyTo(const Files& files) {
  const OutputFile written(files.written);
  const InputFile patch(files.first);
  const InputFile base(files.second);
  const Progress progress("applying " + patch.shown() + " to " + base.shown());
  const orvml::MappedFile mapped(base.path());
  const orvml::Patched patched(patch.path(), documentsOf(mapped));
  written.write(
      [&](const std::filesystem::path& path) { saveDocuments(path, patched.documents()); });
  return kDone;
}

int runApply(const Files& files) {
  try {
    return applyTo(files);
  } catch (const orvml::Error& error) {
    if (error.code() != orvml::Code::patchWrongBase) {
      throw;
    }
    tell(error);
    return kDifferent;
  }
}

CLI::App& addThree(CLI::App& command, Files& files, const char* first, const char* second) {
  const char* input = "is read; - is standard input";
  command.add_option(first, files.first, input)->required();
  command.add_option(second, files.second, input)->required();
  command.add_option("OUT", files.written, "is written; - is standard output")->required();
  return command;
}

}  // namespace

void addPatch(CLI::App& app, Run& run) {
  auto files = std::make_shared<Files>();
  CLI::App& command = addSubcommand(app, "patch", "Write what leads from one file to another",
                                    "orvml patch before.h5 after.h5 change.patch || [ $? -eq 1 ]");
  addThree(command, *files, "A", "B").callback([files, &run] {
    run = [files] { return runPatch(*files); };
  });
}

void addApply(CLI::App& app, Run& run) {
  auto files = std::make_shared<Files>();
  CLI::App& command = addSubcommand(app, "apply", "Apply a patch to the file it was made from",
                                    "orvml apply change.patch before.h5 restored.h5");
  addThree(command, *files, "PATCH", "BASE").callback([files, &run] {
    run = [files] { return runApply(*files); };
  });
}

}  // namespace orvml_tool
