#include "convert/conversion_report.h"

#include <algorithm>

namespace orvml_tool {

std::string name(ChangeKind kind) {
  switch (kind) {
    case ChangeKind::dropped:
      return "dropped";
    case ChangeKind::renamed:
      return "renamed";
    case ChangeKind::split:
      return "split";
    case ChangeKind::padded:
      return "padded";
    case ChangeKind::approximated:
      return "approximated";
    default:
      return "turned";
  }
}

void ConversionReport::add(ChangeKind kind, const std::string& object, std::int64_t count,
                           const std::string& what) {
  changes_.push_back({kind, object, count, object + " " + what});
}

bool ConversionReport::isLossless() const noexcept {
  return std::all_of(changes_.begin(), changes_.end(),
                     [](const Change& change) { return change.kind == ChangeKind::turned; });
}

}  // namespace orvml_tool
