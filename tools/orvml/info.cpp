#include "info.h"

#include "command.h"
#include "console.h"
#include "exit_codes.h"
#include "json.h"
#include "messages.h"
#include "progress.h"

#include <memory>

namespace orvml_tool {

namespace {

struct InfoArguments {
  std::vector<std::string> files;
  bool isFast = false;
  bool asJson = false;
};

/// Calls `tellOf` with what a file holds.
template <class TellOf>
void look(const InputFile& file, bool isFast, TellOf&& tellOf) {
  const orvml::Description description = orvml::describe(file.path());
  std::optional<orvml::MappedFile> values;
  if (!isFast && (description.input || description.output)) {
    values.emplace(file.path(), orvml::Policy::tolerant);
  }
  tellOf(FileInfo{file, description, values ? &*values : nullptr});
}

Json jsonOf(const InputFile& file, bool isFast, int& code) {
  const Progress progress("reading " + file.shown());
  Json json;
  try {
    look(file, isFast, [&](const FileInfo& info) { json = infoAsJson(info); });
  } catch (const orvml::Error& error) {
    tell(error);
    code = kTrouble;
    json = {{"file", file.given()}, {"error", asJson(error)}};
  }
  return json;
}

int printAsJson(const InfoArguments& options) {
  int code = kDone;
  Json files = Json::array();
  for (const std::string& name : options.files) {
    files.push_back(jsonOf(InputFile(name), options.isFast, code));
  }
  printJson(Json{{"files", std::move(files)}});
  return code;
}

int printText(const InfoArguments& options) {
  int code = kDone;
  for (const std::string& name : options.files) {
    const InputFile file(name);
    try {
      look(file, options.isFast, printInfo);
    } catch (const orvml::Error& error) {
      flushOutput();
      tell(error);
      code = kTrouble;
    }
  }
  return code;
}

}  // namespace

void addInfo(CLI::App& app, Run& run) {
  auto options = std::make_shared<InfoArguments>();
  CLI::App& command =
      addSubcommand(app, "info", "Tell what files hold", "orvml info --fast part.h5");
  addFiles(command, options->files);
  command.add_flag("--fast", options->isFast,
                   "read no values: no bounding box, ranges and fingerprints");
  command.add_flag("--json", options->asJson,
                   "print JSON, as share/orvml/schema/info.schema.json says");
  command.callback([options, &run] {
    run = [options] { return options->asJson ? printAsJson(*options) : printText(*options); };
  });
}

}  // namespace orvml_tool
