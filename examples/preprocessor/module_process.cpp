#include "preprocessor/module_process.h"

#include "exchange/check.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace orvml_examples {

void runModule(const std::vector<std::string>& command) {
  std::vector<std::string> texts = command;  // the system asks for texts that may be changed
  std::vector<char*> arguments;
  arguments.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    arguments.push_back(text.data());
  }
  arguments.push_back(nullptr);
  (void)std::fflush(stdout);  // so that its lines come after ours
  pid_t process = -1;
  requireOk(::posix_spawn(&process, arguments[0], nullptr, nullptr, arguments.data(), environ),
            "starting " + command[0]);
  int status = -1;
  require(::waitpid(process, &status, 0) == process, "waiting for " + command[0] + " failed");
  requireOk(status, command[0]);
}

}  // namespace orvml_examples
