#pragma once

#include <algorithm>
#include <initializer_list>

namespace orvml_io_tests {

/// Makes an array with new[]: what a caller needs who hands an array over to a clearing function.
template <class T>
T* newArray(std::initializer_list<T> values) {
  T* array = new T[values.size()];
  std::copy(values.begin(), values.end(), array);
  return array;
}

}  // namespace orvml_io_tests
