#include "exchange/summary.h"

#include "exchange/geometry.h"
#include "exchange/names.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <string>

namespace orvml_examples {

namespace {

constexpr int kShortLabel = 8;
constexpr int kNameLabel = 52;  // the longest name

template <class T>
void printValues(const std::vector<T>& values) {
  for (const T value : values) {
    std::cout << ' ' << value;
  }
  std::cout << '\n';
}

std::ostream& line(const char* label, int width) {
  return std::cout << "  " << std::left << std::setw(width) << label;
}

void printCells(const char* kind, const Cells& cells) {
  if (cells.shapes.empty()) {
    return;
  }
  line(kind, kShortLabel) << ' ' << cells.count() << ':';
  for (std::size_t group = 0; group < cells.shapes.size(); ++group) {
    std::cout << ' ' << cells.cellsPerGroup[group] << ' ' << ElemTypeNames[cells.shapes[group]];
  }
  std::cout << '\n';
}

void printParameters(const Document& document) {
  for (const char* name : kScalarParameters) {
    if (document.hasParameter(name)) {
      line(name, kNameLabel) << ' ' << document.parameter(name) << '\n';
    }
  }
  for (const AgreedVectorParameter& agreed : kVectorParameters) {
    if (!document.hasVectorParameter(agreed.name)) {
      continue;
    }
    line(agreed.name, kNameLabel);
    if (agreed.valueType == ORVML_INT) {
      printValues(document.intParameter(agreed.name));
    } else {
      printValues(document.doubleParameter(agreed.name));
    }
  }
}

template <class T>
void printRange(const char* type, const std::vector<T>& values) {
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  std::cout << ' ' << values.size() << ' ' << type << " from " << *least << " to " << *most << '\n';
}

void printAttributes(const Document& document) {
  for (const AgreedAttribute& agreed : kAttributes) {
    const ORVML_TYPE_OF_VALUE type = document.attributeType(agreed.name);
    if (type == ORVML_UNKNOWN_VALUE) {
      continue;
    }
    line(agreed.name, kNameLabel);
    if (type == ORVML_INT) {
      printRange("ints", document.intAttribute(agreed.name));
    } else {
      printRange("doubles", document.doubleAttribute(agreed.name));
    }
  }
}

}  // namespace

void printCounts(const char* title, const Document& document) {
  const Identification identification = document.identification();
  const Mesh mesh = document.mesh();
  std::cout << title << " for " << identification.moduleName << ' '
            << identification.moduleFormatVersion << " by \"" << identification.creator << "\"\n";
  line("nodes", kShortLabel) << ' ' << mesh.numberOfNodes() << '\n';
  printCells("edges", mesh.edges);
  printCells("faces", mesh.faces);
  printCells("elements", mesh.elements);
  line("box", kShortLabel);
  printValues(boundingBox(mesh.coordinates));
}

void printNamedValues(const Document& document) {
  printParameters(document);
  printAttributes(document);
}

}  // namespace orvml_examples
