#include "support/captured_output.h"

#include <unistd.h>

namespace orvml_io_tests {

CapturedOutput::CapturedOutput()
    : sink_(std::tmpfile()), savedOut_(::dup(STDOUT_FILENO)), savedErr_(::dup(STDERR_FILENO)) {
  std::fflush(nullptr);
  ::dup2(::fileno(sink_), STDOUT_FILENO);
  ::dup2(::fileno(sink_), STDERR_FILENO);
}

CapturedOutput::~CapturedOutput() { (void)stop(); }

std::string CapturedOutput::stop() {
  if (sink_ == nullptr) {
    return std::string();
  }
  std::fflush(nullptr);
  ::dup2(savedOut_, STDOUT_FILENO);
  ::dup2(savedErr_, STDERR_FILENO);
  ::close(savedOut_);
  ::close(savedErr_);
  std::string text;
  std::rewind(sink_);
  for (int c = std::fgetc(sink_); c != EOF; c = std::fgetc(sink_)) {
    text.push_back(static_cast<char>(c));
  }
  std::fclose(sink_);
  sink_ = nullptr;
  return text;
}

}  // namespace orvml_io_tests
