#include "cpp_files/every_view.h"

#include <span>
#include <string_view>
#include <variant>

namespace orvml_io_tests {

namespace {

template <class Value>
std::size_t touch(std::span<const Value> values) {
  for (const Value& value : values) {
    const volatile Value* read = &value;
    (void)*read;
  }
  return values.size();
}

std::size_t touch(std::string_view text) {
  return touch(std::span<const char>(text.data(), text.size()));
}

std::size_t touch(const orvml::Attributes& attributes) {
  std::size_t count = 0;
  for (const orvml::Attribute& attribute : attributes) {
    count += touch(attribute.name);
    count += std::visit([](auto values) { return touch(values); }, attribute.values);
  }
  return count;
}

std::size_t touch(const orvml::CellsView& cells) {
  std::size_t count = touch(cells.attributes());
  for (const orvml::CellGroup& group : cells.groups()) {
    count += touch(group.nodeIndices());
  }
  return count;
}

}  // namespace

std::size_t touchEverything(const orvml::DocumentView& view) {
  std::size_t count = touch(view.identification().moduleName) +
                      touch(view.identification().moduleFormatVersion) +
                      touch(view.identification().creator) + touch(view.nodes().coordinates()) +
                      touch(view.nodes().attributes()) + touch(view.edges()) + touch(view.faces()) +
                      touch(view.elements()) + touch(view.vectorParameters());
  for (const orvml::Parameter& parameter : view.parameters()) {
    count += touch(parameter.name) + 1;
  }
  return count;
}

}  // namespace orvml_io_tests
