#pragma once

#include "orvml_io.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace orvml_io_tests {

/// What the two types of values differ in.
template <class T>
struct ValueType;

template <>
struct ValueType<int> {
  static constexpr char kCode = 'i';
  static constexpr ORVML_TYPE_OF_VALUE kType = ORVML_INT;
  static std::vector<int> extremes() { return {INT_MIN, -1, 0, 1, INT_MAX}; }
};

template <>
struct ValueType<double> {
  using Limits = std::numeric_limits<double>;
  static constexpr char kCode = 'd';
  static constexpr ORVML_TYPE_OF_VALUE kType = ORVML_DOUBLE;
  static std::vector<double> extremes() {
    return {
        -0.0, 0.1, Limits::denorm_min(), Limits::max(), -Limits::infinity(), Limits::quiet_NaN()};
  }
};

using ValueTypes = ::testing::Types<int, double>;

/// Names the tests of a suite after its type of values.
struct ValueTypeName {
  template <class T>
  static std::string GetName(int /*index*/) {
    return ValueType<T>::kType == ORVML_INT ? "Ints" : "Doubles";
  }
};

/// Compares the bytes: a zero keeps its sign and a NaN equals itself.
template <class T>
bool sameBytes(const void* block, const std::vector<T>& values) {
  return std::memcmp(block, values.data(), values.size() * sizeof(T)) == 0;
}

}  // namespace orvml_io_tests
