#pragma once

#include <cstdio>
#include <cstdlib>

namespace orvml_io_tests {

/// Ends the process with a message, which a fuzzer and CTest take as a failure alike.
[[noreturn]] inline void reportFinding(const char* brokenRule) noexcept {
  (void)std::fprintf(stderr, "finding: it does not hold that %s\n", brokenRule);
  std::abort();
}

/// Reports a finding unless the rule holds. The rule is told as a sentence.
inline void require(bool holds, const char* rule) noexcept {
  if (!holds) {
    reportFinding(rule);
  }
}

}  // namespace orvml_io_tests
