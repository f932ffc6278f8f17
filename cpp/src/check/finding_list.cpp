#include "check/finding_list.h"

#include "hdf5/layout.h"

#include <algorithm>
#include <iterator>

namespace orvml::detail {

namespace layout = orvml_io::layout;

PlaceKind placeKindOf(Entity entity) noexcept {
  switch (entity) {
    case Entity::edges:
      return PlaceKind::edge;
    case Entity::faces:
      return PlaceKind::face;
    case Entity::elements:
      return PlaceKind::element;
    default:
      return PlaceKind::node;
  }
}

std::string countText(std::int64_t count, std::string_view one, std::string_view several) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : several);
}

std::string countText(std::int64_t count, PlaceKind kind) {
  const std::string one(name(kind));
  return countText(count, one, one + "s");
}

std::string objectOf(Kind kind) {
  return kind == Kind::input ? layout::kOrvInput : layout::kOrvOutput;
}

std::string objectOf(Kind kind, Entity entity) {
  switch (entity) {
    case Entity::edges:
      return objectOf(kind) + layout::kEdges;
    case Entity::faces:
      return objectOf(kind) + layout::kFaces;
    case Entity::elements:
      return objectOf(kind) + layout::kElements;
    default:
      return objectOf(kind) + layout::kNodes;
  }
}

void FindingList::add(const CheckRule& rule, std::string object, const std::string& sentence) {
  std::string whole = object + " " + sentence;
  addAsTold(rule, std::move(object), std::move(whole));
}

void FindingList::add(const CheckRule& rule, std::string object, Places places,
                      const std::string& sentence) {
  if (places.empty()) {
    return;
  }
  add(rule, std::move(object), sentence);
  findings_.back().count = places.size();
  findings_.back().places = places.take();
}

void FindingList::addAsTold(const CheckRule& rule, std::string object, std::string sentence) {
  findings_.push_back(
      {rule.code, rule.severity, std::move(object), {}, 1, std::move(sentence), rule.cure});
}

void FindingList::append(std::vector<CheckFinding> findings) {
  findings_.insert(findings_.end(), std::make_move_iterator(findings.begin()),
                   std::make_move_iterator(findings.end()));
}

bool FindingList::holds(std::string_view code, std::string_view object) const noexcept {
  return std::any_of(findings_.begin(), findings_.end(), [&](const CheckFinding& finding) {
    return finding.code == code && finding.object == object;
  });
}

}  // namespace orvml::detail
