#pragma once

#include "support/raw_file.h"

#include <string>
#include <vector>

namespace orvml_io_tests {

/// Makes a file of the current format that holds an input and an output document, through the
/// library itself.
void makeCurrentFile(const char* path);

/// Makes a file of an old format by raw HDF5 calls, with everything that those formats can hold in
/// its input document and a small output document. An empty version makes a file without one.
void makeLegacyFile(const char* path, const std::string& version);

/// A kind of valid file to be damaged.
struct ValidFile {
  const char* name;
  const char* version;

  void make(const char* path) const;
};

/// One file of the current format and one of each older one.
const std::vector<ValidFile>& validFiles();

/// Prints the name, for the messages of failed tests.
std::ostream& operator<<(std::ostream& stream, const ValidFile& file);

}  // namespace orvml_io_tests
