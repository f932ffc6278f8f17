#pragma once

#include "faults/failing.h"

#include <ostream>

namespace orvml_io_tests {

/// The calls of the system through which a file is read, written and put in its place.
enum class SystemCall { read, write, lock, flush, rename };

/// What such a call does instead of its work.
enum class Mishap {
  inputOutputError,  ///< fails with EIO
  noSpace,           ///< fails with ENOSPC
  interruption,      ///< fails with EINTR
  noSuchCall,        ///< fails with ENOSYS, as locks do on some network file systems
  half,              ///< transfers half of the bytes; of one byte that one
  killBefore,        ///< the process ends before the transfer
  killInside         ///< the process ends after half of it
};

const char* nameOf(Mishap mishap);

/// Counts one kind of system calls of this process while it lives, and lets the n-th, counted from
/// 1, come to grief, or that one and all later ones; none for 0. One may live at a time.
class FailingSystemCall {
 public:
  explicit FailingSystemCall(SystemCall call, int n = 0, Mishap mishap = Mishap::inputOutputError,
                             Failing failing = Failing::once) noexcept;
  FailingSystemCall(const FailingSystemCall&) = delete;
  FailingSystemCall& operator=(const FailingSystemCall&) = delete;
  FailingSystemCall(FailingSystemCall&&) = delete;
  FailingSystemCall& operator=(FailingSystemCall&&) = delete;
  ~FailingSystemCall();

  [[nodiscard]] int calls() const noexcept;
  [[nodiscard]] bool happened() const noexcept;
};

}  // namespace orvml_io_tests
