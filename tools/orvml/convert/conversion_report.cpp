#include "convert/conversion_report.h"

#include <algorithm>

namespace orvml_tool {

void ConversionReport::add(orvml::Fate kind, const std::string& object, std::int64_t count,
                           const std::string& what) {
  changes_.push_back({kind, object, count, object + " " + what});
}

bool ConversionReport::isLossless() const noexcept {
  return std::none_of(changes_.begin(), changes_.end(),
                      [](const Change& change) { return isLoss(change.kind); });
}

}  // namespace orvml_tool
