#include "faults/child.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace orvml_io_tests {

namespace {

bool writeAll(const std::string& text, int pipe) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(pipe, text.data() + written, text.size() - written);
    if (count <= 0) {
      return false;
    }
    written += static_cast<std::size_t>(count);
  }
  return true;
}

[[noreturn]] void answer(const std::function<std::string()>& work, int pipe, Ending ending) {
  (void)::dup2(pipe, STDOUT_FILENO);
  (void)::dup2(pipe, STDERR_FILENO);
  const std::string text = work();
  (void)std::fflush(nullptr);
  const int status = writeAll(text, pipe) ? 0 : 1;
  (void)::close(pipe);
  if (ending == Ending::withExitFunctions) {
    std::exit(status);
  }
  ::_exit(status);
}

std::string readAll(int pipe) {
  std::string text;
  std::array<char, 4096> buffer = {};
  ssize_t count = 0;
  while ((count = ::read(pipe, buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

ChildEnd runInChild(const std::function<std::string()>& work, Ending ending) {
  (void)std::fflush(nullptr);
  std::array<int, 2> ends = {-1, -1};
  if (::pipe(ends.data()) != 0) {
    return {-1, 0, "no pipe"};
  }
  const pid_t child = ::fork();
  if (child == 0) {
    (void)::close(ends[0]);
    answer(work, ends[1], ending);
  }
  (void)::close(ends[1]);
  ChildEnd end;
  end.text = readAll(ends[0]);
  (void)::close(ends[0]);
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child) {
    return {-1, 0, "no child"};
  }
  end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  end.status = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
  if (end.status != 0) {
    end.text += "\nexit status " + std::to_string(end.status);
  }
  return end;
}

}  // namespace orvml_io_tests
