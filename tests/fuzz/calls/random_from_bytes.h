#pragma once

#include "fuzz/harness/byte_source.h"

namespace orvml_io_tests {

/// While it lives, the bytes of an input make the choices of every Random. A program that uses it
/// links random_from_bytes.cpp instead of sequences/random.cpp. When the bytes have run out, the
/// choices are those of a seed, so that nothing waits for ever for a choice that does not come.
class RandomFromBytes {
 public:
  explicit RandomFromBytes(ByteSource& bytes) noexcept;
  RandomFromBytes(const RandomFromBytes&) = delete;
  RandomFromBytes& operator=(const RandomFromBytes&) = delete;
  RandomFromBytes(RandomFromBytes&&) = delete;
  RandomFromBytes& operator=(RandomFromBytes&&) = delete;
  ~RandomFromBytes();

  /// Makes the next shuffle leave all entries where they are but the one that the bytes choose: it
  /// comes to stand last. Callers shuffle the kinds of call and make the last one first.
  static void shuffleOnlyTheLast() noexcept;
};

}  // namespace orvml_io_tests
