#pragma once

#include "hdf5/source_file.h"
#include "model/document.h"
#include "support/document_builder.h"

#include <hdf5.h>

namespace orvml_io_tests {

/// The outcome of reading one document.
struct ReadResult {
  int status = 0;
  Handle document;  // null when the dimension was refused
};

/// Reads a document of an open file as the exported readers do; by a group of another name when one
/// is given.
template <class Document>
ReadResult readDocument(hid_t file, const char* group = nullptr) {
  auto document = std::make_unique<Document>();
  orvml_io::SourceFile source(file);
  document->arraysOwnedByCaller = false;
  const int status =
      group == nullptr ? document->Read(source) : document->ReadCommonPart(source, group);
  const bool isKept = document->meshDimension == 2 || document->meshDimension == 3;
  return {status, Handle(isKept ? orvml_io::handleOf(document.release()) : nullptr)};
}

/// Reports a finding when a document that was read breaks a promise of the readers: arrays shorter
/// than the counts say, counts that contradict each other, an empty container, an unknown type.
void requireReadPromises(const ReadResult& result);

}  // namespace orvml_io_tests
