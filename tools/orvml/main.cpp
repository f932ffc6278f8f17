#include <orvml/error.hpp>
#include <orvml/version.hpp>

#include "command.h"
#include "console.h"
#include "exit_codes.h"
#include "messages.h"

#include <csignal>
#include <new>
#include <system_error>

namespace orvml_tool {

namespace {

/// The exit code of whatever kept a subcommand from its work.
int troubleOf(const CLI::App& app) { return app.got_subcommand("check") ? kUnreadable : kTrouble; }

void addCommands(CLI::App& app, Run& run) {
  addInfo(app, run);
  addCheck(app, run);
  addDiff(app, run);
  addPatch(app, run);
  addApply(app, run);
  addText(app, run);
  addExtract(app, run);
  addEdit(app, run);
  addNew(app, run);
  addLinkVtk(app, run);
  addUpgrade(app, run);
  addRescue(app, run);
  addConvert(app, run);
  addReport(app, run);
}

/// Tells what is wrong with the arguments, or gives the help that was asked for.
int answer(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    const int code = app.exit(error);
    flushOutput();
    return code;
  }
  const auto given = app.get_subcommands();
  const auto others = app.remaining();
  if (given.empty() && !others.empty()) {
    tellFailure("there is no command '" + printable(others.front()) + "'", "see orvml --help");
    return kTrouble;
  }
  const std::string command = given.empty() ? "" : " " + given.front()->get_name();
  tellFailure(printable(std::string_view(error.what())), "see orvml" + command + " --help");
  return troubleOf(app);
}

int runAndTell(const CLI::App& app, const Run& run) {
  try {
    const int code = run();
    flushOutput();
    return code;
  } catch (const orvml::Error& error) {
    tell(error);
  } catch (const Refusal& refusal) {
    tell(refusal);
  } catch (const BrokenPipe&) {
    return kBrokenPipe;
  } catch (const std::bad_alloc&) {
    tellFailure("there is not enough memory", "close other programs, or use a larger machine");
  } catch (const std::exception& error) {
    tellFailure(printable(std::string_view(error.what())));
  }
  return troubleOf(app);
}

int runCommand(int count, const char* const* arguments) {
  CLI::App app("Looks at exchange files of meshes, checks, compares, mends and makes them.",
               "orvml");
  app.set_version_flag("--version", std::string(orvml::version()));
  app.require_subcommand(1);
  app.footer("orvml COMMAND --help tells more of each.");
  (void)std::signal(SIGPIPE, SIG_IGN);
  Run run;
  addCommands(app, run);
  try {
    app.parse(count, arguments);
  } catch (const CLI::ParseError& error) {
    return answer(app, error);
  }
  return runAndTell(app, run);
}

}  // namespace

}  // namespace orvml_tool

int main(int count, char** arguments) {
  try {
    return orvml_tool::runCommand(count, arguments);
  } catch (const std::exception& error) {
    orvml_tool::tellFailure(error.what());
  }
  return orvml_tool::kTrouble;
}
