#include "fuzz/calls/random_from_bytes.h"

#include "fuzz/harness/choice.h"
#include "sequences/random.h"

#include <climits>
#include <limits>

namespace orvml_io_tests {

namespace {

using Limits = std::numeric_limits<double>;

ByteSource* source = nullptr;
bool shuffleIsNext = false;
int boundOfShuffle = 0;  // the bound that the next step of a running shuffle asks for; 0: none runs

/// A shuffle asks for one number less each time. All but the first leave an entry where it is.
bool isLaterStepOfShuffle(int bound) noexcept {
  const bool isLaterStep = boundOfShuffle > 1 && bound == boundOfShuffle;
  boundOfShuffle = isLaterStep || shuffleIsNext ? bound - 1 : 0;
  shuffleIsNext = false;
  return isLaterStep;
}

unsigned numberFrom(ByteSource& bytes, int bound) noexcept {
  constexpr int kNumbersOfOneByte = 256;
  const unsigned low = bytes.next();
  return bound <= kNumbersOfOneByte ? low : low + kNumbersOfOneByte * bytes.next();
}

}  // namespace

RandomFromBytes::RandomFromBytes(ByteSource& bytes) noexcept {
  source = &bytes;
  shuffleIsNext = false;
  boundOfShuffle = 0;
}

RandomFromBytes::~RandomFromBytes() { source = nullptr; }

void RandomFromBytes::shuffleOnlyTheLast() noexcept { shuffleIsNext = true; }

int Random::below(int bound) {
  if (isLaterStepOfShuffle(bound)) {
    return bound - 1;
  }
  const bool hasBytes = source != nullptr && !source->isAtEnd();
  const std::uint64_t number = hasBytes ? numberFrom(*source, bound) : engine_();
  return static_cast<int>(number % static_cast<std::uint64_t>(bound));
}

int Random::anyInt() {
  constexpr int kExtremes[] = {INT_MIN, INT_MAX, -1, 0};
  constexpr int kFirstExtreme = 200;
  const int number = below(kFirstExtreme + 8);
  return number < kFirstExtreme ? number : chosen(static_cast<unsigned>(number), kExtremes);
}

double Random::anyDouble() {
  static const double kExtremes[] = {-0.0,
                                     Limits::max(),
                                     Limits::denorm_min(),
                                     Limits::infinity(),
                                     -Limits::infinity(),
                                     Limits::quiet_NaN(),
                                     1.0 / 3.0,
                                     1.0 / 3.0 + 1e-14};
  constexpr int kFirstExtreme = 200;
  const int number = below(kFirstExtreme + 16);
  return number < kFirstExtreme ? number / 4.0 : chosen(static_cast<unsigned>(number), kExtremes);
}

ElemType Random::anyShape() { return static_cast<ElemType>(below(CIRCLE + 3)); }

std::vector<int> Random::nodeIndices(int count) {
  return filled(count, [this] { return below(16) - 2; });
}

std::vector<int> Random::ints(int count) {
  return filled(count, [this] { return anyInt(); });
}

std::vector<double> Random::doubles(int count) {
  return filled(count, [this] { return anyDouble(); });
}

}  // namespace orvml_io_tests
