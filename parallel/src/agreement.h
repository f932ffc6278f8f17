#pragma once

#include <orvml/error.hpp>

#include "communicator.h"

#include <optional>
#include <string>
#include <vector>

namespace orvml::parallel::detail {

/// Why a step failed on one rank, in a form that can be sent to the others.
class Failure {
 public:
  /// The exception that is being handled.
  [[nodiscard]] static Failure current();

  [[nodiscard]] std::vector<char> packed() const;
  [[nodiscard]] static Failure unpacked(const std::vector<char>& bytes);

  /// Throws it anew.
  [[noreturn]] void raise() const;

 private:
  enum class Form { error, memory, other };

  Form form_ = Form::other;
  Code code_ = Code::objectUnreadable;
  std::string sentence_;
  Error::About about_;
};

/// Throws on every rank what the lowest rank that failed gives; returns when none did. Collective.
void agree(const Communicator& comm, const std::optional<Failure>& failure);

/// Runs a step of this rank, and has every rank throw when the step of any throws; see the public
/// function. Collective.
template <class Step>
void together(const Communicator& comm, Step&& step) {
  std::optional<Failure> failure;
  try {
    step();
  } catch (...) {
    failure = Failure::current();
  }
  agree(comm, failure);
}

}  // namespace orvml::parallel::detail
