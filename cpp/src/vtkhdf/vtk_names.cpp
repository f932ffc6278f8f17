#include "vtkhdf/vtk_names.h"

#include <algorithm>

namespace orvml::detail {

namespace {

/// HDF5 takes a slash for a path, and a dot alone for the group itself.
std::string withoutPath(std::string_view wanted) {
  std::string name(wanted);
  std::replace(name.begin(), name.end(), '/', '_');
  return name.empty() || name == "." ? "unnamed" : name;
}

}  // namespace

std::string ArrayNames::take(std::string_view wanted) {
  const std::string name = withoutPath(wanted);
  std::string free = name;
  // The count of a name spares it to begin anew when many are alike.
  for (int& count = taken_[name]; count++ > 0 && !taken_.try_emplace(free, 1).second;) {
    free = name + "." + std::to_string(count);
  }
  return free;
}

}  // namespace orvml::detail
