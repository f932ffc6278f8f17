#pragma once

#include <orvml/check.hpp>

#include "input_file.h"
#include "json.h"

#include <optional>
#include <string>
#include <vector>

namespace orvml_tool {

/// What `orvml check` has to say of one file.
struct CheckedFile {
  InputFile file;
  orvml::CheckReport report;
  std::optional<orvml::Error> error;  ///< why there is no report
};

/// The exit code for a file; strict makes warnings errors.
[[nodiscard]] int codeOf(const CheckedFile& checked, bool isStrict);

void printReport(const CheckedFile& checked);

/// As docs/schema/check.schema.json says.
[[nodiscard]] Json reportsAsJson(const std::vector<CheckedFile>& files);

/// As a log of SARIF 2.1.0 with one run.
[[nodiscard]] Json reportsAsSarif(const std::vector<CheckedFile>& files, int exitCode);

}  // namespace orvml_tool
