#include "cpp/content.h"

#include <array>
#include <charconv>
#include <span>

namespace orvml_io_tests {

namespace {

constexpr std::size_t kMostSpelled = 64;

template <class Value>
std::string spelled(Value value) {
  std::array<char, 40> text = {};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return {text.data(), end};
}

template <class Value>
std::string valuesOf(std::span<const Value> values) {
  if (values.size() > kMostSpelled) {
    const auto bytes = std::as_bytes(values);
    return " " + std::to_string(values.size()) +
           " values: " + std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }
  std::string text;
  for (const Value value : values) {
    text += " " + spelled(value);
  }
  return text;
}

std::string cellsContent(const orvml::CellsView& cells, const std::string& name) {
  std::string text = name + " " + std::to_string(cells.size()) + "\n";
  for (const orvml::CellGroup& group : cells.groups()) {
    text += std::string(orvml::name(group.shape())) + " " + std::to_string(group.size()) + " of " +
            std::to_string(group.nodesPerCell()) + ":" + valuesOf(group.nodeIndices()) + "\n";
  }
  return text + contentOf(cells.attributes());
}

}  // namespace

std::string contentOf(const orvml::Attributes& vectors) {
  std::string text;
  for (const orvml::Attribute& vector : vectors) {
    text += std::string(vector.name) + (vector.holdsInts() ? " ints" : " doubles") +
            (vector.mustBeTransmitted ? " transmitted:" : ":") +
            std::visit([](auto values) { return valuesOf(values); }, vector.values) + "\n";
  }
  return text;
}

std::string contentOf(const orvml::DocumentView& document) {
  const orvml::Identification& who = document.identification();
  std::string text = document.kind() == orvml::Kind::input ? "input" : "output";
  text += " \"" + std::string(who.moduleName) + "\" \"" + std::string(who.moduleFormatVersion) +
          "\" \"" + std::string(who.creator) + "\" " + std::to_string(document.dimension()) + "D\n";
  text += "nodes " + std::to_string(document.nodes().size()) + ":" +
          valuesOf(document.nodes().coordinates()) + "\n" +
          contentOf(document.nodes().attributes());
  text += cellsContent(document.edges(), "edges") + cellsContent(document.faces(), "faces") +
          cellsContent(document.elements(), "elements");
  for (const orvml::Parameter& parameter : document.parameters()) {
    text += std::string(parameter.name) + " = " + spelled(parameter.value) + "\n";
  }
  return text + contentOf(document.vectorParameters());
}

std::string contentOf(const orvml::Input& input) { return contentOf(input.view()); }

std::string contentOf(const orvml::Output& output) { return contentOf(output.view()); }

std::string contentOf(const orvml::Loaded& loaded) {
  return (loaded.input ? contentOf(loaded.input->view()) : "no input\n") +
         (loaded.output ? contentOf(loaded.output->view()) : "no output\n");
}

std::string contentOf(const orvml::MappedFile& file) {
  return (file.hasInput() ? contentOf(file.input()) : "no input\n") +
         (file.hasOutput() ? contentOf(file.output()) : "no output\n");
}

}  // namespace orvml_io_tests
