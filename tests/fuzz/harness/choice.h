#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace orvml_io_tests {

/// Returns one entry of a table; the choices repeat behind its end.
template <class T, std::size_t N>
const T& chosen(unsigned choice, const T (&table)[N]) {
  return table[static_cast<std::size_t>(choice) % N];
}

/// Returns the normal value for choice 0, else one of a table of deviations; the choices repeat.
template <class T, std::size_t N>
T normalOr(const T (&deviations)[N], unsigned choice, const T& normal) {
  const std::size_t deviation = static_cast<std::size_t>(choice) % (N + 1);
  return deviation == 0 ? normal : deviations[deviation - 1];
}

/// Returns `count` values, each made by a call.
template <class Make>
auto filled(int count, Make make) {
  std::vector<decltype(make())> values(static_cast<std::size_t>(count));
  std::generate(values.begin(), values.end(), make);
  return values;
}

}  // namespace orvml_io_tests
