#pragma once

#include "sequences/document_model.h"

namespace orvml_io_tests {

/// What comes back of a document that was written to a file and read again: everything that a file
/// loses is stated here, and nowhere else.
DocumentModel throughAFile(const DocumentModel& document);

/// What the readers must answer for a document that a file holds.
struct ReadModel {
  int result = 0;
  std::optional<DocumentModel> document;
};

/// What lies at a path: at first nothing, or something that is no exchange file.
class FileModel {
 public:
  /// Writes the documents that are not null, the input first. Returns the writers' result.
  int write(const DocumentModel* input, const DocumentModel* output);
  [[nodiscard]] bool holdsInput() const { return input_.has_value(); }
  [[nodiscard]] bool holdsOutput() const { return output_.has_value(); }
  ReadModel readInput();
  ReadModel readOutput();

 private:
  struct Identification {
    std::string moduleName;
    std::string moduleFormatVersion;
    std::string ioCreator;
  };

  int writeDocument(const DocumentModel& document, std::optional<DocumentModel>& place);
  ReadModel read(const DocumentModel& stored) const;

  bool isExchangeFile_ = false;
  /// A reader that found a document keeps the file open, and an open file cannot be replaced.
  bool isHeldOpen_ = false;
  Identification identification_;  // one for both documents: the last one written
  std::optional<DocumentModel> input_;
  std::optional<DocumentModel> output_;
};

}  // namespace orvml_io_tests
