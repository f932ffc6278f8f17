#pragma once

#include "support/document_builder.h"

#include <string>

namespace orvml_io_tests {

/// What a call of an exported function gave: its result, and the documents that came with it, as
/// files/described_document.h describes them.
struct Outcome {
  int status = 0;
  std::string documents;
};

// The readers. They call every accessor of what comes back, and delete it.
Outcome readInput(const char* path);
Outcome readOutput(const char* path);
Outcome readBoth(const char* path);

/// The documents that the writers write.
struct Sources {
  BuiltDocument input = fullDocument();
  BuiltDocument output = documentWithMixedShapes();
};

// The writers. Both of one document write the input.
int writeInput(const char* path, const Sources& sources);
int writeOutput(const char* path, const Sources& sources);
int writeBoth(const char* path, const Sources& sources);

/// What of documents is missing from another description of them, in words and separated by commas:
/// "nodes", "face attribute", "parameter"; "module" stands for all identification, "everything" for
/// all. Empty when nothing is missing. What was made up, and is no changed part, has a "+".
std::string lostParts(const std::string& whole, const std::string& found);

}  // namespace orvml_io_tests
