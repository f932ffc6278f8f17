#include "convert/written_surface.h"

#include <orvml/cell_faces.hpp>

#include "console.h"
#include "convert/dropped_values.h"
#include "convert/placed_groups.h"
#include "facts.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace orvml_tool {

namespace {

using orvml::CellForm;
using orvml::Entity;

bool isFace(const orvml::CellGroup& group) {
  return group.nodesPerCell() > 0 &&
         !orvml::linearPartsOf({group.shape(), group.nodesPerCell()}).empty();
}

bool hasChosen(const ExportOptions& options, Entity container) {
  return std::find(options.containers.begin(), options.containers.end(), container) !=
         options.containers.end();
}

std::int64_t numberOfFacesIn(const orvml::CellsView& cells) {
  std::int64_t faces = 0;
  for (const orvml::CellGroup& group : cells.groups()) {
    faces += isFace(group) ? group.size() : 0;
  }
  return faces;
}

/// Groups of one form become one, and such without cells are lost.
void reportMergedGroups(const orvml::DocumentView& document, Entity container,
                        std::string_view format, ConversionReport& report) {
  std::vector<CellForm> forms;
  bool areTold = true;
  const auto groups = document.cells(container).groups();
  for (const orvml::CellGroup& group : groups) {
    const CellForm form{group.shape(), group.nodesPerCell()};
    areTold &= group.size() > 0 && std::find(forms.begin(), forms.end(), form) == forms.end();
    forms.push_back(form);
  }
  if (!areTold) {
    report.add(orvml::Fate::dropped, pathOf(document, container),
               static_cast<std::int64_t>(groups.size()),
               "has " + counted(static_cast<std::int64_t>(groups.size()), "group") + ", which " +
                   std::string(format) + " tells by their nodes alone");
  }
}

}  // namespace

WrittenSurface::WrittenSurface(const orvml::DocumentView& document, const ExportOptions& options,
                               const Content& content, ConversionReport& report)
    : document_(document), content_(content) {
  requireFiniteNodes(document, content.format);
  chooseFaces(options, report);
  if (numberOfFaces_ == 0) {
    throw Refusal("there are no faces to write, and no volume elements with a skin",
                  "write edges to another format, such as vtu or msh");
  }
  chooseNodes(report);
  reportPaddedNodes(document, report);
  reportDroppedValues(
      document, options.containers, content.format,
      [](Entity, const orvml::Attribute&) { return false; }, report);
}

void WrittenSurface::chooseFaces(const ExportOptions& options, ConversionReport& report) {
  const bool takesFaces =
      hasChosen(options, Entity::faces) && numberOfFacesIn(document_.cells(Entity::faces)) > 0;
  const Entity source = takesFaces ? Entity::faces : Entity::elements;
  for (const Entity container : options.containers) {
    if (container != source) {
      (void)placedGroups(
          document_, std::span(&container, 1), content_.format,
          [](CellForm) { return std::optional<ForeignCell>(); }, report);
    }
  }
  if (hasChosen(options, source)) {
    addFaces(source, report);
    if (!takesFaces) {
      addSkin(report);
    }
    countFaces(source, report);
  }
}

/// Cells that are faces as they are; others are dropped but for elements with a skin.
void WrittenSurface::addFaces(Entity container, ConversionReport& report) {
  const auto cellOf = [&](CellForm form) -> std::optional<ForeignCell> {
    const bool isKnown =
        !linearPartsOf(form).empty() || (container == Entity::elements && !facesOf(form).empty());
    return isKnown ? std::optional(ForeignCell()) : std::nullopt;
  };
  for (const PlacedGroup& placed :
       placedGroups(document_, std::span(&container, 1), content_.format, cellOf, report)) {
    if (isFace(placed.group)) {
      patches_.push_back(
          {{placed.group.shape(), placed.group.nodesPerCell()}, placed.group.nodeIndices()});
    }
  }
  if (container == Entity::faces) {
    reportMergedGroups(document_, container, content_.format, report);
  }
}

