#include "convert/conversion_report.h"

#include <algorithm>
#include <utility>

namespace orvml_tool {

void ConversionReport::add(orvml::Fate kind, const std::string& object, std::int64_t count,
                           const std::string& what) {
  std::string sentence = object + " " + what;
  if (told_.insert(sentence).second) {
    changes_.push_back({kind, object, count, std::move(sentence)});
  }
}

bool ConversionReport::isLossless() const noexcept {
  return std::none_of(changes_.begin(), changes_.end(),
                      [](const Change& change) { return isLoss(change.kind); });
}

}  // namespace orvml_tool
