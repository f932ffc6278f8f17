#pragma once

#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {

/// A document that owns its arrays, made as callers come by one: it was read from a file.
class OwningDocument {
 public:
  explicit OwningDocument(const BuiltDocument& source) {
    EXPECT_EQ(OrvML_IO_WriteOrvInput(file_.path(), source.handle()), 0);
    EXPECT_EQ(OrvML_IO_ReadOrvInput(file_.path(), document_.out()), 0);
  }

  [[nodiscard]] void* handle() const noexcept { return document_.get(); }
  /// The variable itself, for functions that take a handle by reference.
  [[nodiscard]] void*& out() noexcept { return document_.out(); }

 private:
  OpenIds ids_;
  TempFile file_;
  Handle document_;
};

}  // namespace orvml_io_tests
