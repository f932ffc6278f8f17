#include "cpp_files/ended_child.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace orvml_io_tests {

namespace {

[[noreturn]] void answer(const std::function<std::string()>& work, int pipe) {
  (void)::dup2(pipe, STDOUT_FILENO);
  (void)::dup2(pipe, STDERR_FILENO);
  (void)::close(pipe);
  const std::string text = work();
  (void)std::fputs(text.c_str(), stdout);
  std::exit(0);
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

EndedChild endedChild(const std::function<std::string()>& work) {
  (void)std::fflush(nullptr);
  std::array<int, 2> ends = {-1, -1};
  if (::pipe(ends.data()) != 0) {
    return {-1, 0, "no pipe"};
  }
  const pid_t child = ::fork();
  if (child == 0) {
    (void)::close(ends[0]);
    answer(work, ends[1]);
  }
  (void)::close(ends[1]);
  EndedChild end;
  end.text = readAll(ends[0]);
  (void)::close(ends[0]);
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child) {
    return {-1, 0, "no child"};
  }
  end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  end.status = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
  return end;
}

}  // namespace orvml_io_tests
