#include "check.h"

#include "command.h"
#include "console.h"
#include "exit_codes.h"
#include "messages.h"
#include "progress.h"

#include <algorithm>
#include <memory>

namespace orvml_tool {

namespace {

struct CheckArguments {
  std::vector<std::string> files;
  bool isStrict = false;
  bool asJson = false;
  bool asSarif = false;
  orvml::CheckOptions check = {.threads = 2};
};

CheckedFile checkOne(const std::string& name, const orvml::CheckOptions& options) {
  CheckedFile checked{InputFile(name), {}, {}};
  const Progress progress("checking " + checked.file.shown());
  try {
    checked.report = orvml::check(checked.file.path(), options);
  } catch (const orvml::Error& error) {
    checked.error = error;
  }
  return checked;
}

int printTexts(const CheckArguments& options) {
  int code = kClean;
  for (const std::string& name : options.files) {
    const CheckedFile checked = checkOne(name, options.check);
    printReport(checked);
    flushOutput();
    if (checked.error) {
      tell(*checked.error);
    }
    code = std::max(code, codeOf(checked, options.isStrict));
  }
  return code;
}

int printForPrograms(const CheckArguments& options) {
  int code = kClean;
  std::vector<CheckedFile> files;
  for (const std::string& name : options.files) {
    files.push_back(checkOne(name, options.check));
    if (files.back().error) {
      tell(*files.back().error);
    }
    code = std::max(code, codeOf(files.back(), options.isStrict));
  }
  printJson(options.asSarif ? reportsAsSarif(files, code) : reportsAsJson(files));
  return code;
}

}  // namespace

int codeOf(const CheckedFile& checked, bool isStrict) {
  if (checked.error) {
    return kUnreadable;
  }
  switch (checked.report.worst().value_or(orvml::Severity::note)) {
    case orvml::Severity::error:
      return kErrors;
    case orvml::Severity::warning:
      return isStrict ? kErrors : kWarnings;
    default:
      return kClean;
  }
}

void addCheck(CLI::App& app, Run& run) {
  auto options = std::make_shared<CheckArguments>();
  CLI::App& command =
      addSubcommand(app, "check", "Tell whether files are sound", "orvml check --quality part.h5");
  addFiles(command, options->files);
  command.add_flag("--quality", options->check.quality, "measure the quality of the cells, too");
  command.add_flag("--strict", options->isStrict, "end with 2 for warnings, as for errors");
  command
      .add_option("--coincidence", options->check.coincidenceTolerance,
                  "nodes coincide within this share of the diagonal of the mesh; below 0: never")
      ->capture_default_str();
  command.add_option("--places", options->check.places, "how many places a finding tells at most")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  auto* json = command.add_flag("--json", options->asJson,
                                "print JSON, as share/orvml/schema/check.schema.json says");
  command.add_flag("--sarif", options->asSarif, "print a log of SARIF 2.1.0")->excludes(json);
  command.callback([options, &run] {
    run = [options] {
      const bool isForPrograms = options->asJson || options->asSarif;
      return isForPrograms ? printForPrograms(*options) : printTexts(*options);
    };
  });
}

}  // namespace orvml_tool
