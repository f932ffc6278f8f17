#include <orvml/fingerprint.hpp>

#include "facts.h"
#include "info.h"
#include "json.h"

namespace orvml_tool {

namespace {

using orvml::DocumentDescription;
using orvml::DocumentView;

void addRange(Json& json, const Range& range) {
  if (!range.isEmpty) {
    json["range"] = {{"minimum", range.minimum}, {"maximum", range.maximum}};
  }
  if (range.notFinite > 0) {
    json["notFinite"] = range.notFinite;
  }
}

/// @param vectors  those whose values are known; null for none
Json vectorsAsJson(const std::vector<orvml::AttributeDescription>& described,
                   const orvml::Attributes* vectors, bool haveFlags) {
  Json list = Json::array();
  for (const orvml::AttributeDescription& vector : described) {
    Json json = {{"name", vector.name},
                 {"type", vector.holdsInts ? "int" : "double"},
                 {"size", vector.size}};
    if (haveFlags) {
      json["mustBeTransmitted"] = vector.mustBeTransmitted;
    }
    const auto* found = vectors == nullptr ? nullptr : vectors->find(vector.name);
    if (found != nullptr) {
      addRange(json, rangeOf(*found));
    }
    list.push_back(std::move(json));
  }
  return list;
}

void addBoundingBox(Json& json, const orvml::NodesView& nodes) {
  Json minimum = Json::array();
  Json maximum = Json::array();
  for (const Range& range : boundingBoxOf(nodes)) {
    if (range.isEmpty) {
      return;
    }
    minimum.push_back(range.minimum);
    maximum.push_back(range.maximum);
  }
  if (!minimum.empty()) {
    json["boundingBox"] = {{"minimum", minimum}, {"maximum", maximum}};
  }
}

Json nodesAsJson(const orvml::NodesDescription& nodes, const DocumentView* values) {
  Json json = {{"count", nodes.size}};
  if (values != nullptr) {
    addBoundingBox(json, values->nodes());
  }
  json["attributes"] = vectorsAsJson(
      nodes.attributes, values == nullptr ? nullptr : &values->nodes().attributes(), true);
  return json;
}

Json cellsAsJson(const orvml::CellsDescription& cells, const orvml::CellsView* values) {
  Json shapes = Json::array();
  for (const ShapeCount& count : countShapes(cells.groups)) {
    shapes.push_back({{"shape", name(count.shape)},
                      {"number", static_cast<int>(count.shape)},
                      {"nodesPerCell", count.nodesPerCell},
                      {"count", count.cells}});
  }
  return {{"count", cells.size},
          {"shapes", std::move(shapes)},
          {"attributes", vectorsAsJson(cells.attributes,
                                       values == nullptr ? nullptr : &values->attributes(), true)}};
}

Json parametersAsJson(const std::vector<orvml::ParameterDescription>& parameters) {
  Json list = Json::array();
  for (const orvml::ParameterDescription& parameter : parameters) {
    list.push_back({{"name", parameter.name}, {"value", asJson(parameter.value)}});
  }
  return list;
}

Json documentAsJson(const DocumentDescription& document, const DocumentView* values) {
  const auto cells = [&](const orvml::CellsDescription& described, orvml::Entity entity) {
    return cellsAsJson(described, values == nullptr ? nullptr : &values->cells(entity));
  };
  Json json = {{"kind", kindName(document.kind)},
               {"module", document.moduleName},
               {"moduleFormatVersion", document.moduleFormatVersion},
               {"creator", document.creator},
               {"dimension", document.dimension},
               {"nodes", nodesAsJson(document.nodes, values)},
               {"edges", cells(document.edges, orvml::Entity::edges)},
               {"faces", cells(document.faces, orvml::Entity::faces)},
               {"elements", cells(document.elements, orvml::Entity::elements)},
               {"parameters", parametersAsJson(document.parameters)}};
  json["vectorParameters"] = vectorsAsJson(
      document.vectorParameters, values == nullptr ? nullptr : &values->vectorParameters(), false);
  if (values != nullptr) {
    json["fingerprint"] = fingerprint(*values).document.text();
  }
  return json;
}

Json findingsAsJson(const std::vector<orvml::Finding>& findings) {
  Json list = Json::array();
  for (const orvml::Finding& finding : findings) {
    list.push_back(
        {{"code", text(finding.code)}, {"object", finding.object}, {"sentence", finding.sentence}});
  }
  return list;
}

}  // namespace

Json infoAsJson(const FileInfo& info) {
  Json documents = Json::array();
  const orvml::Exchange values =
      info.values == nullptr ? orvml::Exchange() : documentsOf(*info.values);
  if (info.description.input) {
    documents.push_back(
        documentAsJson(*info.description.input, values.input ? &*values.input : nullptr));
  }
  if (info.description.output) {
    documents.push_back(
        documentAsJson(*info.description.output, values.output ? &*values.output : nullptr));
  }
  return {{"file", info.file.given()},
          {"bytes", info.description.fileBytes},
          {"formatVersion", info.description.formatVersion},
          {"documents", std::move(documents)},
          {"findings", findingsAsJson(info.description.findings)}};
}

}  // namespace orvml_tool
