#pragma once

#include <array>

namespace orvml_io_tests {

/// What a reader of one document gave: its result, whether a document came with it, and the
/// numbers of its nodes, edges, faces and volume elements.
struct Reading {
  int status = 0;
  bool hasDocument = false;
  std::array<int, 4> counts = {};
};

/// What the reader of both documents gave.
struct ReadingOfBoth {
  int status = 0;
  bool hasInput = false;
  bool hasOutput = false;
};

/// What the three readers gave of one file.
struct Readings {
  Reading input;
  Reading output;
  ReadingOfBoth both;
};

/// Reads a file in every way that the library offers. Whatever is in the file, each reader has to
/// give one of its stated results, and a document that came back has to bear every call: all its
/// accessors, being written to a file of its own, printed, cloned, compared and deleted. What fails
/// adds a test failure.
Readings readInEveryWay(const char* path);

/// Does the same, and expects that nothing was printed and that the reader of both documents did
/// what the two readers did.
Readings readInSilence(const char* path);

/// Reads only the input document, in the same way.
Reading readInputInSilence(const char* path);

}  // namespace orvml_io_tests
