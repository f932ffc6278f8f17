#include "patch/items.h"

#include <orvml/error.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace orvml::detail {

namespace {

constexpr std::size_t kNumbersOfAGroup = 3;

/// Where the parts of an entity are.
struct Sections {
  Entity entity;
  Section groups;
  Section indices;
  Section attributes;
};

constexpr Sections kCells[] = {
    {Entity::edges, Section::groupsOfEdges, Section::edges, Section::edgeAttributes},
    {Entity::faces, Section::groupsOfFaces, Section::faces, Section::faceAttributes},
    {Entity::elements, Section::groupsOfElements, Section::elements, Section::elementAttributes}};

[[noreturn]] void throwUnfitPart(const char* what) {
  throw Error(Code::patchDamaged, std::string("is a patch whose parts do not fit: ") + what);
}

void addText(Items& items, Section section, std::string_view text) {
  items.keep(section, bytesOfText(text));
}

void addVectors(Items& items, Section section, const Attributes& vectors) {
  for (const Attribute& vector : vectors) {
    items.all[{section, std::string(vector.name)}] = {vector.values, vector.mustBeTransmitted};
  }
}

/// Cells that are none leave nothing, as in files.
void addCells(Items& items, const Sections& sections, const CellsView& cells) {
  if (cells.size() == 0) {
    return;
  }
  std::vector<int> groups;
  for (const CellGroup& group : cells.groups()) {
    const std::string number = std::to_string(groups.size() / kNumbersOfAGroup);
    groups.insert(groups.end(),
                  {static_cast<int>(group.shape()), group.nodesPerCell(), group.size()});
    items.all[{sections.indices, number}] = {group.nodeIndices(), false};
  }
  items.keep(sections.groups, std::move(groups));
  addVectors(items, sections.attributes, cells.attributes());
}

template <class Value>
std::span<const Value> valuesOf(const Items& items, Section section, const std::string& name = {}) {
  const auto found = items.all.find({section, name});
  if (found == items.all.end()) {
    return {};
  }
  const auto* values = std::get_if<std::span<const Value>>(&found->second.values);
  if (values == nullptr) {
    throwUnfitPart("an array is of another type");
  }
  return *values;
}

std::string_view textOf(const Items& items, Section section, std::deque<std::string>& texts) {
  std::optional<std::string> text = textOfBytes(valuesOf<int>(items, section));
  if (!text) {
    throwUnfitPart("a text is none");
  }
  return texts.emplace_back(std::move(*text));
}

Attributes vectorsOf(const Items& items, Section section) {
  std::vector<Attribute> vectors;
  const auto end = items.all.lower_bound({static_cast<Section>(static_cast<int>(section) + 1), {}});
  for (auto item = items.all.lower_bound({section, {}}); item != end; ++item) {
    Attribute vector;
    vector.name = item->first.name;
    vector.values = item->second.values;
    vector.mustBeTransmitted = item->second.mustBeTransmitted;
    vectors.push_back(vector);
  }
  return Attributes(std::move(vectors));
}

CellGroup groupFrom(std::span<const int> numbers, std::span<const int> indices) {
  const auto shape = static_cast<Shape>(numbers[0]);
  const std::int64_t needed = std::int64_t{numbers[1]} * numbers[2];
  if (numbers[1] < 0 || numbers[2] < 0 || needed != static_cast<std::int64_t>(indices.size())) {
    throwUnfitPart("a group of cells has other node indices");
  }
  return numbers[1] == 0 ? CellGroup::withoutNodes(shape, numbers[2])
                         : CellGroup(shape, numbers[1], indices);
}

CellsView cellsOf(const Items& items, const Sections& sections) {
  const std::span<const int> numbers = valuesOf<int>(items, sections.groups);
  if (numbers.size() % kNumbersOfAGroup != 0) {
    throwUnfitPart("a group of cells is not whole");
  }
  std::vector<CellGroup> groups;
  for (std::size_t i = 0; i < numbers.size(); i += kNumbersOfAGroup) {
    groups.push_back(
        groupFrom(numbers.subspan(i, kNumbersOfAGroup),
                  valuesOf<int>(items, sections.indices, std::to_string(groups.size()))));
  }
  return CellsView(std::move(groups), vectorsOf(items, sections.attributes));
}

Parameters parametersOf(const Items& items) {
  std::vector<Parameter> parameters;
  const auto end = items.all.lower_bound({Section::vectorParameters, {}});
  for (auto item = items.all.lower_bound({Section::parameters, {}}); item != end; ++item) {
    const auto value = valuesOf<double>(items, Section::parameters, item->first.name);
    if (value.size() != 1) {
      throwUnfitPart("a parameter is no number");
    }
    parameters.push_back({item->first.name, value.front()});
  }
  return Parameters(std::move(parameters));
}

}  // namespace

void Items::keep(Section section, std::vector<int> values) {
  all[{section, {}}] = {std::span<const int>(kept.emplace_back(std::move(values))), false};
}

std::vector<int> bytesOfText(std::string_view text) {
  std::vector<int> bytes;
  std::transform(text.begin(), text.end(), std::back_inserter(bytes),
                 [](char byte) { return static_cast<int>(static_cast<unsigned char>(byte)); });
  return bytes;
}

std::optional<std::string> textOfBytes(std::span<const int> bytes) {
  constexpr int kLargestByte = 255;
  std::string text;
  for (const int byte : bytes) {
    if (byte < 0 || byte > kLargestByte) {
      return std::nullopt;
    }
    text += static_cast<char>(byte);
  }
  return text;
}

Items itemsOf(const DocumentView& document) {
  Items items;
  addText(items, Section::moduleName, document.identification().moduleName);
  addText(items, Section::moduleFormatVersion, document.identification().moduleFormatVersion);
  addText(items, Section::creator, document.identification().creator);
  items.keep(Section::dimension, {document.dimension()});
  if (document.nodes().size() > 0) {
    items.all[{Section::coordinates, {}}] = {document.nodes().coordinates(), false};
    addVectors(items, Section::nodeAttributes, document.nodes().attributes());
  }
  for (const Sections& sections : kCells) {
    addCells(items, sections, document.cells(sections.entity));
  }
  for (const Parameter& parameter : document.parameters()) {
    items.all[{Section::parameters, std::string(parameter.name)}] = {
        std::span<const double>(&parameter.value, 1), false};
  }
  addVectors(items, Section::vectorParameters, document.vectorParameters());
  return items;
}

DocumentParts partsOf(const Items& items, std::deque<std::string>& texts) {
  const std::span<const int> dimension = valuesOf<int>(items, Section::dimension);
  if (dimension.size() != 1 || dimension.front() < 1) {
    throwUnfitPart("there is no dimension");
  }
  DocumentParts parts;
  parts.identification = {textOf(items, Section::moduleName, texts),
                          textOf(items, Section::moduleFormatVersion, texts),
                          textOf(items, Section::creator, texts)};
  parts.dimension = dimension.front();
  parts.nodes = NodesView(valuesOf<double>(items, Section::coordinates), parts.dimension,
                          vectorsOf(items, Section::nodeAttributes));
  parts.edges = cellsOf(items, kCells[0]);
  parts.faces = cellsOf(items, kCells[1]);
  parts.elements = cellsOf(items, kCells[2]);
  parts.parameters = parametersOf(items);
  parts.vectorParameters = vectorsOf(items, Section::vectorParameters);
  return parts;
}

}  // namespace orvml::detail
