#include "document_json.h"

#include <orvml/fingerprint.hpp>

#include "words.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace orvml_report {

namespace {

using orvml::DocumentView;
using orvml::Entity;

constexpr std::array<Entity, 3> kKindsOfCells = {Entity::edges, Entity::faces, Entity::elements};

/// The least and the greatest of values that are finite.
struct Range {
  double minimum = 0.0;
  double maximum = 0.0;
  bool isEmpty = true;

  void add(double value) noexcept {
    if (std::isfinite(value)) {
      minimum = isEmpty ? value : std::min(minimum, value);
      maximum = isEmpty ? value : std::max(maximum, value);
      isEmpty = false;
    }
  }
};

Json countsOf(const DocumentView& document) {
  return {{"nodes", document.nodes().size()},
          {"edges", document.edges().size()},
          {"faces", document.faces().size()},
          {"elements", document.elements().size()}};
}

/// The cells of each form, over all groups.
Json shapesOf(const DocumentView& document) {
  Json shapes = Json::array();
  for (const Entity entity : kKindsOfCells) {
    const std::size_t first = shapes.size();
    for (const orvml::CellGroup& group : document.cells(entity).groups()) {
      const auto same = std::find_if(shapes.begin() + static_cast<std::ptrdiff_t>(first),
                                     shapes.end(), [&](const Json& shape) {
                                       return shape["shape"] == name(group.shape()) &&
                                              shape["nodesPerCell"] == group.nodesPerCell();
                                     });
      if (same != shapes.end()) {
        (*same)["count"] = (*same)["count"].get<std::int64_t>() + group.size();
      } else {
        shapes.push_back({{"entity", nameOf(entity)},
                          {"shape", name(group.shape())},
                          {"nodesPerCell", group.nodesPerCell()},
                          {"count", group.size()}});
      }
    }
  }
  return shapes;
}

Json boundingBoxOf(const orvml::NodesView& nodes) {
  std::vector<Range> axes(static_cast<std::size_t>(std::max(nodes.dimension(), 0)));
  std::size_t axis = 0;
  for (const double value : nodes.coordinates()) {
    axes[axis].add(value);
    axis = axis + 1 == axes.size() ? 0 : axis + 1;
  }
  Json box = {{"minimum", Json::array()}, {"maximum", Json::array()}};
  for (const Range& range : axes) {
    if (range.isEmpty) {
      return {};
    }
    box["minimum"].push_back(range.minimum);
    box["maximum"].push_back(range.maximum);
  }
  return axes.empty() ? Json() : box;
}

Json parametersOf(const DocumentView& document) {
  Json parameters = Json::array();
  for (const orvml::Parameter& parameter : document.parameters()) {
    parameters.push_back({{"name", parameter.name}, {"value", asJson(parameter.value)}});
  }
  return parameters;
}

Json vectorParametersOf(const DocumentView& document) {
  constexpr std::size_t kMostValues = 100;
  Json vectors = Json::array();
  for (const orvml::Attribute& vector : document.vectorParameters()) {
    Json first = Json::array();
    std::visit(
        [&](const auto& values) {
          for (const auto value : values.first(std::min(values.size(), kMostValues))) {
            first.push_back(asJson(value));
          }
        },
        vector.values);
    vectors.push_back({{"name", vector.name},
                       {"type", vector.holdsInts() ? "int" : "double"},
                       {"size", vector.size()},
                       {"values", std::move(first)}});
  }
  return vectors;
}

Json attributeOf(Entity entity, const orvml::Attribute& attribute) {
  Range range;
  std::visit(
      [&](const auto& values) {
        for (const auto value : values) {
          range.add(static_cast<double>(value));
        }
      },
      attribute.values);
  return {{"entity", nameOf(entity)},
          {"name", attribute.name},
          {"type", attribute.holdsInts() ? "int" : "double"},
          {"size", attribute.size()},
          {"mustBeTransmitted", attribute.mustBeTransmitted},
          {"minimum", range.isEmpty ? Json() : Json(range.minimum)},
          {"maximum", range.isEmpty ? Json() : Json(range.maximum)}};
}

Json attributesOf(const DocumentView& document) {
  Json attributes = Json::array();
  for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
    for (const orvml::Attribute& attribute : document.attributes(entity)) {
      attributes.push_back(attributeOf(entity, attribute));
    }
  }
  return attributes;
}

Json fileOf(const ReportedDocument& document) {
  if (!document.file) {
    return {};
  }
  return {{"bytes", document.file->bytes}, {"formatVersion", document.file->formatVersion}};
}

}  // namespace

Json factsAsJson(const ReportedDocument& document) {
  const DocumentView& view = *document.view;
  const orvml::Identification& identification = view.identification();
  return {{"name", document.name},
          {"kind", view.kind() == orvml::Kind::input ? "input" : "output"},
          {"dimension", view.dimension()},
          {"identification",
           {{"module", identification.moduleName},
            {"moduleFormatVersion", identification.moduleFormatVersion},
            {"creator", identification.creator}}},
          {"file", fileOf(document)},
          {"fingerprint", orvml::fingerprint(view).document.text()},
          {"counts", countsOf(view)},
          {"shapes", shapesOf(view)},
          {"boundingBox", boundingBoxOf(view.nodes())},
          {"parameters", parametersOf(view)},
          {"vectorParameters", vectorParametersOf(view)},
          {"attributes", attributesOf(view)}};
}

}  // namespace orvml_report
