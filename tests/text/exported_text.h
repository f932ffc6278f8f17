#pragma once

#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace orvml_io_tests {

/// The bytes of a file; empty also when there is no file.
inline std::string bytesOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

/// One node in space, so that a text begins with a short coordinates section.
inline BuiltDocument withOneNode() {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({1, 2, 3});
  return document;
}

/// Exports the mesh of a document, which must succeed, and returns the text.
inline std::string exportedText(void* document) {
  const TempFile file;
  EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(file.path(), document), 0);
  return bytesOf(file.path());
}

inline std::string exportedText(const BuiltDocument& document) {
  return exportedText(document.handle());
}

}  // namespace orvml_io_tests
