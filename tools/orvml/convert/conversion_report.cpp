#include "convert/conversion_report.h"

#include <algorithm>
#include <utility>

namespace orvml_tool {

void ConversionReport::add(orvml::Fate kind, const std::string& object, std::int64_t count,
                           const std::string& what) {
  Change change = {kind, object, count, object + " " + what};
  if (std::find(changes_.begin(), changes_.end(), change) == changes_.end()) {
    changes_.push_back(std::move(change));
  }
}

bool ConversionReport::isLossless() const noexcept {
  return std::none_of(changes_.begin(), changes_.end(),
                      [](const Change& change) { return isLoss(change.kind); });
}

}  // namespace orvml_tool
