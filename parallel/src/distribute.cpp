#include <orvml/parallel/distribute.hpp>

#include "agreement.h"
#include "dealt_cells.h"
#include "lower_cells.h"
#include "node_use.h"
#include "part_content.h"
#include "partition.h"
#include "shared_document.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

namespace orvml::parallel {

namespace detail {

namespace {

/// Deals a mesh out, step by step; all are collective.
class Distributor {
 public:
  Distributor(const Communicator& comm, const SharedDocument& document, const Distribution& how)
      : comm_(comm), document_(document), how_(how) {}

  [[nodiscard]] std::unique_ptr<const PartContent> run();

 private:
  [[nodiscard]] DealtCells& cells(Entity entity) noexcept {
    return cells_[static_cast<std::size_t>(entity)];
  }
  [[nodiscard]] const EntityOutline& whole(Entity entity) const noexcept {
    return document_.whole().of(entity);
  }
  [[nodiscard]] Entity highestEntity() const noexcept;
  void requireAttributes(Entity entity) const;
  void requireProportion(Entity entity) const;
  void requireUsable() const;
  [[nodiscard]] SliceCells sliceOf(Entity entity) const;
  void dealHighest(Entity entity);
  void dealBelow(Entity entity, const DealtCells& dealt);
  void numberNodes();
  void makeNodeRoutes();
  void fillNodes();
  void fillCells(Entity entity);
  void carryAttributes(Entity entity, const Routes& fromSlice);
  [[nodiscard]] int localNode(int number) const noexcept;

