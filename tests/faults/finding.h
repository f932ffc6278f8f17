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

/// Which failures are tried: each of them, or every so many-th where the sanitizers make a child
/// process take ten times as long.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kFailureStep = 7;
#else
constexpr int kFailureStep = 1;
#endif

/// Finds what follows from the first failure and later ones, up to the last one. Returns the number
/// of the last one tried; a check that fails ends it.
template <class Work, class Check>
int forEachFailure(const Work& work, const Check& check) {
  for (int n = 1;; n += kFailureStep) {
    SCOPED_TRACE("failure " + std::to_string(n));
    const Finding finding = findInChild([&work, n] { return work(n); });
    if (finding.function.empty()) {
      return n - kFailureStep;
    }
    check(finding);
    if (::testing::Test::HasFailure()) {
      return n;
    }
  }
}

}  // namespace orvml_io_tests
