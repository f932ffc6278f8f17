#pragma once

#include <cstdint>

namespace orvml_parallel_tests {

/// What this rank has asked of MPI, counted where MPI's own functions are called.
struct Calls {
  std::int64_t collectives = 0;  ///< of communicators and files
  std::int64_t bytesRead = 0;    ///< through MPI
  std::int64_t bytesWritten = 0;
  std::int64_t bytesFromSystem = 0;  ///< by any call of the process that reads
  std::int64_t messages = 0;  ///< from one rank to another, not counting those in collective calls
  std::int64_t messageBytes = 0;

  friend Calls operator-(const Calls& a, const Calls& b);
};

/// What was counted so far.
Calls callsSoFar();

/// From now on what this rank reads or writes through MPI fails. The others are told nothing.
void failTransfers(bool fail);

}  // namespace orvml_parallel_tests
