// Makes the calls that the input decides, beside a model of the documents that they change: the
// sequences of tests/sequences, steered by coverage instead of a seed.
#include "fuzz/calls/random_from_bytes.h"
#include "fuzz/harness/finding.h"
#include "fuzz/harness/fuzz_target.h"
#include "sequences/caller.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

void run(ByteSource bytes) {
  constexpr std::uint64_t kSeedBehindTheBytes = 1;
  const RandomFromBytes choices(bytes);
  Random random(kSeedBehindTheBytes);
  Caller caller(random);
  while (!bytes.isAtEnd()) {
    RandomFromBytes::shuffleOnlyTheLast();
    caller.run(1);
  }
  caller.memory.expectUntouched();
  expectNullHandleState();
}

}  // namespace
}  // namespace orvml_io_tests

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orvml_io_tests::run(orvml_io_tests::ByteSource(data, size));
  orvml_io_tests::require(!::testing::Test::HasFailure(), "documents do what their model says");
  return 0;
}
