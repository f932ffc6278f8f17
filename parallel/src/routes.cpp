#include "routes.h"

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

}  // namespace

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
  Bins<int> asked(ranks);
  Bins<int> places(ranks);
  together(comm, [&] {
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
