#pragma once

#include <orvml/describe.hpp>
#include <orvml/mapped_file.hpp>

#include "input_file.h"
#include "json.h"

namespace orvml_tool {

/// What `orvml info` tells of one file.
struct FileInfo {
  const InputFile& file;
  const orvml::Description& description;
  const orvml::MappedFile* values;  ///< null when no values are to be read
};

void printInfo(const FileInfo& info);

/// As docs/schema/info.schema.json says.
[[nodiscard]] Json infoAsJson(const FileInfo& info);

}  // namespace orvml_tool
