#include "dealt_cells.h"

#include "agreement.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace orvml::parallel::detail {

namespace {

/// A cell that arrives: its number, who sends it, and its place among those from there.
struct Arrival {
  int number;
  std::size_t lane;
  std::size_t index;
};

std::vector<Arrival> arrivalsOf(const Bins<int>& numbers) {
  std::vector<Arrival> arrivals;
  for (std::size_t lane = 0; lane < numbers.size(); ++lane) {
    for (std::size_t i = 0; i < numbers[lane].size(); ++i) {
      arrivals.push_back({numbers[lane][i], lane, i});
    }
  }
  std::sort(arrivals.begin(), arrivals.end(),
            [](const Arrival& a, const Arrival& b) { return a.number < b.number; });
  return arrivals;
}

/// A list of as many places as there are numbers from each rank.
Bins<int> roomFor(const Bins<int>& numbers) {
  Bins<int> places;
  for (const std::vector<int>& bin : numbers) {
    places.emplace_back(bin.size());
  }
  return places;
}

/// A cell on its way to its place.
struct ArrangedCell {
  std::size_t group;
  int number;
  int owner;
  std::size_t index;  // among the owned ones, or among the ghosts of its owner
};

/// In each group first the owned cells, then the ghosts.
std::vector<ArrangedCell> arranged(std::span<const std::int64_t> ends, std::span<const int> owned,
                                   const Bins<int>& ghosts, int rank) {
  std::vector<ArrangedCell> cells;
  const auto add = [&](std::span<const int> numbers, int owner) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      cells.push_back({groupOfNumber(ends, numbers[i]), numbers[i], owner, i});
    }
  };
  add(owned, rank);
  for (std::size_t owner = 0; owner < ghosts.size(); ++owner) {
    add(ghosts[owner], static_cast<int>(owner));
  }
  const auto keyOf = [rank](const ArrangedCell& cell) {
    return std::make_tuple(cell.group, cell.owner != rank, cell.number);
  };
  std::sort(cells.begin(), cells.end(),
            [keyOf](const ArrangedCell& a, const ArrangedCell& b) { return keyOf(a) < keyOf(b); });
  return cells;
}

void replacePlaces(std::span<const int> newPlaces, std::vector<int>& places) {
  for (int& place : places) {
    place = newPlaces[static_cast<std::size_t>(place)];
  }
}

}  // namespace

DealtCells::DealtCells(const Communicator& comm, const std::vector<GroupOutline>& groups,
                       const SliceCells& slice, std::span<const int> owners)
    : groups_(&groups) {
  const auto ranks = static_cast<std::size_t>(comm.size());
  Bins<int> sent;
  Bins<int> places;
  together(comm, [&] {
    ends_ = endsOf(groups);
    sent.resize(ranks);
    places.resize(ranks);
    for (std::size_t i = 0; i < slice.size(); ++i) {
      sent[static_cast<std::size_t>(owners[i])].push_back(slice.numbers()[i]);
      places[static_cast<std::size_t>(owners[i])].push_back(static_cast<int>(i));
    }
  });
  const Bins<int> received = exchangeBins(comm, std::move(sent));
  Routes values;
  together(comm, [&] {
    Bins<int> arrived = roomFor(received);
    for (const Arrival& arrival : arrivalsOf(received)) {
      arrived[arrival.lane][arrival.index] = static_cast<int>(numbers_.size());
      numbers_.push_back(arrival.number);
    }
    owners_.assign(numbers_.size(), comm.rank());
    fromSlice_ = {lanesOf(std::move(places)), lanesOf(std::move(arrived))};
    starts_ = startsOf(numbers_);
    indices_.resize(static_cast<std::size_t>(starts_.back()));
    values = routesOfValues(fromSlice_, slice.starts(), starts_);
  });
  carry<int>(comm, values, slice.nodeIndices(), indices_);
}

std::vector<std::int64_t> DealtCells::startsOf(std::span<const int> numbers) const {
  std::vector<std::int64_t> starts = {0};
  for (const int number : numbers) {
    starts.push_back(starts.back() + (*groups_)[groupOfNumber(ends_, number)].nodesPerCell);
  }
  return starts;
}

