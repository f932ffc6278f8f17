#pragma once

#include <stdexcept>
#include <string>

namespace orvml_examples {

/// A check of the exchange did not hold, or a call of the library reported a failure.
class CheckFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline void require(bool holds, const std::string& otherwise) {
  if (!holds) {
    throw CheckFailed(otherwise);
  }
}

/// For the functions of the library that answer 0 when they succeeded.
inline void requireOk(int status, const std::string& call) {
  require(status == 0, call + " gave " + std::to_string(status));
}

}  // namespace orvml_examples
