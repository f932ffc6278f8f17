#include "faults/finding.h"

#include "faults/child.h"

#include <cstdlib>
#include <sstream>

namespace orvml_io_tests {

namespace {

/// Stands between what a child prints and what it answers.
const std::string kAnswer = "\n=\n";

std::string textOf(const Finding& finding) {
  std::ostringstream out;
  out << finding.function << "\n"
      << finding.status << "\n"
      << finding.lost << "\n"
      << finding.lostAgain << "\n";
  return out.str();
}

Finding findingIn(const std::string& text) {
  std::istringstream in(text);
  Finding finding;
  std::string status;
  std::getline(in, finding.function);
  std::getline(in, status);
  std::getline(in, finding.lost);
  std::getline(in, finding.lostAgain);
  finding.status = std::atoi(status.c_str());
  return finding;
}

/// When HDF5's printing cannot be suspended, it prints.
bool isPrintingSwitch(const std::string& function) { return function.rfind("H5E", 0) == 0; }

}  // namespace

Finding findInChild(const std::function<Finding()>& work) {
  const ChildEnd end = runInChild([&work] { return kAnswer + textOf(work()); });
  const std::size_t answer = end.text.rfind(kAnswer);
  EXPECT_EQ(end.signal, 0) << end.text;
  if (answer == std::string::npos) {
    ADD_FAILURE() << "no answer: " << end.text;
    return {};
  }
  const Finding finding = findingIn(end.text.substr(answer + kAnswer.size()));
  if (!isPrintingSwitch(finding.function)) {
    EXPECT_EQ(end.text.substr(0, answer), "") << finding.function;
  }
  return finding;
}

}  // namespace orvml_io_tests