  const Communicator& comm_;
  const SharedDocument& document_;
  Distribution how_;
  SliceNodes slice_;
  std::array<DealtCells, 4> cells_;
  NodeUse use_;
  std::size_t numberOfOwned_ = 0;
  Routes nodesFromSlice_;
  std::unique_ptr<PartContent> part_;
};

/// The cells that are dealt out: those of the highest dimension.
Entity Distributor::highestEntity() const noexcept {
  for (const Entity entity : {Entity::elements, Entity::faces}) {
    if (whole(entity).size > 0) {
      return entity;
    }
  }
  return Entity::edges;
}

/// Checks what only the whole tells.
void Distributor::requireAttributes(Entity entity) const {
  for (const VectorOutline& attribute : whole(entity).attributes) {
    if (attribute.size != whole(entity).size) {
      throw Error(Code::sizesDisagree,
                  attribute.object + " has " + std::to_string(attribute.size) +
                      " values, and cannot be dealt out with " +
                      std::to_string(whole(entity).size) + " nodes or cells",
                  {{}, attribute.object, {}});
    }
  }
}

/// A file names billions of cells without nodes in a few bytes. To deal them out takes memory for
/// each, as it does for cells of which something is stored.
void Distributor::requireProportion(Entity entity) const {
  constexpr std::int64_t kAlwaysAllowed = 1000000;
  std::int64_t stored = kAlwaysAllowed + whole(Entity::nodes).size;
  for (const Entity other : kEntities) {
    stored += whole(other).numberOfIndices();
    for (const VectorOutline& attribute : whole(other).attributes) {
      stored += attribute.size;
    }
  }
  if (whole(entity).size > stored) {
    throw Error(Code::memoryOutOfProportion,
                whole(entity).object + " belongs to " + std::to_string(whole(entity).size) +
                    " cells, most of them without nodes, which would take memory out of all "
                    "proportion to the document",
                {{}, whole(entity).object, {}});
  }
}

/// Checks the mesh, and this rank's part of it; the outcome is to be agreed on.
void Distributor::requireUsable() const {
  const std::int64_t nodes = whole(Entity::nodes).size;
  for (const Entity entity : kEntities) {
    requireAttributes(entity);
    requireProportion(entity);
    for (const CellGroup& group : document_.view().cells(entity).groups()) {
      for (const int node : group.nodeIndices()) {
        if (node < 0 || node >= nodes) {
          throw Error(Code::conversionBadIndex,
                      whole(entity).object + " has the node index " + std::to_string(node) +
                          ", there are " + std::to_string(nodes) + " nodes",
                      {{}, whole(entity).object, {}});
        }
      }
    }
  }
}

SliceCells Distributor::sliceOf(Entity entity) const {
  return SliceCells(document_.view().cells(entity), document_.before().of(entity), whole(entity));
}

void Distributor::dealHighest(Entity entity) {
  SliceCells slice;
  together(comm_, [&] { slice = sliceOf(entity); });
  const std::vector<int> owners = partition(comm_, slice, slice_, how_.method);
  cells(entity) = DealtCells(comm_, whole(entity).groups, slice, owners);
  std::vector<int> used;
  together(comm_, [&] { used = sortedOnce(cells(entity).nodeIndices()); });
  use_ = useOfNodes(comm_, slice_.offsets, used);
}

void Distributor::dealBelow(Entity entity, const DealtCells& dealt) {
  SliceCells slice;
  together(comm_, [&] { slice = sliceOf(entity); });
  std::vector<int> owners;
  if (whole(entity).size > 0) {
    owners = ownersOfLowerCells(comm_, slice, slice_.offsets, use_, dealt);
  }
  cells(entity) = DealtCells(comm_, whole(entity).groups, slice, owners);
}

/// Numbers the nodes of this rank: first those that it owns.
void Distributor::numberNodes() {
  std::vector<int> used;
  std::vector<int> owners;
  together(comm_, [&] {
    for (const DealtCells& dealt : cells_) {
      used.insert(used.end(), dealt.nodeIndices().begin(), dealt.nodeIndices().end());
    }
    used = sortedOnce(std::move(used));
    owners.resize(used.size());
  });
  carry<int>(comm_, routesToWanted(comm_, slice_.offsets, used), use_.owners, owners);
  together(comm_, [&] {
    PartEntity& nodes = part_->of(Entity::nodes);
    const auto first = static_cast<int>(slice_.offsets[static_cast<std::size_t>(comm_.rank())]);
    for (std::size_t i = 0; i < use_.owners.size(); ++i) {
      if (use_.owners[i] == comm_.rank()) {
        nodes.numbers.push_back(first + static_cast<int>(i));
      }
    }
    for (std::size_t i = 0; i < used.size(); ++i) {
      if (owners[i] == comm_.rank()) {
        nodes.numbers.push_back(used[i]);
      }
    }
    nodes.numbers = sortedOnce(std::move(nodes.numbers));
    numberOfOwned_ = nodes.numbers.size();
    nodes.owned = {static_cast<int>(numberOfOwned_)};
    nodes.owners.assign(numberOfOwned_, comm_.rank());
    for (std::size_t i = 0; i < used.size(); ++i) {
      if (owners[i] != comm_.rank()) {
        nodes.numbers.push_back(used[i]);
        nodes.owners.push_back(owners[i]);
      }
    }
  });
}

int Distributor::localNode(int number) const noexcept {
  const std::vector<int>& numbers = part_->of(Entity::nodes).numbers;
  const auto firstOfOthers = numbers.begin() + static_cast<std::ptrdiff_t>(numberOfOwned_);
  auto found = std::lower_bound(numbers.begin(), firstOfOthers, number);
  if (found == firstOfOthers || *found != number) {
    found = std::lower_bound(firstOfOthers, numbers.end(), number);
  }
  return static_cast<int>(found - numbers.begin());
}

void Distributor::makeNodeRoutes() {
  PartEntity& nodes = part_->of(Entity::nodes);
  nodesFromSlice_ = routesToWanted(comm_, slice_.offsets, nodes.numbers);
  Bins<int> asked;
  Bins<int> places;
  together(comm_, [&] {
    asked.resize(static_cast<std::size_t>(comm_.size()));
    places.resize(asked.size());
    for (std::size_t i = numberOfOwned_; i < nodes.numbers.size(); ++i) {
      const auto owner = static_cast<std::size_t>(nodes.owners[i]);
      asked[owner].push_back(nodes.numbers[i]);
      places[owner].push_back(static_cast<int>(i));
    }
  });
  Bins<int> answered = exchangeBins(comm_, std::move(asked));
  together(comm_, [&] {
    for (std::vector<int>& bin : answered) {
      std::transform(bin.begin(), bin.end(), bin.begin(),
                     [this](int number) { return localNode(number); });
    }
    nodes.fromOwners = {lanesOf(std::move(answered)), lanesOf(std::move(places))};
    // The way back of a node is that from its owner alone. Both ends leave out the same.
    nodes.toSlice = nodesFromSlice_.reversed();
    for (Lane& lane : nodes.toSlice.out) {
      std::erase_if(lane.places, [this](int place) {
        return static_cast<std::size_t>(place) >= numberOfOwned_;
      });
    }
    for (Lane& lane : nodes.toSlice.in) {
      std::erase_if(lane.places, [&](int place) {
        return use_.owners[static_cast<std::size_t>(place)] != lane.rank;
      });
    }
    for (std::vector<Lane>* lanes : {&nodes.toSlice.out, &nodes.toSlice.in}) {
      std::erase_if(*lanes, [](const Lane& lane) { return lane.places.empty(); });
    }
  });
}

void Distributor::carryAttributes(Entity entity, const Routes& fromSlice) {
  std::size_t index = 0;
  for (const Attribute& attribute : document_.view().attributes(entity)) {
    Values& values = part_->parts.of(entity).attributes[index];
    ++index;
    std::visit(
        [&](auto& to) {
          using Value = typename std::remove_reference_t<decltype(to)>::value_type;
          together(comm_, [&] { to.resize(part_->of(entity).numbers.size()); });
          carry<Value>(comm_, fromSlice, std::get<std::span<const Value>>(attribute.values), to);
          if (entity != Entity::nodes) {
            carry<Value>(comm_, part_->of(entity).fromOwners, std::span<const Value>(to), to);
          }
        },
        values);
  }
}

void Distributor::fillNodes() {
  PartEntity& nodes = part_->of(Entity::nodes);
  nodes.sizeOfSlice = static_cast<std::size_t>(document_.view().nodes().size());
  const int width = document_.view().dimension();
  std::vector<double>& coordinates = part_->parts.of(Entity::nodes).coordinates;
  together(comm_,
           [&] { coordinates.resize(nodes.numbers.size() * static_cast<std::size_t>(width)); });
  carry<double>(comm_, nodesFromSlice_, document_.view().nodes().coordinates(), coordinates, width);
  carryAttributes(Entity::nodes, nodesFromSlice_);
}

void Distributor::fillCells(Entity entity) {
  together(comm_, [&] {
    const DealtCells& dealt = cells(entity);
    PartEntity& known = part_->of(entity);
    known.numbers = dealt.numbers();
    known.owners = dealt.owners();
    known.owned = dealt.ownedOfGroups(comm_.rank());
    known.fromOwners = dealt.fromOwners();
    known.toSlice = dealt.fromSlice().reversed();
    known.sizeOfSlice = static_cast<std::size_t>(document_.view().cells(entity).size());
    OwnedEntity& owned = part_->parts.of(entity);
    owned.groups = dealt.groupsHere();
    std::transform(dealt.nodeIndices().begin(), dealt.nodeIndices().end(),
                   std::back_inserter(owned.nodeIndices),
                   [this](int number) { return localNode(number); });
  });
  carryAttributes(entity, cells(entity).fromSlice());
}

std::unique_ptr<const PartContent> Distributor::run() {
  together(comm_, [&] {
    requireUsable();
    slice_.coordinates = document_.view().nodes().coordinates();
    slice_.dimension = document_.view().dimension();
    slice_.offsets.resize(static_cast<std::size_t>(comm_.size()) + 1);
  });
  comm_.listOffsets(document_.view().nodes().size(), slice_.offsets);
  Communicator kept(comm_.get());
  together(comm_, [&] {
    DocumentOutline outline = document_.here();
    takeParameters(document_.view(), outline);
    part_ = std::make_unique<PartContent>(std::move(kept), std::move(outline));
  });
  const Entity highest = highestEntity();
  dealHighest(highest);
  for (const Entity entity : kCellEntities) {
    if (entity != highest) {
      dealBelow(entity, cells(highest));
    }
  }
  if (how_.withGhosts) {
    cells(highest).addGhosts(comm_, otherUsers(comm_, use_));
  }
  numberNodes();
  makeNodeRoutes();
  fillNodes();
  for (const Entity entity : kCellEntities) {
    fillCells(entity);
  }
  together(comm_, [&] {
    for (const Entity entity : kEntities) {
      const PartEntity& things = part_->of(entity);
      things.cargo.makeRoom(things.fromOwners, sizeof(double));
      things.room = sizeof(double);
    }
  });
  return std::move(part_);
}

}  // namespace

}  // namespace detail

Part distribute(MPI_Comm comm, const DocumentView& slice, const Distribution& how) {
  const detail::Communicator ranks(comm);
  const detail::SharedDocument document(ranks, slice);
  return Part(detail::Distributor(ranks, document, how).run());
}

}  // namespace orvml::parallel
