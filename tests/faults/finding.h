#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace orvml_io_tests {

/// What a child process found after something had failed in it.
struct Finding {
  std::string function;   // what failed; empty when there was nothing left to fail
  int status = 0;         // the result of the exported function
  std::string lost;       // what was missing afterwards
  std::string lostAgain;  // what was missing when the same was done once more without failures
};

/// Runs the work of one failure in a child. Whatever the child prints besides, and an end by a
/// signal, is a test failure.
Finding findInChild(const std::function<Finding()>& work);

/// Finds what follows from the first failure, the second, and so on up to the last one. Returns how
/// many there were; a check that fails ends it.
template <class Work, class Check>
int forEachFailure(const Work& work, const Check& check) {
  for (int n = 1;; ++n) {
    SCOPED_TRACE("failure " + std::to_string(n));
    const Finding finding = findInChild([&work, n] { return work(n); });
    if (finding.function.empty()) {
      return n - 1;
    }
    check(finding);
    if (::testing::Test::HasFailure()) {
      return n;
    }
  }
}

}  // namespace orvml_io_tests
