#include "convert/joined_attributes.h"

#include "console.h"
#include "facts.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace orvml_tool {

using orvml::Entity;

std::vector<JoinedAttribute> joinedAttributes(const orvml::DocumentView& document,
                                              std::span<const PlacedGroup> groups,
                                              ConversionReport& report) {
  std::map<Entity, std::int64_t> cells;
  for (const PlacedGroup& placed : groups) {
    cells[placed.container] += placed.group.size();
  }
  std::map<std::string_view, JoinedAttribute> joined;
  for (const auto& [container, count] : cells) {
    for (const orvml::Attribute& attribute : document.attributes(container)) {
      JoinedAttribute& all = joined[attribute.name];
      all.name = attribute.name;
      all.holdsInts = all.holdsInts && attribute.holdsInts();
      all.ofContainers[static_cast<std::size_t>(container) - 1] = attribute;
    }
  }
  std::vector<JoinedAttribute> attributes;
  for (const auto& [name, all] : joined) {
    for (const auto& [container, count] : cells) {
      if (!all.of(container) && count > 0) {
        report.add(orvml::Fate::padded, pathOf(document, container), count,
                   "has no attribute '" + std::string(name) + "' as other cells do; its " +
                       counted(count, "cell") + (count == 1 ? " gets " : " get ") +
                       (all.holdsInts ? "-1" : "nan"));
      }
    }
    attributes.push_back(all);
  }
  return attributes;
}

}  // namespace orvml_tool
