#pragma once

#include <cstdint>
#include <functional>

namespace orvml_parallel_tests {

/// What this rank has asked of MPI, by itself, through HDF5 or through PT-Scotch, counted where
/// MPI's own functions are called.
struct Calls {
  std::int64_t collectives = 0;      ///< of communicators and files
  std::int64_t collectiveBytes = 0;  ///< what this rank tells others in them
  std::int64_t messages = 0;         ///< from one rank to another, beside those
  std::int64_t messageBytes = 0;
  std::int64_t bytesRead = 0;  ///< through MPI
  std::int64_t bytesWritten = 0;
  std::int64_t bytesFromSystem = 0;  ///< by any call of the process that reads

  friend Calls operator-(const Calls& a, const Calls& b);
};

/// What was counted so far.
Calls callsSoFar();

/// From now on what this rank reads or writes through MPI fails. The others are told nothing.
void failTransfers(bool fail);

/// From now on ranks cannot agree: reductions fail on this one. All ranks have to call it.
void failReductions(bool fail);

/// Something that happens once, right before this rank opens a file through MPI.
void beforeNextOpen(std::function<void()> action);

/// From now on the system answers with this error when this rank wants space set aside; 0 for none.
void failReservations(int error);

}  // namespace orvml_parallel_tests
