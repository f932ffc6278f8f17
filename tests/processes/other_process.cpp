#include "processes/other_process.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace orvml_io_tests {

OtherProcess::OtherProcess(const std::vector<std::string>& environment) {
  int to[2] = {-1, -1};
  int from[2] = {-1, -1};
  // Only the two standard streams go over, or an end of one process's pipe would live on in the
  // next one.
  EXPECT_EQ(::pipe2(to, O_CLOEXEC), 0);
  EXPECT_EQ(::pipe2(from, O_CLOEXEC), 0);
  process_ = ::fork();
  if (process_ == 0) {
    (void)::dup2(to[0], STDIN_FILENO);
    (void)::dup2(from[1], STDOUT_FILENO);
    for (const std::string& setting : environment) {
      const std::size_t sign = setting.find('=');
      (void)::setenv(setting.substr(0, sign).c_str(), setting.substr(sign + 1).c_str(), 1);
    }
    (void)::execl(ORVML_IO_TESTS_PARTICIPANT, "participant", nullptr);
    ::_exit(1);
  }
  (void)::close(to[0]);
  (void)::close(from[1]);
  toProcess_ = to[1];
  fromProcess_ = from[0];
  (void)std::signal(SIGPIPE, SIG_IGN);  // a program that fell is seen by its missing answer
}

OtherProcess::~OtherProcess() {
  (void)::close(toProcess_);
  (void)::close(fromProcess_);
  int status = 0;
  EXPECT_EQ(::waitpid(process_, &status, 0), process_);
  EXPECT_EQ(status, 0) << "a program fell";
}

std::string OtherProcess::ask(const std::string& command) const {
  const std::string line = command + "\n";
  EXPECT_EQ(::write(toProcess_, line.data(), line.size()), static_cast<ssize_t>(line.size()));
  std::string answer;
  char buffer[4096];
  while (answer.empty() || answer.back() != '\n') {
    const ssize_t length = ::read(fromProcess_, buffer, sizeof buffer);
    if (length <= 0) {
      return "fell";
    }
    answer.append(buffer, static_cast<std::size_t>(length));
  }
  answer.pop_back();
  return answer;
}

std::string OtherProcess::write(const std::string& path, const MeshDocument& document,
                                const char* kind) const {
  return ask(commandToWrite(path, document, kind));
}

std::string OtherProcess::read(const std::string& path, const char* kind) const {
  return ask("read " + path + " " + kind);
}

std::string commandToWrite(const std::string& path, const MeshDocument& document,
                           const char* kind) {
  return "write " + path + " " + kind + " " + std::to_string(document.numberOfNodes) + " " +
         document.attribute;
}

std::string wholeDocument(const MeshDocument& document) { return "0 " + describe(document); }

}  // namespace orvml_io_tests
