#pragma once

#include <orvml/error.hpp>

#include "communicator.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace orvml::parallel::detail {

/// Why a step failed on one rank, in a form that can be sent to the others.
class Failure {
 public:
  /// As ranks tell it to each other, which must not need memory: that may be what is lacking.
  /// Longer texts are cut.
  struct Message {
    static constexpr std::size_t kMostTextBytes = 8192;
    struct Text {
      std::size_t size = 0;
      std::array<char, kMostTextBytes> bytes = {};
    };
    int form = 0;
    int code = 0;
    Text sentence;
    Text file;
    Text object;
    Text hdf5Reason;
  };

  /// The exception that is being handled.
  [[nodiscard]] static Failure current() noexcept;

  void pack(Message& message) const noexcept;
  [[nodiscard]] static Failure unpacked(const Message& message);

  /// Throws it anew.
  [[noreturn]] void raise() const;

 private:
  enum class Form { error, memory, argument, other };

  void takeCurrent();

  Form form_ = Form::other;
  Code code_ = Code::objectUnreadable;
  std::string sentence_;
  Error::About about_;
};

/// Throws on every rank what the lowest rank that failed gives; returns when none did. Collective.
void agree(MPI_Comm comm, const std::optional<Failure>& failure);

/// Runs a step of this rank, and has every rank throw when the step of any throws; see the public
/// function. Collective.
template <class Step>
void together(MPI_Comm comm, Step&& step) {
  std::optional<Failure> failure;
  try {
    step();
  } catch (...) {
    failure = Failure::current();
  }
  agree(comm, failure);
}

template <class Step>
void together(const Communicator& comm, Step&& step) {
  together(comm.get(), std::forward<Step>(step));
}

}  // namespace orvml::parallel::detail
