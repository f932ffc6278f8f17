#include <orvml/fingerprint.hpp>

#include "console.h"
#include "facts.h"
#include "info.h"

#include <algorithm>

namespace orvml_tool {

namespace {

using orvml::DocumentDescription;
using orvml::DocumentView;

constexpr std::size_t kLabelWidth = 14;

void printLine(std::string_view label, const std::string& content) {
  std::string padded(label);
  padded.resize(std::max(kLabelWidth, padded.size() + 1), ' ');
  print("    " + padded + content + "\n");
}

std::string rangeText(const Range& range) {
  std::string text =
      range.isEmpty ? "" : "  " + shown(range.minimum) + " to " + shown(range.maximum);
  return range.notFinite == 0 ? text : text + "  " + shown(range.notFinite) + " not finite";
}

/// @param vectors  those whose values are known; null for none
void printVectors(const std::string& title,
                  const std::vector<orvml::AttributeDescription>& described,
                  const orvml::Attributes* vectors) {
  if (!described.empty()) {
    print("    " + title + ":\n");
  }
  for (const orvml::AttributeDescription& vector : described) {
    const auto* found = vectors == nullptr ? nullptr : vectors->find(vector.name);
    print("      " + printable(vector.name) + "  " +
          counted(vector.size, vector.holdsInts ? "int" : "double") +
          (found == nullptr ? "" : rangeText(rangeOf(*found))) +
          (vector.mustBeTransmitted ? "  must be transmitted" : "") + "\n");
  }
}

std::string shapesText(const std::vector<orvml::GroupDescription>& groups) {
  std::string text;
  for (const ShapeCount& count : countShapes(groups)) {
    text += (text.empty() ? ": " : ", ") + countedCells(count.cells, count.shape) + " of " +
            counted(count.nodesPerCell, "node");
  }
  return text;
}

void printCells(std::string_view label, const orvml::CellsDescription& cells) {
  if (cells.size > 0 || !cells.groups.empty()) {
    printLine(label, shown(std::int64_t{cells.size}) + shapesText(cells.groups));
  }
}

void printBoundingBox(const orvml::NodesView& nodes) {
  std::string least;
  std::string greatest;
  for (const Range& range : boundingBoxOf(nodes)) {
    if (range.isEmpty) {
      return;
    }
    least += shown(range.minimum) + " ";
    greatest += " " + shown(range.maximum);
  }
  if (!least.empty()) {
    printLine("bounding box", least + "to" + greatest);
  }
}

void printIdentification(const DocumentDescription& document) {
  const auto shownText = [](const std::string& text) { return printable(text); };
  print("  " + coloured(kindName(document.kind) + " document", Colour::bold) + ", dimension " +
        shown(std::int64_t{document.dimension}) + "\n");
  printLine("module", shownText(document.moduleName) +
                          (document.moduleFormatVersion.empty()
                               ? ""
                               : ", format " + shownText(document.moduleFormatVersion)));
  printLine("creator", shownText(document.creator));
}

void printMesh(const DocumentDescription& document, const DocumentView* values) {
  printLine("nodes", shown(std::int64_t{document.nodes.size}));
  printCells("edges", document.edges);
  printCells("faces", document.faces);
  printCells("elements", document.elements);
  if (values != nullptr) {
    printBoundingBox(values->nodes());
    printLine("fingerprint", fingerprint(*values).document.text());
  }
}

void printParameters(const DocumentDescription& document, const DocumentView* values) {
  if (!document.parameters.empty()) {
    print("    parameters:\n");
  }
  for (const orvml::ParameterDescription& parameter : document.parameters) {
    print("      " + printable(parameter.name) + "  " + shown(parameter.value) + "\n");
  }
  printVectors("vector parameters", document.vectorParameters,
               values == nullptr ? nullptr : &values->vectorParameters());
}

void printAttributes(const DocumentDescription& document, const DocumentView* values) {
  const auto of = [&](orvml::Entity entity) {
    return values == nullptr ? nullptr : &values->attributes(entity);
  };
  printVectors("attributes of nodes", document.nodes.attributes, of(orvml::Entity::nodes));
  printVectors("attributes of edges", document.edges.attributes, of(orvml::Entity::edges));
  printVectors("attributes of faces", document.faces.attributes, of(orvml::Entity::faces));
  printVectors("attributes of elements", document.elements.attributes, of(orvml::Entity::elements));
}

void printDocument(const DocumentDescription& document, const DocumentView* values) {
  printIdentification(document);
  printMesh(document, values);
  printParameters(document, values);
  printAttributes(document, values);
}

void printFindings(const std::vector<orvml::Finding>& findings) {
  for (const orvml::Finding& finding : findings) {
    print("  " + coloured("not as it should be", Colour::yellow) + ": " +
          printable(finding.sentence) + "\n");
  }
}

}  // namespace

void printInfo(const FileInfo& info) {
  const orvml::Description& description = info.description;
  const orvml::Exchange values =
      info.values == nullptr ? orvml::Exchange() : documentsOf(*info.values);
  print(coloured(info.file.shown(), Colour::bold) + ": format " +
        printable(description.formatVersion) + ", " + shownBytes(description.fileBytes) + "\n");
  if (!description.input && !description.output) {
    print("  no document\n");
  }
  if (description.input) {
    printDocument(*description.input, values.input ? &*values.input : nullptr);
  }
  if (description.output) {
    printDocument(*description.output, values.output ? &*values.output : nullptr);
  }
  printFindings(description.findings);
}

}  // namespace orvml_tool
