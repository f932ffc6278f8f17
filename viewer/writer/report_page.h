#pragma once

#include <string_view>

namespace orvml_report {

/// The page without a document. It has the marker once, where the data elements belong.
extern const std::string_view kReportPage;

inline constexpr std::string_view kDataMarker = "<!--report-->";

}  // namespace orvml_report
