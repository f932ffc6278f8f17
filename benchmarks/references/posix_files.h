#pragma once

#include "inputs/content.h"
#include "references/loaded.h"

namespace orvml_io_bench::posix_files {

/// Writes the bytes of every array of a content, one after the other.
void write(const std::string& path, const Content& content);

/// Reads them into fresh arrays.
Loaded read(const std::string& path, const Content& content);

}  // namespace orvml_io_bench::posix_files
