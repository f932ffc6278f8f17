#include "node_use.h"

#include "agreement.h"
#include "exchange.h"
#include "routes.h"

#include <algorithm>

namespace orvml::parallel::detail {

namespace {

std::vector<Use> usesOf(const Bins<int>& nodesOfRanks) {
  std::vector<Use> uses;
  for (std::size_t rank = 0; rank < nodesOfRanks.size(); ++rank) {
    for (const int node : nodesOfRanks[rank]) {
      uses.emplace_back(node, static_cast<int>(rank));
    }
  }
  std::sort(uses.begin(), uses.end());
  return uses;
}

std::vector<int> ownersOf(const std::vector<Use>& uses, std::int64_t first, std::int64_t end,
                          int rank) {
  std::vector<int> owners(static_cast<std::size_t>(end - first), rank);
  // The lowest comes last.
  std::for_each(uses.rbegin(), uses.rend(), [&](const Use& use) {
    owners[static_cast<std::size_t>(use.first - first)] = use.second;
  });
  return owners;
}

/// Tells each user of a node who else uses it.
Bins<int> binsOfOthers(const std::vector<Use>& uses, std::size_t ranks) {
  Bins<int> bins(ranks);
  for (auto first = uses.begin(); first != uses.end();) {
    const auto last =
        std::find_if(first, uses.end(), [&](const Use& use) { return use.first != first->first; });
    for (auto user = first; user != last; ++user) {
      for (auto other = first; other != last; ++other) {
        if (user != other) {
          std::vector<int>& bin = bins[static_cast<std::size_t>(user->second)];
          bin.insert(bin.end(), {other->first, other->second});
        }
      }
    }
    first = last;
  }
  return bins;
}

}  // namespace

NodeUse useOfNodes(const Communicator& comm, std::span<const std::int64_t> offsets,
                   std::span<const int> used) {
  const auto ranks = static_cast<std::size_t>(comm.size());
  const auto rank = static_cast<std::size_t>(comm.rank());
  Bins<int> bins;
  together(comm, [&] {
    bins.resize(ranks);
    for (const int node : used) {
      bins[static_cast<std::size_t>(homeOf(offsets, node))].push_back(node);
    }
  });
  bins = exchangeBins(comm, std::move(bins));
  NodeUse use;
  together(comm, [&] {
    use.users = usesOf(bins);
    use.owners = ownersOf(use.users, offsets[rank], offsets[rank + 1], comm.rank());
  });
  return use;
}

std::vector<Use> otherUsers(const Communicator& comm, const NodeUse& use) {
  Bins<int> bins;
  together(comm, [&] { bins = binsOfOthers(use.users, static_cast<std::size_t>(comm.size())); });
  bins = exchangeBins(comm, std::move(bins));
  std::vector<Use> others;
  together(comm, [&] {
    for (const std::vector<int>& bin : bins) {
      for (std::size_t i = 0; i < bin.size(); i += 2) {
        others.emplace_back(bin[i], bin[i + 1]);
      }
    }
    std::sort(others.begin(), others.end());
  });
  return others;
}

}  // namespace orvml::parallel::detail
