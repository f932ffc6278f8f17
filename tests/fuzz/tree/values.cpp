#include "fuzz/tree/values.h"

#include <climits>
#include <limits>

namespace orvml_io_tests {

namespace {

constexpr unsigned kSpecialValues = 16;
constexpr unsigned kEverywhere = 15;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr double kDoubles[kSpecialValues] = {
    0.0,          -0.0,          -1.0,
    0.5,          3.7,           4.0,
    1e300,        1e-310,        std::numeric_limits<double>::quiet_NaN(),
    kInfinity,    -kInfinity,    2147483647.0,
    2147483648.0, -2147483649.0, 9.3e18,
    1.0};

constexpr long long kIntegers[kSpecialValues] = {0,
                                                 0,
                                                 -1,
                                                 1,
                                                 2,
                                                 3,
                                                 10,
                                                 11,
                                                 46341,
                                                 65536,
                                                 INT_MAX,
                                                 INT_MIN,
                                                 INT_MAX - 1LL,
                                                 INT_MAX + 1LL,
                                                 (1LL << 32) + 1,
                                                 1LL << 62};

template <class T>
std::vector<T> valuesOf(unsigned choice, const std::vector<double>& normal, std::size_t count,
                        const T (&special)[kSpecialValues]) {
  std::vector<T> values(count);
  for (std::size_t i = 0; i < count; ++i) {
    values[i] = normal.empty() ? T{} : static_cast<T>(normal[i % normal.size()]);
  }
  const unsigned which = choice % kSpecialValues;
  const unsigned where = choice / kSpecialValues % kSpecialValues;
  if (which == 0 || count == 0) {
    return values;
  }
  if (where == kEverywhere) {
    values.assign(count, special[which]);
  } else {
    values[where % count] = special[which];
  }
  return values;
}

}  // namespace

std::vector<double> doublesOf(unsigned choice, const std::vector<double>& normal,
                              std::size_t count) {
  return valuesOf(choice, normal, count, kDoubles);
}

std::vector<long long> integersOf(unsigned choice, const std::vector<double>& normal,
                                  std::size_t count) {
  return valuesOf(choice, normal, count, kIntegers);
}

}  // namespace orvml_io_tests
