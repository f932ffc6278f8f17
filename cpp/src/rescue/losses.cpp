#include "rescue/losses.h"

#include <algorithm>

namespace orvml::detail {

namespace {

/// Objects lie in the order in which they were met otherwise.
template <class Object>
std::vector<Object> inOrderOfPaths(std::vector<Object>& objects) {
  std::stable_sort(objects.begin(), objects.end(),
                   [](const Object& a, const Object& b) { return a.object < b.object; });
  return std::move(objects);
}

}  // namespace

void Losses::add(std::string_view code, const std::string& object, const std::string& sentence) {
  addAsTold({code, object, {}, 1, object + " " + sentence});
}

void Losses::addAsTold(LostObject lost) {
  if (!lost.places.empty() || wholeObjects_.emplace(lost.code, lost.object).second) {
    lost_.push_back(std::move(lost));
  }
}

void Losses::addChange(const std::string& object, const std::string& sentence) {
  const std::string whole = object + " " + sentence;
  if (changes_.insert(whole).second) {
    changed_.push_back({object, whole});
  }
}

bool Losses::holdsAnyOf(std::string_view object) const noexcept {
  return std::any_of(lost_.begin(), lost_.end(), [&](const LostObject& lost) {
    const std::string_view found = lost.object;
    return found.substr(0, object.size()) == object &&
           (found.size() == object.size() || found[object.size()] == '/');
  });
}

std::vector<LostObject> Losses::takeLost() { return inOrderOfPaths(lost_); }

std::vector<ChangedObject> Losses::takeChanged() { return inOrderOfPaths(changed_); }

}  // namespace orvml::detail
