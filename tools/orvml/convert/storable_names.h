#pragma once

#include "convert/conversion_report.h"

#include <set>
#include <string>
#include <string_view>

namespace orvml_tool {

/// Makes names of another format into names that an exchange file can hold, each once: of 1 to 79
/// bytes, without slashes and null bytes. What has to be changed is reported as renamed.
class StorableNames {
 public:
  /// @param what  what has the names, such as "the attribute"
  StorableNames(std::string what, ConversionReport& report)
      : what_(std::move(what)), report_(report) {}

  [[nodiscard]] std::string of(std::string_view name);

 private:
  std::string what_;
  ConversionReport& report_;
  std::set<std::string, std::less<>> used_;
};

}  // namespace orvml_tool
