#pragma once

#include "hdf5/silence.h"
#include "model/document.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/group_at.h"
#include "support/open_ids.h"
#include "support/raw_file.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <string>

namespace orvml_io_tests {

/// A document that a test builds, and an open file whose group "/OrvInput" takes what the members
/// of the document write.
class DocumentFileTest : public ::testing::Test {
 protected:
  explicit DocumentFileTest(const std::string& version = "1.4")
      : file_(RawFile::createMarked(temp_.path(), version)), built_(BuiltDocument::input(3)) {
    file_.group("/OrvInput");
  }

  [[nodiscard]] RawFile& file() { return file_; }
  [[nodiscard]] BuiltDocument& built() { return built_; }
  [[nodiscard]] orvml_io::OrvInputAndOrvOutput& document() {
    return *orvml_io::documentOf(built_.handle());
  }
  [[nodiscard]] orvml_io::OpenGroup root() const { return {file_.id(), 0}; }
  /// The group that takes what the document writes.
  [[nodiscard]] GroupAt group() const { return {file_.id(), "/OrvInput"}; }
  /// A group that could not be opened.
  [[nodiscard]] static orvml_io::OpenGroup noGroup() { return {-1, 0}; }
  /// What was opened and not closed; the file of the test itself is one of it.
  [[nodiscard]] IdCounts opened() const { return ids_.opened(); }
  [[nodiscard]] const char* path() const { return temp_.path(); }

 private:
  TempFile temp_;
  OpenIds ids_;
  RawFile file_;
  BuiltDocument built_;
  orvml_io::Silence silence_;
};

}  // namespace orvml_io_tests
