#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

/// The subcommands: each adds what it takes to the command line, and says what is run when it was
/// given.
namespace orvml_tool {

/// Does the work and returns how the command ends. It throws what main() tells.
using Run = std::function<int()>;

void addInfo(CLI::App& app, Run& run);
void addCheck(CLI::App& app, Run& run);
void addDiff(CLI::App& app, Run& run);
void addPatch(CLI::App& app, Run& run);
void addApply(CLI::App& app, Run& run);
void addText(CLI::App& app, Run& run);
void addExtract(CLI::App& app, Run& run);
void addEdit(CLI::App& app, Run& run);
void addNew(CLI::App& app, Run& run);
void addLinkVtk(CLI::App& app, Run& run);
void addUpgrade(CLI::App& app, Run& run);
void addRescue(CLI::App& app, Run& run);
void addConvert(CLI::App& app, Run& run);
void addReport(CLI::App& app, Run& run);

/// Adds a subcommand with an example at the end of its help.
inline CLI::App& addSubcommand(CLI::App& app, const std::string& name, const std::string& about,
                               const std::string& example) {
  CLI::App& command = *app.add_subcommand(name, about);
  command.footer("Example:\n  " + example);
  return command;
}

/// Adds the names of the files that a subcommand is about, at least one.
inline void addFiles(CLI::App& command, std::vector<std::string>& files) {
  command.add_option("FILE", files, "exchange files; - is standard input")->required();
}

}  // namespace orvml_tool
