#include "convert/msh_entities.h"

#include "console.h"
#include "convert/msh_cells.h"
#include "messages.h"

#include <algorithm>
#include <cmath>

namespace orvml_tool {

using orvml::DocumentView;
using orvml::Entity;

namespace {

// More of them are numbers of cells, for which Gmsh would make an entity each.
constexpr std::size_t kMostMshEntities = std::size_t{1} << 20U;

}  // namespace

void MshBox::add(std::span<const double> point) noexcept {
  for (std::size_t axis = 0; axis < point.size(); ++axis) {
    const double value = point[axis];
    if (!std::isfinite(value)) {
      continue;
    }
    auto& range = axes_[axis];
    if (!range) {
      range.emplace(value, value);
    }
    range->first = std::min(range->first, value);
    range->second = std::max(range->second, value);
  }
}

std::array<double, 3> MshBox::least() const noexcept {
  std::array<double, 3> corner = {};
  std::transform(axes_.begin(), axes_.end(), corner.begin(),
                 [](const auto& range) { return range ? range->first : 0.0; });
  return corner;
}

std::array<double, 3> MshBox::greatest() const noexcept {
  std::array<double, 3> corner = {};
  std::transform(axes_.begin(), axes_.end(), corner.begin(),
                 [](const auto& range) { return range ? range->second : 0.0; });
  return corner;
}

MshEntities::MshEntities(const DocumentView& document, std::span<const PlacedGroup> groups,
                         const std::string& attribute, ConversionReport& report)
    : document_(document), attribute_(attribute) {
  if (!attribute.empty()) {
    requireAttribute(groups);
  }
  for (const PlacedGroup& placed : groups) {
    auto& counts = nodeCounts_[placed.group.shape()];
    if (std::find(counts.begin(), counts.end(), placed.group.nodesPerCell()) == counts.end()) {
      counts.push_back(placed.group.nodesPerCell());
    }
    takeValues(placed);
  }
  for (const PlacedGroup& placed : groups) {
    nameOthers(placed, report);
  }
  for (const PlacedGroup& placed : groups) {
    addEntities(placed);
  }
  if (all_.empty() && document.nodes().size() > 0) {
    all_[{document.dimension(), 1}].group = 1;
  }
  if (attribute.empty()) {
    addWholeBox();
  }
}

void MshEntities::requireAttribute(std::span<const PlacedGroup> groups) const {
  bool isThere = groups.empty();
  for (const PlacedGroup& placed : groups) {
    const auto* found = document_.attributes(placed.container).find(attribute_);
    if (found != nullptr && !found->holdsInts()) {
      throw Refusal(printable(attributePath(document_, placed.container, attribute_)) +
                        " holds doubles, which number no entities",
                    "name an attribute of ints with --sets, or leave it out");
    }
    isThere = isThere || found != nullptr;
  }
  if (!isThere) {
    throw Refusal("no cells have an attribute '" + printable(attribute_) + "'",
                  "see which ones there are with orvml info, or leave --sets out");
  }
}

std::span<const int> MshEntities::valuesOf(const PlacedGroup& placed) const {
  const auto* found = document_.attributes(placed.container).find(attribute_);
  if (attribute_.empty() || found == nullptr) {
    return {};
  }
  return found->ints().subspan(placed.first, static_cast<std::size_t>(placed.group.size()));
}

MshEntities::Key MshEntities::setOf(const PlacedGroup& placed, std::span<const int> values,
                                    std::size_t cell) const {
  const int dimension = mshDimensionOf(placed.group.shape());
  if (values.empty()) {
    return {dimension, tagOfContainer_.at({dimension, placed.container})};
  }
  const int value = values[cell];
  return {dimension, value > 0 ? value : tagOfValue_.at({dimension, value})};
}

int MshEntities::variantOf(const PlacedGroup& placed) const {
  const auto& counts = nodeCounts_.at(placed.group.shape());
  return static_cast<int>(std::find(counts.begin(), counts.end(), placed.group.nodesPerCell()) -
                          counts.begin());
}

MshEntities::Key MshEntities::keyOf(const PlacedGroup& placed, Key set) const {
  const int variant = variantOf(placed);
  return variant == 0 ? set : Key(set.first, tagOfVariant_.at({set, variant}));
}

/// The values that are tags already come first, so that the others get tags that are free.
void MshEntities::takeValues(const PlacedGroup& placed) {
  const int dimension = mshDimensionOf(placed.group.shape());
  int last = 0;
  for (const int value : valuesOf(placed)) {
    if (value > 0 && value != last) {
      taken_.insert({dimension, value});
      last = value;
    }
    requireFew(placed);
  }
}

void MshEntities::requireFew(const PlacedGroup& placed) const {
  if (taken_.size() > kMostMshEntities) {
    throw Refusal(printable(attributePath(document_, placed.container, attribute_)) +
                      " has more than " + shown(std::int64_t{kMostMshEntities}) +
                      " values, which are no entities",
                  "name an attribute that many cells share the values of with --sets");
  }
}

int MshEntities::addFree(int dimension) {
  int& tag = nextTag_.at(static_cast<std::size_t>(dimension));
  while (!taken_.insert({dimension, tag}).second) {
    ++tag;
  }
  return tag;
}

void MshEntities::nameOthers(const PlacedGroup& placed, ConversionReport& report) {
  const int dimension = mshDimensionOf(placed.group.shape());
  const auto values = valuesOf(placed);
  if (values.empty() && placed.group.size() > 0) {
    const auto [found, isNew] = tagOfContainer_.try_emplace({dimension, placed.container}, 0);
    if (isNew) {
      found->second = addFree(dimension);
    }
  }
  for (const int value : values) {
    if (value > 0 || tagOfValue_.contains({dimension, value})) {
      continue;
    }
    const int tag = tagOfValue_[{dimension, value}] = addFree(dimension);
    requireFew(placed);
    report.add(orvml::Fate::renamed, attributePath(document_, placed.container, attribute_), 1,
               "has cells of " + std::to_string(value) + ", which are the entity " +
                   std::to_string(tag) + " of dimension " + std::to_string(dimension) +
                   ": tags of entities are positive");
  }
}

void MshEntities::addEntities(const PlacedGroup& placed) {
  const auto width = static_cast<std::size_t>(placed.group.nodesPerCell());
  const int variant = variantOf(placed);
  forEachSet(placed, [&](Key set, std::size_t first, std::size_t cells) {
    if (variant > 0 && !tagOfVariant_.contains({set, variant})) {
      tagOfVariant_[{set, variant}] = addFree(set.first);
    }
    MshEntity& entity = all_[keyOf(placed, set)];
    entity.group = set.second;
    if (!attribute_.empty()) {
      for (const int node : placed.group.nodeIndices().subspan(first * width, cells * width)) {
        entity.box.add(document_.nodes()[node]);
      }
    }
  });
}

/// The containers of a mesh are as large as it is, or nearly, and its nodes alone are measured in
/// less time than those of all its cells.
void MshEntities::addWholeBox() {
  MshBox whole;
  for (int node = 0; node < document_.nodes().size(); ++node) {
    whole.add(document_.nodes()[node]);
  }
  for (auto& [key, entity] : all_) {
    entity.box = whole;
  }
}

}  // namespace orvml_tool
