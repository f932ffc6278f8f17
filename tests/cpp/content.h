#pragma once

#include <orvml/orvml.hpp>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvml_io_tests {

/// Everything that a view shows, as text: equal texts mean equal content, bit by bit. Arrays are
/// spelled out while they are short enough to be read by somebody.
std::string contentOf(const orvml::DocumentView& document);

std::string contentOf(const orvml::Input& input);
std::string contentOf(const orvml::Output& output);

/// Names, types, lengths, flags and values of vectors, one in a line.
std::string contentOf(const orvml::Attributes& vectors);

/// What the documents of a file held, the input first.
std::string contentOf(const orvml::Loaded& loaded);
std::string contentOf(const orvml::MappedFile& file);

/// The values of an array, which may go afterwards.
template <class Value>
std::vector<Value> copyOf(std::span<const Value> values) {
  return {values.begin(), values.end()};
}

}  // namespace orvml_io_tests
