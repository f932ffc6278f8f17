#include "convert/dropped_values.h"

#include "console.h"
#include "convert/placed_groups.h"
#include "facts.h"
#include "messages.h"

#include <cmath>

namespace orvml_tool {

namespace {

using orvml::DocumentView;
using orvml::Entity;

void reportDroppedAttributes(const DocumentView& document, Entity entity, std::string_view format,
                             const KeepsAttribute& keeps, ConversionReport& report) {
  for (const orvml::Attribute& attribute : document.attributes(entity)) {
    if (!keeps(entity, attribute)) {
      const auto values = static_cast<std::int64_t>(attribute.size());
      report.add(orvml::Fate::dropped, attributePath(document, entity, attribute.name), values,
                 "has " + counted(values, attribute.holdsInts() ? "integer" : "double") + " that " +
                     std::string(format) + " has no place for");
    } else if (attribute.mustBeTransmitted) {
      report.add(
          orvml::Fate::dropped, attributePath(document, entity, attribute.name), 1,
          "has its values in " + std::string(format) + ", but not that it must be sent back");
    }
  }
}

void reportDroppedNames(const DocumentView& document, std::string_view format,
                        ConversionReport& report) {
  const orvml::Identification& names = document.identification();
  if (names.moduleName.empty() && names.moduleFormatVersion.empty() && names.creator.empty()) {
    return;
  }
  report.add(orvml::Fate::dropped, documentPath(document.kind()), 1,
             "names its module '" + std::string(names.moduleName) + "', the version '" +
                 std::string(names.moduleFormatVersion) + "' and its creator '" +
                 std::string(names.creator) + "', which " + std::string(format) +
                 " has no place for");
}

}  // namespace

void reportDroppedValues(const DocumentView& document, std::span<const Entity> containers,
                         std::string_view format, const KeepsAttribute& keeps,
                         ConversionReport& report) {
  reportDroppedNames(document, format, report);
  reportDroppedAttributes(document, Entity::nodes, format, keeps, report);
  for (const Entity container : containers) {
    reportDroppedAttributes(document, container, format, keeps, report);
  }
  const std::string without = " that " + std::string(format) + " has no place for";
  const auto parameters = static_cast<std::int64_t>(document.parameters().size());
  if (parameters > 0) {
    report.add(orvml::Fate::dropped, documentPath(document.kind()) + "/parameters", parameters,
               "has " + counted(parameters, "number") + without);
  }
  const auto vectors = static_cast<std::int64_t>(document.vectorParameters().size());
  if (vectors > 0) {
    report.add(orvml::Fate::dropped, documentPath(document.kind()) + "/vector parameters", vectors,
               "are " + counted(vectors, "vector") + without);
  }
}

void reportPaddedNodes(const DocumentView& document, ConversionReport& report) {
  if (document.dimension() == 2 && document.nodes().size() > 0) {
    report.add(
        orvml::Fate::padded, pathOf(document, Entity::nodes), document.nodes().size(),
        "has " + counted(document.nodes().size(), "node") + " in the plane, which get z = 0");
  }
}

void reportRoundedNodes(const DocumentView& document, std::int64_t coordinates, double largestError,
                        std::string_view why, ConversionReport& report) {
  if (coordinates > 0) {
    report.add(orvml::Fate::approximated, pathOf(document, Entity::nodes) + "/coordinates",
               coordinates,
               "has " + counted(coordinates, "value") + " with more digits than " +
                   std::string(why) + "; the largest error is " + rounded(largestError));
  }
}

void requireFiniteNodes(const DocumentView& document, std::string_view format) {
  const auto coordinates = document.nodes().coordinates();
  const auto nodes = static_cast<std::size_t>(document.nodes().size());
  if (coordinates.size() != nodes * static_cast<std::size_t>(document.dimension())) {
    throw Refusal("the nodes have no coordinates", "see what is there with orvml check");
  }
  for (std::size_t i = 0; i < coordinates.size(); ++i) {
    if (!std::isfinite(coordinates[i])) {
      const auto node = static_cast<std::int64_t>(i) / document.dimension();
      throw Refusal("node " + shown(node) + ", counted from 0, has a coordinate that is " +
                        shown(coordinates[i]) + ", which " + std::string(format) + " cannot hold",
                    "see which nodes are such with orvml check");
    }
  }
}

}  // namespace orvml_tool
