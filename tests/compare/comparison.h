#pragma once

#include "orvml_io.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

#include <ostream>

namespace orvml_io_tests {

/// Compares two documents, neither of them null, with both exported predicates. They must agree:
/// what they compare does not depend on the kind of a document.
inline bool equal(void* first, void* second) {
  const bool answer = OrvML_IO_OrvInputsAreEqual(first, second);
  EXPECT_EQ(OrvML_IO_OrvOutputsAreEqual(first, second), answer);
  return answer;
}

inline bool equal(const BuiltDocument& first, const BuiltDocument& second) {
  return equal(first.handle(), second.handle());
}

inline bool equal(const Handle& first, const Handle& second) {
  return equal(first.get(), second.get());
}

/// A change of a document, after which it is compared.
struct DocumentChange {
  const char* name;
  void (*apply)(void* document);

  friend std::ostream& operator<<(std::ostream& stream, const DocumentChange& change) {
    return stream << change.name;
  }
};

}  // namespace orvml_io_tests
