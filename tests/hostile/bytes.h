#pragma once

#include "hostile/valid_files.h"

#include <vector>

namespace orvml_io_tests {

using Bytes = std::vector<unsigned char>;

/// The whole content of a file.
Bytes bytesOf(const char* path);

/// The content of a valid file that is made for this.
Bytes bytesOfNew(const ValidFile& file);

/// Makes a file of the content.
void writeBytes(const char* path, const Bytes& bytes);

}  // namespace orvml_io_tests