void WrittenSurface::addSkin(ConversionReport& report) {
  const orvml::CellsView& elements = document_.cells(Entity::elements);
  skin_ = orvml::skinOf(elements, document_.nodes().size());
  std::int64_t faces = 0;
  for (const orvml::SkinFaces& some : skin_) {
    patches_.push_back({some.form, some.nodes});
    faces += some.size();
  }
  isSkin_ = !skin_.empty();
  for (const orvml::CellGroup& group : elements.groups()) {
    const CellForm form{group.shape(), group.nodesPerCell()};
    if (group.size() > 0 && !facesOf(form).empty()) {
      report.add(
          orvml::Fate::dropped, pathOf(document_, Entity::elements), group.size(),
          "has " + countedForm(group.size(), form) + ", of which " + std::string(content_.format) +
              " gets their part of the skin alone: " + counted(faces, "outer face") + " in all");
    }
  }
}

void WrittenSurface::countFaces(Entity container, ConversionReport& report) {
  const auto add = [&](const Patch& patch, const std::string& how) {
    report.add(orvml::Fate::split, pathOf(document_, container), patch.size(),
               (isSkin_ ? "has a skin of " : "has ") + countedForm(patch.size(), patch.form) +
                   ", each of which becomes " + how);
  };
  for (const Patch& patch : patches_) {
    const auto& parts = linearPartsOf(patch.form);
    std::int64_t written = 0;
    for (const auto& part : parts) {
      written += part.size() == 4 && !content_.hasQuadrilaterals ? 2 : 1;
    }
    numberOfFaces_ += patch.size() * written;
    if (written > 1 && patch.size() > 0) {
      add(patch, shown(written) + " linear faces with all of its nodes");
    }
  }
}

void WrittenSurface::chooseNodes(ConversionReport& report) {
  const auto all = static_cast<std::size_t>(document_.nodes().size());
  const bool keepsAll = content_.hasNodesWithoutFace && !isSkin_;
  isWritten_.assign(all, keepsAll);
  forEachFace([&](std::span<const int> nodes) {
    for (const int node : nodes) {
      isWritten_[static_cast<std::size_t>(node)] = true;
    }
  });
  numberOfNodes_ = std::count(isWritten_.begin(), isWritten_.end(), true);
  const auto unused = static_cast<std::int64_t>(all) - numberOfNodes_;
  if (unused == 0) {
    return;
  }
  report.add(orvml::Fate::dropped, pathOf(document_, Entity::nodes), unused,
             "loses " + counted(unused, "node") + " that no written face has");
  newNumbers_.assign(all, 0);
  int next = 0;
  for (std::size_t node = 0; node < all; ++node) {
    newNumbers_[node] = isWritten_[node] ? next++ : 0;
  }
}

std::array<double, 3> WrittenSurface::pointOf(std::size_t node) const noexcept {
  const auto width = static_cast<std::size_t>(document_.dimension());
  std::array<double, 3> point = {};
  std::copy_n(document_.nodes().coordinates().data() + node * width, width, point.data());
  return point;
}

double WrittenSurface::squaredDistance(int from, int to) const noexcept {
  const auto a = pointOf(static_cast<std::size_t>(from));
  const auto b = pointOf(static_cast<std::size_t>(to));
  double sum = 0.0;
  for (std::size_t axis = 0; axis < a.size(); ++axis) {
    sum += (a[axis] - b[axis]) * (a[axis] - b[axis]);
  }
  return sum;
}

float RoundedFloats::of(double value) {
  if (std::abs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
    throw Refusal("there is a coordinate " + shown(value) + ", beyond the range of floats",
                  "write text with --text, or obj or off, which have doubles");
  }
  const auto rounded = static_cast<float>(value);
  if (static_cast<double>(rounded) != value) {
    ++roundedNumbers_;
    largestError_ = std::max(largestError_, std::abs(static_cast<double>(rounded) - value));
  }
  return rounded;
}

}  // namespace orvml_tool
