#include "routes.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace orvml::parallel::detail {

namespace {

std::vector<Lane> lanesOfValues(const std::vector<Lane>& lanes,
                                std::span<const std::int64_t> starts) {
  std::vector<Lane> result;
  for (const Lane& lane : lanes) {
    Lane values{lane.rank, {}};
    for (const int place : lane.places) {
      const auto at = static_cast<std::size_t>(place);
      for (std::int64_t i = starts[at]; i < starts[at + 1]; ++i) {
        values.places.push_back(static_cast<int>(i));
      }
    }
    requireMessage(values.places.size());
    result.push_back(std::move(values));
  }
  return result;
}

/// Takes the blocks of some places out of a list.
void load(const std::vector<int>& places, std::size_t blockBytes, const char* from,
          std::vector<char>& buffer) noexcept {
  for (std::size_t i = 0; i < places.size(); ++i) {
    std::memcpy(buffer.data() + i * blockBytes,
                from + static_cast<std::size_t>(places[i]) * blockBytes, blockBytes);
  }
}

/// Puts them into the places of another one.
void unload(const std::vector<int>& places, std::size_t blockBytes, const std::vector<char>& buffer,
            char* to) noexcept {
  for (std::size_t i = 0; i < places.size(); ++i) {
    std::memcpy(to + static_cast<std::size_t>(places[i]) * blockBytes,
                buffer.data() + i * blockBytes, blockBytes);
  }
}

}  // namespace

void Cargo::makeRoom(const Routes& routes, std::size_t blockBytes) {
  const auto grow = [blockBytes](const std::vector<Lane>& lanes, Buffers& buffers) {
    buffers.resize(lanes.size());
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      buffers[i].resize(lanes[i].places.size() * blockBytes);
    }
  };
  grow(routes.out, out_);
  grow(routes.in, in_);
  messages_.reserve(routes.out.size() + routes.in.size());
}

void Cargo::carry(const Communicator& comm, const Routes& routes, const BlockType& block,
                  const void* from, void* to) noexcept {
  const std::vector<char>* own = nullptr;  // what this rank has for itself
  for (std::size_t i = 0; i < routes.in.size(); ++i) {
    const Lane& lane = routes.in[i];
    if (lane.rank != comm.rank()) {
      messages_.receive(comm, lane.rank, in_[i].data(), lane.places.size(), block.get());
    }
  }
  for (std::size_t i = 0; i < routes.out.size(); ++i) {
    const Lane& lane = routes.out[i];
    load(lane.places, block.bytes(), static_cast<const char*>(from), out_[i]);
    if (lane.rank == comm.rank()) {
      own = &out_[i];
    } else {
      messages_.send(comm, lane.rank, out_[i].data(), lane.places.size(), block.get());
    }
  }
  messages_.wait();
  for (std::size_t i = 0; i < routes.in.size(); ++i) {
    const Lane& lane = routes.in[i];
    unload(lane.places, block.bytes(), lane.rank == comm.rank() ? *own : in_[i],
           static_cast<char*>(to));
  }
}

Routes routesOfValues(const Routes& routes, std::span<const std::int64_t> fromStarts,
                      std::span<const std::int64_t> toStarts) {
  return {lanesOfValues(routes.out, fromStarts), lanesOfValues(routes.in, toStarts)};
}

std::vector<Lane> lanesOf(Bins<int> bins) {
  std::vector<Lane> lanes;
  for (std::size_t i = 0; i < bins.size(); ++i) {
    if (!bins[i].empty()) {
      lanes.push_back({static_cast<int>(i), std::move(bins[i])});
    }
  }
  return lanes;
}

int homeOf(std::span<const std::int64_t> offsets, std::int64_t number) noexcept {
  const auto next = std::upper_bound(offsets.begin(), offsets.end(), number);
  return static_cast<int>(next - offsets.begin()) - 1;
}

Routes routesToWanted(const Communicator& comm, std::span<const std::int64_t> offsets,
                      std::span<const int> wanted) {
  const auto ranks = static_cast<std::size_t>(comm.size());
  Bins<int> asked;
  Bins<int> places;
  together(comm, [&] {
    asked.resize(ranks);
    places.resize(ranks);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      const auto home = static_cast<std::size_t>(homeOf(offsets, wanted[i]));
      asked[home].push_back(wanted[i]);
      places[home].push_back(static_cast<int>(i));
    }
  });
  Bins<int> answered = exchangeBins(comm, std::move(asked));
  const auto first = static_cast<int>(offsets[static_cast<std::size_t>(comm.rank())]);
  Routes routes;
  together(comm, [&] {
    for (std::vector<int>& bin : answered) {
      std::transform(bin.begin(), bin.end(), bin.begin(),
                     [first](int number) { return number - first; });
    }
    routes = {lanesOf(std::move(answered)), lanesOf(std::move(places))};
  });
  return routes;
}

}  // namespace orvml::parallel::detail
