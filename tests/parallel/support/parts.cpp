#include "support/parts.h"

#include <numeric>
#include <utility>
#include <vector>

namespace orvml_parallel_tests {

namespace {

using orvml::Attribute;
using orvml::Attributes;
using orvml::Entity;

std::pair<int, int> shareOf(int total, const std::vector<int>& weights, int rank) {
  const auto at = static_cast<std::size_t>(rank);
  const long long all = std::accumulate(weights.begin(), weights.end(), 0LL);
  const long long before = std::accumulate(weights.begin(), weights.begin() + rank, 0LL);
  return {static_cast<int>(total * before / all),
          static_cast<int>(total * (before + weights[at]) / all)};
}

/// The values of the parts of all groups, one after the other. They lie apart in the whole, so that
/// the part needs room of its own, which stays until the program ends.
template <class Value>
std::span<const Value> joined(std::vector<Value> values) {
  static std::vector<std::unique_ptr<std::vector<Value>>> kept;
  kept.push_back(std::make_unique<std::vector<Value>>(std::move(values)));
  return std::span<const Value>(*kept.back());
}

template <class Value>
Attribute partOfAttribute(const Attribute& attribute, std::span<const Value> values,
                          const orvml::CellsView& cells, const std::vector<int>& weights,
                          int rank) {
  std::vector<Value> part;
  std::size_t firstOfGroup = 0;
  for (const orvml::CellGroup& group : cells.groups()) {
    const auto [first, last] = shareOf(group.size(), weights, rank);
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(firstOfGroup);
    part.insert(part.end(), begin + first, begin + last);
    firstOfGroup += static_cast<std::size_t>(group.size());
  }
  return Attribute(attribute.name, joined(std::move(part)), attribute.mustBeTransmitted);
}

orvml::CellsView partOfCells(const orvml::CellsView& cells, const std::vector<int>& weights,
                             int rank) {
  std::vector<orvml::CellGroup> groups;
  for (const orvml::CellGroup& group : cells.groups()) {
    const auto [first, last] = shareOf(group.size(), weights, rank);
    const auto width = static_cast<std::size_t>(group.nodesPerCell());
    if (width == 0) {
      groups.push_back(orvml::CellGroup::withoutNodes(group.shape(), last - first));
      continue;
    }
    groups.emplace_back(
        group.shape(), group.nodesPerCell(),
        group.nodeIndices().subspan(static_cast<std::size_t>(first) * width,
                                    static_cast<std::size_t>(last - first) * width));
  }
  std::vector<Attribute> attributes;
  for (const Attribute& attribute : cells.attributes()) {
    attributes.push_back(std::visit(
        [&](auto values) { return partOfAttribute(attribute, values, cells, weights, rank); },
        attribute.values));
  }
  return orvml::CellsView(std::move(groups), Attributes(std::move(attributes)));
}

}  // namespace

orvml::DocumentView partOf(const orvml::DocumentView& whole, const std::vector<int>& weights,
                           int rank) {
  orvml::DocumentParts parts;
  parts.identification = whole.identification();
  parts.dimension = whole.dimension();
  const auto [first, last] = shareOf(whole.nodes().size(), weights, rank);
  parts.nodes = whole.nodes().range(first, last);
  parts.edges = partOfCells(whole.edges(), weights, rank);
  parts.faces = partOfCells(whole.faces(), weights, rank);
  parts.elements = partOfCells(whole.elements(), weights, rank);
  parts.parameters = whole.parameters();
  parts.vectorParameters = whole.vectorParameters();
  if (whole.kind() == orvml::Kind::input) {
    return orvml::InputView(std::move(parts));
  }
  return orvml::OutputView(std::move(parts));
}

std::vector<int> evenly(int ranks) { return std::vector<int>(static_cast<std::size_t>(ranks), 1); }

std::vector<int> unevenly(int ranks) {
  std::vector<int> weights;
  for (int i = 0; i < ranks; ++i) {
    weights.push_back(i % 3 == 1 ? 0 : 1 + 5 * (i % 2));
  }
  return weights;
}

}  // namespace orvml_parallel_tests
