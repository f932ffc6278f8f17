#include "preprocessor/part.h"

#include "exchange/check.h"

#include <gmsh.h>

#include <algorithm>

namespace orvml_examples {

const Part& partNamed(const std::string& name) {
  // The flange is pierced by its bore and six bolt holes, the lug by its eye.
  static const Part kParts[] = {
      {"flange", 2 - 2 * 7, {60.0, 38.0, 28.0, 16.0, 10.0, 5.5}, buildFlange},
      {"lug", 2 - 2 * 1, {20.0, 9.0}, buildLug}};
  for (const Part& part : kParts) {
    if (name == part.name) {
      return part;
    }
  }
  throw CheckFailed("there is no part " + name);
}

CadModel outerBoundary(const std::vector<int>& volumes) {
  CadModel model;
  model.volumes = volumes;
  gmsh::vectorpair volumeTags;
  for (const int volume : volumes) {
    volumeTags.emplace_back(3, volume);
  }
  gmsh::vectorpair found;
  gmsh::model::getBoundary(volumeTags, found, true, false, false);
  gmsh::vectorpair surfaceTags = found;
  for (const auto& [dimension, tag] : surfaceTags) {
    model.surfaces.push_back(tag);
  }
  gmsh::model::getBoundary(surfaceTags, found, false, false, false);
  for (const auto& [dimension, tag] : found) {
    model.curves.push_back(tag);
  }
  std::sort(model.surfaces.begin(), model.surfaces.end());
  std::sort(model.curves.begin(), model.curves.end());
  model.curves.erase(std::unique(model.curves.begin(), model.curves.end()), model.curves.end());
  return model;
}

}  // namespace orvml_examples