/// The owned cells that each other rank gets as ghosts.
Bins<int> DealtCells::placesWantedByOthers(std::span<const Use> otherUsers,
                                           std::size_t ranks) const {
  Bins<int> places(ranks);
  const auto isBefore = [](const Use& use, int node) { return use.first < node; };
  std::vector<int> others;
  for (std::size_t cell = 0; cell < numbers_.size(); ++cell) {
    others.clear();
    for (const int node : nodesOf(cell)) {
      auto other = std::lower_bound(otherUsers.begin(), otherUsers.end(), node, isBefore);
      for (; other != otherUsers.end() && other->first == node; ++other) {
        others.push_back(other->second);
      }
    }
    others = sortedOnce(std::move(others));
    for (const int rank : others) {
      places[static_cast<std::size_t>(rank)].push_back(static_cast<int>(cell));
    }
  }
  return places;
}

void DealtCells::addGhosts(const Communicator& comm, std::span<const Use> otherUsers) {
  Bins<int> wanted;
  Bins<int> numbers;
  together(comm, [&] {
    numbers.resize(static_cast<std::size_t>(comm.size()));
    wanted = placesWantedByOthers(otherUsers, numbers.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      for (const int place : wanted[i]) {
        numbers[i].push_back(numbers_[static_cast<std::size_t>(place)]);
      }
    }
  });
  const Bins<int> ghosts = exchangeBins(comm, std::move(numbers));
  Routes values;
  together(comm, [&] {
    arrange(comm.rank(), ghosts, std::move(wanted));
    values = routesOfValues(fromOwners_, starts_, starts_);
  });
  carry<int>(comm, values, std::span<const int>(indices_), indices_);
}

/// Puts owned cells and ghosts in order; those of one group stay together.
void DealtCells::arrange(int rank, const Bins<int>& ghosts, Bins<int> wanted) {
  const std::vector<ArrangedCell> cells = arranged(ends_, numbers_, ghosts, rank);
  std::vector<int> ownedPlaces(numbers_.size());
  Bins<int> ghostPlaces = roomFor(ghosts);
  numbers_.clear();
  owners_.clear();
  for (const ArrangedCell& cell : cells) {
    std::vector<int>& places =
        cell.owner == rank ? ownedPlaces : ghostPlaces[static_cast<std::size_t>(cell.owner)];
    places[cell.index] = static_cast<int>(numbers_.size());
    numbers_.push_back(cell.number);
    owners_.push_back(cell.owner);
  }
  moveNodeIndices(ownedPlaces);
  for (Lane& lane : fromSlice_.in) {
    replacePlaces(ownedPlaces, lane.places);
  }
  for (std::vector<int>& bin : wanted) {
    replacePlaces(ownedPlaces, bin);
  }
  fromOwners_ = {lanesOf(std::move(wanted)), lanesOf(std::move(ghostPlaces))};
}

/// Makes room for the node indices of all cells, and puts those of the owned ones where they
/// belong.
void DealtCells::moveNodeIndices(std::span<const int> ownedPlaces) {
  const std::vector<std::int64_t> starts = startsOf(numbers_);
  std::vector<int> indices(static_cast<std::size_t>(starts.back()));
  for (std::size_t i = 0; i < ownedPlaces.size(); ++i) {
    std::copy(indices_.begin() + starts_[i], indices_.begin() + starts_[i + 1],
              indices.begin() + starts[static_cast<std::size_t>(ownedPlaces[i])]);
  }
  starts_ = starts;
  indices_ = std::move(indices);
}

std::vector<GroupOutline> DealtCells::groupsHere() const {
  std::vector<GroupOutline> groups;
  if (groups_ != nullptr) {
    groups = *groups_;
  }
  for (GroupOutline& group : groups) {
    group.cells = 0;
  }
  for (const int number : numbers_) {
    ++groups[groupOfNumber(ends_, number)].cells;
  }
  return groups;
}

std::vector<int> DealtCells::ownedOfGroups(int rank) const {
  std::vector<int> owned(groups_ == nullptr ? 0 : groups_->size());
  for (std::size_t i = 0; i < numbers_.size(); ++i) {
    owned[groupOfNumber(ends_, numbers_[i])] += owners_[i] == rank ? 1 : 0;
  }
  return owned;
}

}  // namespace orvml::parallel::detail
