#pragma once

#include "values/attributes_vector.h"

namespace orvml_io_tests {

/// Reads every value of an array, so that a sanitizer sees when it is shorter than it should be.
/// Nothing is read of an array that is missing.
template <class T>
void touch(const T* values, long long length) {
  if (values == nullptr) {
    return;
  }
  for (long long i = 0; i < length; ++i) {
    const volatile T* value = values + i;
    (void)*value;
  }
}

inline void touchVector(const orvml_io::OML_AttributesVector::Entry& entry) {
  if (entry.code == orvml_io::kIntCode) {
    touch(static_cast<const int*>(entry.data), entry.length);
  } else {
    touch(static_cast<const double*>(entry.data), entry.length);
  }
}

}  // namespace orvml_io_tests
