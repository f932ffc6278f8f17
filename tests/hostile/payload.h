#pragma once

#include "hostile/bytes.h"
#include "support/raw_file.h"

#include <string>
#include <vector>

namespace orvml_io_tests {

/// A part of a file, as positions of its bytes.
struct ByteRange {
  std::size_t first = 0;
  std::size_t length = 0;
};

/// The paths of everything under a group, parents before their members.
std::vector<std::string> pathsUnder(const RawFile& file, const std::string& group);

/// The paths of the datasets under a group.
std::vector<std::string> datasetsUnder(const RawFile& file, const std::string& group);

/// Where the values of datasets lie in a file.
std::vector<ByteRange> storedValues(const RawFile& file);

/// Where the names of links, the names of root attributes and the texts in them lie in a file.
std::vector<ByteRange> storedTexts(const RawFile& file, const Bytes& bytes);

}  // namespace orvml_io_tests
