#pragma once

#include "json.h"
#include "report.h"

namespace orvml_report {

/// What a document is beside its mesh: name, counts, ranges, parameters, fingerprint.
[[nodiscard]] Json factsAsJson(const ReportedDocument& document);

}  // namespace orvml_report
