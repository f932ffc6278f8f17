// Numbers as the text export writes them: byte for byte what fprintf writes.
#include "text/text_writer.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

using orvml_io::TextWriter;

/// What a writer puts into a stream.
template <class Write>
std::string written(Write write) {
  char* bytes = nullptr;
  std::size_t size = 0;
  std::FILE* stream = ::open_memstream(&bytes, &size);
  {
    TextWriter writer(stream);
    write(writer);
  }
  std::fclose(stream);
  const std::string text(bytes, size);
  std::free(bytes);
  return text;
}

std::string decimal(double value) {
  return written([value](TextWriter& writer) { writer.decimal(value); });
}

std::string byPrintf(double value) {
  char text[400];
  std::snprintf(text, sizeof text, "%f", value);
  return text;
}

class SpecialDecimal : public ::testing::TestWithParam<double> {};

TEST_P(SpecialDecimal, IsWhatPrintfWrites) {
  EXPECT_EQ(decimal(GetParam()), byPrintf(GetParam()));
  EXPECT_EQ(decimal(-GetParam()), byPrintf(-GetParam()));
}

// Ties that go to the even digit, what lies just beside them, carries into the units, the ends of
// what is split into integers, and what is left to printf.
INSTANTIATE_TEST_SUITE_P(
    Numbers, SpecialDecimal,
    ::testing::Values(0.0, 0.0078125, 0.0234375, 1.0078125, std::nextafter(0.0078125, 0),
                      std::nextafter(0.0078125, 1), 0.9999995, 0.9999994999, 0.99999949999999999,
                      5e-7, std::nextafter(5e-7, 0), std::nextafter(5e-7, 1), 1.5e-6, 2.5e-6,
                      1e-300, std::numeric_limits<double>::denorm_min(), 4503599627370495.5,
                      9007199254740991.0, 9007199254740992.0, 9007199254740994.0, 1e22,
                      std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity(),
                      std::numeric_limits<double>::quiet_NaN()));

TEST(AnyDecimal, IsWhatPrintfWrites) {
  std::mt19937_64 engine(1);
  for (int i = 0; i < 200000; ++i) {
    const std::uint64_t bits = engine();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    ASSERT_EQ(decimal(value), byPrintf(value)) << "number " << i;
  }
}

TEST(AnyDecimal, OfUsualSizeIsWhatPrintfWrites) {
  std::mt19937_64 engine(2);
  for (int i = 0; i < 200000; ++i) {
    const auto digits = static_cast<double>(engine() % 2000000000000ULL);
    const double value = std::ldexp(digits / 1e6, static_cast<int>(engine() % 60) - 40);
    ASSERT_EQ(decimal(value), byPrintf(value)) << "number " << i;
    const double nearTie = std::round(digits) / 1e6 + 0.5e-6;
    ASSERT_EQ(decimal(nearTie), byPrintf(nearTie)) << "number " << i;
  }
}

/// Rounds upward while it lives.
class RoundingUpward {
 public:
  RoundingUpward() { std::fesetround(FE_UPWARD); }
  RoundingUpward(const RoundingUpward&) = delete;
  RoundingUpward& operator=(const RoundingUpward&) = delete;
  RoundingUpward(RoundingUpward&&) = delete;
  RoundingUpward& operator=(RoundingUpward&&) = delete;
  ~RoundingUpward() { std::fesetround(FE_TONEAREST); }
};

TEST(Decimal, FollowsTheRoundingOfTheProcess) {
  const RoundingUpward upward;

  EXPECT_EQ(decimal(0.00000010), "0.000001");
}

TEST(Integer, IsWhatPrintfWrites) {
  for (const int value : {0, 9, 10, -1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(written([value](TextWriter& writer) { writer.integer(value); }),
              std::to_string(value));
  }
}

TEST(TextWriter, KeepsTheOrderOverManyFullBuffers) {
  std::string expected;
  const std::string text = written([&expected](TextWriter& writer) {
    for (int i = 0; i < 100000; ++i) {
      writer.integer(i);
      writer.character(' ');
      expected += std::to_string(i) + ' ';
    }
  });

  EXPECT_EQ(text, expected);
}

TEST(TextWriter, WritesNothingWhenNothingIsWritten) {
  EXPECT_EQ(written([](TextWriter&) {}), "");
}

}  // namespace
