#pragma once

#include "convert/conversion_report.h"

#include <set>
#include <string>
#include <string_view>

namespace orvml_tool {

/// Names as XML can hold them, each once: bytes that are no UTF-8 and control characters, which XML
/// has no way to write, become "_". What has to be changed is reported as renamed.
class XmlNames {
 public:
  explicit XmlNames(ConversionReport& report) : report_(report) {}

  /// Keeps a name from being given to something else.
  void reserve(std::string_view name) { used_.emplace(name); }

  /// @param object  the path of what has the name, for the report
  [[nodiscard]] std::string of(std::string_view name, const std::string& object);

 private:
  ConversionReport& report_;
  std::set<std::string, std::less<>> used_;
};

/// A text as it stands between quotes in XML.
[[nodiscard]] std::string quotedForXml(std::string_view text);

}  // namespace orvml_tool
