#include <orvml/parallel/distribute.hpp>

#include "agreement.h"
#include "part_content.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace orvml::parallel {

namespace {

using detail::BlockType;
using detail::Lane;
using detail::PartContent;
using detail::PartEntity;

void requireSize(std::size_t values, std::size_t things, int width) {
  if (width < 1 || values != things * static_cast<std::size_t>(width)) {
    throw std::invalid_argument(std::to_string(values) + " values are not " +
                                std::to_string(width) + " for each of " + std::to_string(things));
  }
}

template <class Value>
void exchange(const PartContent& part, Entity entity, std::span<Value> values, int width) {
  const PartEntity& things = part.of(entity);
  requireSize(values.size(), things.numbers.size(), width);
  const BlockType block = BlockType::of<Value>(width);
  // All ranks are here or none: they have made the same exchanges.
  if (things.room < block.bytes()) {
    together(part.comm, [&] { things.cargo.makeRoom(things.fromOwners, block.bytes()); });
    things.room = block.bytes();
  }
  things.cargo.carry(part.comm, things.fromOwners, block, values.data(), values.data());
}

template <class Value>
std::vector<Value> broughtToSlice(const PartContent& part, Entity entity,
                                  std::span<const Value> values, int width) {
  const PartEntity& things = part.of(entity);
  std::vector<Value> result;
  together(part.comm, [&] {
    requireSize(values.size(), things.numbers.size(), width);
    result.resize(things.sizeOfSlice * static_cast<std::size_t>(width));
  });
  carry<Value>(part.comm, things.toSlice, values, result, width);
  return result;
}

}  // namespace

Part::Part(std::unique_ptr<const PartContent> content) : content_(std::move(content)) {}

Part::Part(Part&& other) noexcept = default;

Part& Part::operator=(Part&& other) noexcept = default;

Part::~Part() = default;

DocumentView Part::view() const& { return content_->parts.view(); }

std::span<const int> Part::globalNumbers(Entity entity) const& noexcept {
  return content_->of(entity).numbers;
}

std::span<const int> Part::owners(Entity entity) const& noexcept {
  return content_->of(entity).owners;
}

int Part::ownedNodes() const noexcept { return content_->of(Entity::nodes).owned[0]; }

std::vector<int> Part::ownedCells(Entity entity) const { return content_->of(entity).owned; }

std::vector<int> Part::neighbours() const {
  std::vector<int> ranks;
  const detail::Routes& routes = content_->of(Entity::nodes).fromOwners;
  for (const auto* lanes : {&routes.out, &routes.in}) {
    for (const Lane& lane : *lanes) {
      ranks.push_back(lane.rank);
    }
  }
  std::sort(ranks.begin(), ranks.end());
  ranks.erase(std::unique(ranks.begin(), ranks.end()), ranks.end());
  return ranks;
}

void Part::exchangeNodes(std::span<double> values, int width) const {
  exchange(*content_, Entity::nodes, values, width);
}

void Part::exchangeNodes(std::span<int> values, int width) const {
  exchange(*content_, Entity::nodes, values, width);
}

void Part::exchangeCells(Entity entity, std::span<double> values, int width) const {
  exchange(*content_, entity, values, width);
}

void Part::exchangeCells(Entity entity, std::span<int> values, int width) const {
  exchange(*content_, entity, values, width);
}

std::vector<double> Part::toSlice(Entity entity, std::span<const double> values, int width) const {
  return broughtToSlice(*content_, entity, values, width);
}

std::vector<int> Part::toSlice(Entity entity, std::span<const int> values, int width) const {
  return broughtToSlice(*content_, entity, values, width);
}

}  // namespace orvml::parallel
