#include <orvml/rescue.hpp>

#include "command.h"
#include "console.h"
#include "exit_codes.h"
#include "input_file.h"
#include "output_file.h"
#include "progress.h"

#include <memory>

namespace orvml_tool {

namespace {

struct RescueArguments {
  std::string old;
  std::string made;
  bool keepsUnsoundCells = false;
};

std::string placesText(const orvml::LostObject& lost) {
  std::string text;
  for (const orvml::CheckPlace& place : lost.places) {
    text += (text.empty() ? "    at " : ", ") + std::string(name(place.kind)) + " " +
            shown(place.index);
  }
  const bool areAll = lost.count <= static_cast<std::int64_t>(lost.places.size());
  return text.empty() ? "" : text + (areAll ? "\n" : " and more\n");
}

std::string reportText(const std::vector<orvml::ChangedObject>& changed) {
  std::string text;
  for (const orvml::ChangedObject& object : changed) {
    text += "  changed: " + printable(object.sentence) + "\n";
  }
  return text;
}

std::string reportText(const std::vector<orvml::LostObject>& lost) {
  std::string text;
  for (const orvml::LostObject& object : lost) {
    text += "  lost: " + printable(object.sentence) + " [" + std::string(object.code) + "]\n" +
            placesText(object);
  }
  return text;
}

/// A report does not go where the file goes.
void printReport(const RescueArguments& options, const std::string& text) {
  if (options.made == "-") {
    printMessage(text);
  } else {
    print(text);
  }
}

int runRescue(const RescueArguments& options) {
  const OutputFile made(options.made);
  const InputFile old(options.old);
  orvml::RescueReport report;
  {
    const Progress progress("rescuing " + old.shown());
    made.write([&](const std::filesystem::path& path) {
      report = orvml::rescue(old.path(), path, {.dropUnsoundCells = !options.keepsUnsoundCells});
    });
  }
  const std::string kept =
      report.isWhole() ? ": everything is kept\n"
                       : ": " + counted(static_cast<std::int64_t>(report.lost.size()), "object") +
                             " lost, wholly or in part\n";
  printReport(options, old.shown() + kept + reportText(report.lost) + reportText(report.changed));
  return report.isWhole() ? kDone : kDifferent;
}

int runUpgrade(const RescueArguments& options) {
  const OutputFile made(options.made);
  const InputFile old(options.old);
  orvml::UpgradeReport report;
  {
    const Progress progress("upgrading " + old.shown());
    made.write(
        [&](const std::filesystem::path& path) { report = orvml::upgrade(old.path(), path); });
  }
  const std::string version =
      report.version.empty() ? "no format version" : "format " + report.version;
  printReport(options, old.shown() + ": " + printable(version) + ", everything is kept\n" +
                           reportText(report.changed));
  return kDone;
}

void addBoth(CLI::App& command, RescueArguments& options) {
  command.add_option("OLD", options.old, "is read; - is standard input")->required();
  command.add_option("NEW", options.made, "is written; - is standard output")->required();
}

}  // namespace

void addUpgrade(CLI::App& app, Run& run) {
  auto options = std::make_shared<RescueArguments>();
  CLI::App& command = addSubcommand(app, "upgrade", "Bring a file to the present format",
                                    "orvml upgrade old.h5 new.h5");
  addBoth(command, *options);
  command.callback([options, &run] { run = [options] { return runUpgrade(*options); }; });
}

void addRescue(CLI::App& app, Run& run) {
  auto options = std::make_shared<RescueArguments>();
  CLI::App& command = addSubcommand(app, "rescue", "Make a sound file of a damaged one",
                                    "orvml rescue old.h5 new.h5");
  addBoth(command, *options);
  command.add_flag("--keep-unsound-cells", options->keepsUnsoundCells,
                   "keep cells that can be read and are no good as cells");
  command.callback([options, &run] { run = [options] { return runRescue(*options); }; });
}

}  // namespace orvml_tool
