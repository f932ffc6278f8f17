#include "faults/child.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace orvml_io_tests {

namespace {

[[noreturn]] void answer(const std::function<std::string()>& work, int pipe) {
  (void)::dup2(pipe, STDOUT_FILENO);
  (void)::dup2(pipe, STDERR_FILENO);
  const std::string text = work();
  (void)std::fflush(nullptr);
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(pipe, text.data() + written, text.size() - written);
    if (count <= 0) {
      ::_exit(1);
    }
    written += static_cast<std::size_t>(count);
  }
  ::_exit(0);
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

ChildEnd runInChild(const std::function<std::string()>& work) {
  (void)std::fflush(nullptr);
  std::array<int, 2> ends = {-1, -1};
  if (::pipe(ends.data()) != 0) {
    return {-1, "no pipe"};
  }
  const pid_t child = ::fork();
  if (child == 0) {
    (void)::close(ends[0]);
    answer(work, ends[1]);
  }
  (void)::close(ends[1]);
  ChildEnd end;
  end.text = readAll(ends[0]);
  (void)::close(ends[0]);
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child) {
    return {-1, "no child"};
  }
  end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  if (end.signal == 0 && WEXITSTATUS(status) != 0) {
    end.text += "\nexit status " + std::to_string(WEXITSTATUS(status));
  }
  return end;
}

}  // namespace orvml_io_tests
