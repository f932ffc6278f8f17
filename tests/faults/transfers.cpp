#include "faults/transfers.h"

#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <optional>

namespace orvml_io_tests {

namespace {

FailurePlan plan;
SystemCall failingCall = SystemCall::read;
Mishap plannedMishap = Mishap::inputOutputError;

std::optional<Mishap> mishapOf(SystemCall call) noexcept {
  return call == failingCall && plan.mustFail() ? std::optional<Mishap>(plannedMishap)
                                                : std::nullopt;
}

[[noreturn]] void endProcess() noexcept {
  (void)::kill(::getpid(), SIGKILL);
  ::_exit(1);
}

/// Sets the error number of a mishap; those that are no errors end the process or do nothing.
int fail(Mishap mishap) noexcept {
  switch (mishap) {
    case Mishap::noSpace:
      errno = ENOSPC;
      break;
    case Mishap::interruption:
      errno = EINTR;
      break;
    case Mishap::noSuchCall:
      errno = ENOSYS;
      break;
    case Mishap::killBefore:
    case Mishap::killInside:
      endProcess();
    default:
      errno = EIO;
  }
  return -1;
}

/// Makes a transfer, or what the plan says instead of it.
template <class Transfer>
ssize_t transferOrFail(SystemCall call, std::size_t bytes, const Transfer& transfer) noexcept {
  const std::optional<Mishap> mishap = mishapOf(call);
  if (!mishap) {
    return transfer(bytes);
  }
  const std::size_t half = (bytes + 1) / 2;
  if (*mishap == Mishap::half) {
    return transfer(half);
  }
  if (*mishap == Mishap::killInside) {
    (void)transfer(half);
  }
  return fail(*mishap);
}

}  // namespace

// HDF5 finds these functions before those of the C library.
extern "C" {

__attribute__((visibility("default"))) ssize_t pread(int file, void* buffer, std::size_t bytes,
                                                     off_t offset) {
  return transferOrFail(SystemCall::read, bytes, [&](std::size_t count) {
    return ::syscall(SYS_pread64, file, buffer, count, offset);
  });
}

__attribute__((visibility("default"))) ssize_t pwrite(int file, const void* buffer,
                                                      std::size_t bytes, off_t offset) {
  return transferOrFail(SystemCall::write, bytes, [&](std::size_t count) {
    return ::syscall(SYS_pwrite64, file, buffer, count, offset);
  });
}

__attribute__((visibility("default"))) int flock(int file, int operation) noexcept {
  const std::optional<Mishap> mishap = mishapOf(SystemCall::lock);
  return mishap ? fail(*mishap) : static_cast<int>(::syscall(SYS_flock, file, operation));
}

__attribute__((visibility("default"))) int fsync(int file) {
  const std::optional<Mishap> mishap = mishapOf(SystemCall::flush);
  return mishap ? fail(*mishap) : static_cast<int>(::syscall(SYS_fsync, file));
}

__attribute__((visibility("default"))) int rename(const char* from, const char* to) noexcept {
  const std::optional<Mishap> mishap = mishapOf(SystemCall::rename);
  return mishap ? fail(*mishap) : static_cast<int>(::syscall(SYS_rename, from, to));
}

}  // extern "C"

const char* nameOf(Mishap mishap) {
  switch (mishap) {
    case Mishap::inputOutputError:
      return "InputOutputError";
    case Mishap::noSpace:
      return "NoSpace";
    case Mishap::interruption:
      return "Interruption";
    case Mishap::noSuchCall:
      return "NoSuchCall";
    case Mishap::half:
      return "Half";
    case Mishap::killBefore:
      return "KillBefore";
    default:
      return "KillInside";
  }
}

FailingSystemCall::FailingSystemCall(SystemCall call, int n, Mishap mishap,
                                     Failing failing) noexcept {
  failingCall = call;
  plannedMishap = mishap;
  plan.begin(n, failing);
}

FailingSystemCall::~FailingSystemCall() { plan.end(); }

int FailingSystemCall::calls() const noexcept { return plan.events(); }

bool FailingSystemCall::happened() const noexcept { return plan.hasFailed(); }

}  // namespace orvml_io_tests
