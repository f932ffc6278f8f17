#pragma once

#include "soak/process_usage.h"

#include <string>

namespace orvml_io_tests {

/// Tells whether the run has its full length: ORVML_IO_SOAK_FULL is in the environment.
bool isFullLength();

/// How often a step is repeated: all the times at full length, else a hundredth of them.
int repetitions(int full);

/// Repeats a step and returns by how much the process grew meanwhile. A tenth goes before, because
/// HDF5 and the allocator keep some of what they were given once.
template <class Step>
ProcessUsage growthOf(int count, Step step) {
  for (int i = 0; i < count / 10; ++i) {
    step();
  }
  const ProcessUsage before = ProcessUsage::now();
  for (int i = 0; i < count; ++i) {
    step();
  }
  return ProcessUsage::now() - before;
}

/// Prints a row of the report: what was repeated, how often, and what it left.
void printRow(const std::string& what, int count, const ProcessUsage& growth);

}  // namespace orvml_io_tests
