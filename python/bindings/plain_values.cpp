#include "plain_values.h"

#include "raw_document.h"

#include <pybind11/stl.h>

#include <string_view>
#include <utility>

namespace orvml::python {

namespace {

using namespace py::literals;

template <class Values, class ToPython>
py::list listOf(const Values& values, ToPython toPython) {
  py::list list;
  for (const auto& value : values) {
    list.append(toPython(value));
  }
  return list;
}

std::string_view nameOf(Kind kind) { return kind == Kind::input ? "input" : "output"; }

std::string_view nameOf(Entity entity) {
  constexpr std::string_view kNames[] = {"nodes", "edges", "faces", "elements"};
  return kNames[static_cast<std::size_t>(entity)];
}

std::string_view nameOf(Layout layout) {
  constexpr std::string_view kNames[] = {"compact", "contiguous", "chunked", "other"};
  return kNames[static_cast<std::size_t>(layout)];
}

// A description

py::object storedOrNone(const std::optional<StoredArray>& array) {
  if (!array) {
    return py::none();
  }
  return py::dict("object"_a = textOf(array->object), "extents"_a = py::cast(array->extents),
                  "type"_a = textOf(array->type), "layout"_a = nameOf(array->layout),
                  "filters"_a = listOf(array->filters, textOf),
                  "stored_bytes"_a = array->storedBytes);
}

py::list described(const std::vector<AttributeDescription>& attributes) {
  return listOf(attributes, [](const AttributeDescription& attribute) {
    return py::dict("name"_a = textOf(attribute.name), "holds_ints"_a = attribute.holdsInts,
                    "size"_a = attribute.size,
                    "must_be_transmitted"_a = attribute.mustBeTransmitted,
                    "stored"_a = storedOrNone(attribute.stored));
  });
}

py::dict described(const NodesDescription& nodes) {
  return py::dict("size"_a = nodes.size, "coordinates"_a = storedOrNone(nodes.coordinates),
                  "attributes"_a = described(nodes.attributes));
}

py::dict described(const CellsDescription& cells) {
  const auto toGroup = [](const GroupDescription& group) {
    return py::dict("shape"_a = static_cast<int>(group.shape),
                    "nodes_per_cell"_a = group.nodesPerCell, "cells"_a = group.cells);
  };
  return py::dict("size"_a = cells.size, "groups"_a = listOf(cells.groups, toGroup),
                  "node_indices"_a = storedOrNone(cells.nodeIndices),
                  "attributes"_a = described(cells.attributes));
}

py::object described(const std::optional<DocumentDescription>& document) {
  if (!document) {
    return py::none();
  }
  const auto toParameter = [](const ParameterDescription& parameter) {
    return py::make_tuple(textOf(parameter.name), parameter.value);
  };
  py::dict plain("kind"_a = nameOf(document->kind), "module"_a = textOf(document->moduleName),
                 "module_format_version"_a = textOf(document->moduleFormatVersion),
                 "creator"_a = textOf(document->creator), "dimension"_a = document->dimension,
                 "nodes"_a = described(document->nodes), "edges"_a = described(document->edges),
                 "faces"_a = described(document->faces),
                 "elements"_a = described(document->elements),
                 "parameters"_a = py::dict(listOf(document->parameters, toParameter)),
                 "vector_parameters"_a = described(document->vectorParameters));
  return plain;
}

// Reports

py::list changedObjects(const std::vector<ChangedObject>& changed) {
  return listOf(changed, [](const ChangedObject& object) {
    return py::dict("object"_a = textOf(object.object), "sentence"_a = textOf(object.sentence));
  });
}

py::list placesOf(const std::vector<CheckPlace>& places) {
  return listOf(places, [](const CheckPlace& place) {
    return py::make_tuple(name(place.kind), place.index);
  });
}

py::dict qualityOf(const CellQuality& quality) {
  const auto toFigure = [](const QualityFigure& figure) {
    const auto toWorst = [](const MeasuredCell& cell) {
      return py::make_tuple(cell.cell, cell.value);
    };
    return py::dict("name"_a = figure.name, "minimum"_a = figure.minimum,
                    "percentiles"_a = py::dict(py::module_::import("builtins")
                                                   .attr("zip")(py::cast(kQualityPercentiles),
                                                                py::cast(figure.percentiles))),
                    "maximum"_a = figure.maximum, "worst"_a = listOf(figure.worst, toWorst));
  };
  return py::dict("kind"_a = nameOf(quality.kind), "entity"_a = nameOf(quality.entity),
                  "shape"_a = static_cast<int>(quality.shape), "cells"_a = quality.cells,
                  "figures"_a = listOf(quality.figures, toFigure));
}

py::object matchOrNone(const std::optional<MatchReport>& match) {
  if (!match) {
    return py::none();
  }
  const auto toEntity = [](const MatchedEntity& entity) {
    return py::dict("matched"_a = entity.matched, "only_in_first"_a = entity.onlyInFirst,
                    "only_in_second"_a = entity.onlyInSecond,
                    "is_renumbered"_a = entity.isRenumbered);
  };
  return py::dict("nodes"_a = toEntity(match->nodes), "edges"_a = toEntity(match->edges),
                  "faces"_a = toEntity(match->faces), "elements"_a = toEntity(match->elements));
}

}  // namespace

py::list plain(std::span<const Finding> findings) {
  return listOf(findings, [](const Finding& finding) {
    return py::dict("code"_a = text(finding.code), "object"_a = textOf(finding.object),
                    "sentence"_a = textOf(finding.sentence),
                    "hdf5_reason"_a = textOf(finding.hdf5Reason));
  });
}

py::list plain(std::span<const ReadArray> arrays) {
  return listOf(arrays, [](const ReadArray& array) {
    return py::make_tuple(textOf(array.object), textOf(array.reason));
  });
}

py::dict plain(const Description& description) {
  return py::dict("format_version"_a = textOf(description.formatVersion),
                  "file_bytes"_a = description.fileBytes, "input"_a = described(description.input),
                  "output"_a = described(description.output),
                  "findings"_a = plain(std::span(description.findings)));
}

py::dict plain(const UpgradeReport& report) {
  return py::dict("version"_a = textOf(report.version),
                  "changed"_a = changedObjects(report.changed));
}

py::dict plain(const RescueReport& report) {
  const auto toLost = [](const LostObject& lost) {
    return py::dict("code"_a = lost.code, "object"_a = textOf(lost.object),
                    "places"_a = placesOf(lost.places), "count"_a = lost.count,
                    "sentence"_a = textOf(lost.sentence));
  };
  return py::dict("lost"_a = listOf(report.lost, toLost),
                  "changed"_a = changedObjects(report.changed));
}

py::dict plain(const CheckReport& report) {
  const auto toFinding = [](const CheckFinding& finding) {
    return py::dict("code"_a = finding.code, "severity"_a = name(finding.severity),
                    "object"_a = textOf(finding.object), "places"_a = placesOf(finding.places),
                    "count"_a = finding.count, "sentence"_a = textOf(finding.sentence),
                    "cure"_a = finding.cure);
  };
  return py::dict("findings"_a = listOf(report.findings, toFinding),
                  "quality"_a = listOf(report.quality, qualityOf));
}

py::dict plain(const DiffReport& report) {
  const auto toDifference = [](const Difference& difference) {
    return py::dict("change"_a = text(difference.change), "object"_a = textOf(difference.object),
                    "sentence"_a = textOf(difference.sentence), "count"_a = difference.count,
                    "first"_a = difference.first, "worst"_a = difference.worst,
                    "largest"_a = difference.largest);
  };
  return py::dict("differences"_a = listOf(report.differences, toDifference),
                  "are_equal_by_contract"_a = py::cast(report.areEqualByContract),
                  "match"_a = matchOrNone(report.match));
}

py::dict plain(const Fingerprint& all) {
  return py::dict(
      "document"_a = all.document.text(), "identification"_a = all.identification.text(),
      "nodes"_a = all.nodes.text(), "edges"_a = all.edges.text(), "faces"_a = all.faces.text(),
      "elements"_a = all.elements.text(), "node_attributes"_a = all.nodeAttributes.text(),
      "edge_attributes"_a = all.edgeAttributes.text(),
      "face_attributes"_a = all.faceAttributes.text(),
      "element_attributes"_a = all.elementAttributes.text(), "parameters"_a = all.parameters.text(),
      "vector_parameters"_a = all.vectorParameters.text());
}

}  // namespace orvml::python
