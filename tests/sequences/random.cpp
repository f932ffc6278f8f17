#include "sequences/random.h"

#include "sequences/last_words.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <numeric>

namespace orvml_io_tests {

namespace {

double doubleOfBits(std::uint64_t bits) {
  double value = 0;
  std::memcpy(&value, &bits, sizeof(value));
  return value;
}

std::string howToRepeat(std::uint64_t seed) {
  return "Repeat this with ORVML_IO_TESTS_SEED=" + std::to_string(seed) + ".";
}

using Ints = std::numeric_limits<int>;
using Doubles = std::numeric_limits<double>;

}  // namespace

int Random::below(int bound) {
  // Not a standard distribution: their results differ from library to library.
  return static_cast<int>(engine_() % static_cast<std::uint64_t>(bound));
}

int Random::anyInt() {
  static const std::vector<int> extremes = {Ints::min(), Ints::max(), -1, 0};
  return chance(20) ? oneOf(extremes) : between(-50, 50);
}

double Random::anyDouble() {
  static const std::vector<double> extremes = {-0.0,
                                               Doubles::max(),
                                               Doubles::lowest(),
                                               Doubles::min(),
                                               Doubles::denorm_min(),
                                               -Doubles::denorm_min(),
                                               Doubles::infinity(),
                                               -Doubles::infinity(),
                                               doubleOfBits(0x7ff8000000000abcULL),
                                               doubleOfBits(0xfff80000deadbeefULL)};
  if (chance(15)) {
    return oneOf(extremes);
  }
  // Thirds have no finite binary form; small steps make neighbours that a tolerance could join.
  return between(-30, 30) / 3.0 + (chance(10) ? 1e-14 : 0.0);
}

ElemType Random::anyShape() {
  return static_cast<ElemType>(chance(5) ? anyInt() : between(NONE, CIRCLE));
}

std::vector<int> Random::nodeIndices(int count) {
  std::vector<int> indices(static_cast<std::size_t>(count));
  for (int& index : indices) {
    index = chance(5) ? Ints::min() : between(-1, 12);
  }
  return indices;
}

std::vector<int> Random::ints(int count) {
  std::vector<int> values(static_cast<std::size_t>(count));
  for (int& value : values) {
    value = anyInt();
  }
  return values;
}

std::vector<double> Random::doubles(int count) {
  std::vector<double> values(static_cast<std::size_t>(count));
  for (double& value : values) {
    value = anyDouble();
  }
  return values;
}

std::vector<std::uint64_t> seeds(int count) {
  if (const char* chosen = std::getenv("ORVML_IO_TESTS_SEED")) {
    return {std::strtoull(chosen, nullptr, 10)};
  }
  std::vector<std::uint64_t> all(static_cast<std::size_t>(count));
  std::iota(all.begin(), all.end(), 1U);
  return all;
}

void forEachSeed(int count, void (*test)(Random& random)) {
  for (const std::uint64_t seed : seeds(count)) {
    const LastWords lastWords([seed] { return howToRepeat(seed); });
    SCOPED_TRACE(howToRepeat(seed));
    Random random(seed);
    test(random);
    if (::testing::Test::HasFailure()) {
      return;
    }
  }
}

}  // namespace orvml_io_tests
