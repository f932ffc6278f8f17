#pragma once

#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace orvml_io_tests {

/// A mesh with a different number of each kind of entity and without attributes.
inline BuiltDocument documentWithoutAttributes() {
  BuiltDocument document = BuiltDocument::input(2);
  document.nodes({0, 0, 1, 0, 2, 0, 0, 1, 1, 1, 2, 1})
      .cells(ORVML_EDGES, {LINEAR}, {2}, {5}, {0, 1, 1, 2, 2, 5, 5, 4, 4, 3})
      .cells(ORVML_FACES, {TRIANGLE}, {3}, {3}, {0, 1, 3, 1, 4, 3, 1, 2, 4})
      .cells(ORVML_ELEMENTS, {QUADRILATERAL}, {4}, {1}, {0, 1, 4, 3});
  return document;
}

/// A kind of entity and how many of it that document has.
struct EntityRow {
  const char* name;
  ORVML_TYPE_OF_ENTITY entity;
  int count;

  friend std::ostream& operator<<(std::ostream& stream, const EntityRow& row) {
    return stream << row.name;
  }
};

inline constexpr EntityRow kEntityRows[] = {{"Nodes", ORVML_NODES, 6},
                                            {"Edges", ORVML_EDGES, 5},
                                            {"Faces", ORVML_FACES, 3},
                                            {"VolumeElements", ORVML_ELEMENTS, 1}};

/// What a getter hands out. Before the call the outputs point to `untouched` and hold -7.
template <class T>
struct AttributeValues {
  AttributeValues(void* handle, ORVML_TYPE_OF_ENTITY entity, const std::string& name)
      : result(OrvML_IO_GetAttributesEntitiesVector(handle, entity, name.c_str(), values, n)) {}
  AttributeValues(const AttributeValues&) = delete;
  AttributeValues& operator=(const AttributeValues&) = delete;
  AttributeValues(AttributeValues&&) = delete;
  AttributeValues& operator=(AttributeValues&&) = delete;
  ~AttributeValues() = default;

  [[nodiscard]] bool isUntouched() const noexcept { return values == &untouched && n == -7; }

  T untouched = 0;
  T* values = &untouched;
  int n = -7;
  int result;
};

/// A test that holds for the attributes of every kind of entity.
class EveryEntity : public ::testing::TestWithParam<EntityRow> {
 protected:
  void* handle() const { return document_.handle(); }
  static ORVML_TYPE_OF_ENTITY entity() { return GetParam().entity; }
  static int count() { return GetParam().count; }

  BuiltDocument document_ = documentWithoutAttributes();
};

/// A test that holds for every kind when its container is missing, and for unknown kinds.
class MissingStore : public ::testing::TestWithParam<int> {
 protected:
  void* handle() const { return handle_.get(); }
  static ORVML_TYPE_OF_ENTITY entity() { return static_cast<ORVML_TYPE_OF_ENTITY>(GetParam()); }

  Handle handle_{OrvML_IO_NewOrvInputHandle()};
};

}  // namespace orvml_io_tests

/// Runs the tests of a suite of EveryEntity for nodes, edges, faces and volume elements.
#define ORVML_IO_TESTS_FOR_EVERY_ENTITY(suite)                                             \
  INSTANTIATE_TEST_SUITE_P(Kinds, suite, ::testing::ValuesIn(orvml_io_tests::kEntityRows), \
                           orvml_io_tests::RowName())

/// Runs the tests of a suite of MissingStore for the four kinds and for unknown ones.
#define ORVML_IO_TESTS_FOR_MISSING_STORES(suite) \
  INSTANTIATE_TEST_SUITE_P(Kinds, suite, ::testing::Values(0, 1, 2, 3, 4, 7, -1))
