#include "files/child_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace orvml_io_tests {

int resultInChild(const std::function<int()>& work) {
  (void)std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    // No destructors and no leak check: the state that the parent shares is not the child's.
    ::_exit(work() & 0xff);
  }
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
    return -1;
  }
  return WEXITSTATUS(status);
}

bool becomeOrdinaryUser() {
  constexpr uid_t kNobody = 65534;
  return ::geteuid() != 0 || (::setuid(kNobody) == 0 && ::geteuid() == kNobody);
}

}  // namespace orvml_io_tests
