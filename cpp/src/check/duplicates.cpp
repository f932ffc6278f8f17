#include "check/checked_mesh.h"
#include "check/key_groups.h"
#include "check/rules.h"

#include <utility>

namespace orvml::detail {

namespace {

/// Calls a function with the number of a cell, its lowest node and a key of its shape and all its
/// nodes, in whatever order they are.
template <class Function>
void scanCells(const CheckedCells& cells, std::int64_t nodes, std::int64_t low, std::int64_t high,
               Function function) {
  for (const CheckedGroup& group : cells.groups) {
    if (group.facts == nullptr) {
      continue;
    }
    const int width = group.width();
    const std::uint64_t shape = scattered(~static_cast<std::uint64_t>(group.facts->shape));
    forEachCell(group, nodes, low, high, [&](std::int64_t i, const int* cell) {
      const int lowest = *std::min_element(cell, cell + width);
      if (lowest < low || lowest >= high) {
        return;
      }
      std::uint64_t key = shape;
      for (int node = 0; node < width; ++node) {
        key += scattered(static_cast<std::uint64_t>(cell[node]));
      }
      function(group.first + i, lowest, key);
    });
  }
}

/// The numbers of the cells of some keys, but for the first cell of each.
void tellRepetitions(const CheckedCells& cells, std::int64_t nodes, std::vector<FlaggedKey> flagged,
                     Places& places) {
  std::sort(flagged.begin(), flagged.end());
  std::vector<bool> isMet(flagged.size());
  scanCells(cells, nodes, 0, nodes, [&](std::int64_t cell, std::int64_t lowest, std::uint64_t key) {
    const auto found = std::lower_bound(flagged.begin(), flagged.end(), FlaggedKey{lowest, key});
    if (found != flagged.end() && *found == FlaggedKey{lowest, key}) {
      const auto number = static_cast<std::size_t>(found - flagged.begin());
      if (isMet[number]) {
        places.tell(cell);
      }
      isMet[number] = true;
    }
  });
}

void checkDuplicates(const CheckedMesh& mesh, const CheckedCells& cells, FindingList& findings) {
  std::int64_t known = 0;
  for (const CheckedGroup& group : cells.groups) {
    known += group.facts != nullptr ? group.cells.size() : 0;
  }
  if (known < 2) {
    return;
  }
  Places places = findings.places(placeKindOf(cells.entity));
  std::vector<FlaggedKey> flagged;
  forEachBucket(
      mesh.nodes, mostKeys(known),
      [&](std::int64_t low, std::int64_t high, auto emit) {
        scanCells(cells, mesh.nodes, low, high,
                  [&](std::int64_t, std::int64_t lowest, std::uint64_t key) { emit(lowest, key); });
      },
      [&](std::int64_t bucket, std::span<const std::uint64_t> keys) {
        for (std::size_t i = 1; i < keys.size(); ++i) {
          if (keys[i] != keys[i - 1]) {
            continue;
          }
          places.count(1);
          const FlaggedKey key{bucket, keys[i]};
          if (static_cast<int>(flagged.size()) < findings.mostPlaces() &&
              (flagged.empty() || flagged.back() != key)) {
            flagged.push_back(key);
          }
        }
      });
  if (!places.empty()) {
    tellRepetitions(cells, mesh.nodes, std::move(flagged), places);
    const std::string sentence =
        "has " + countText(places.size(), places.kind()) + " with the nodes of another one";
    findings.add(ruleOf(CheckCode::duplicateCell), cells.object, std::move(places), sentence);
  }
}

}  // namespace

void checkDuplicates(const CheckedMesh& mesh, FindingList& findings) {
  for (const CheckedCells& cells : mesh.kinds) {
    checkDuplicates(mesh, cells, findings);
  }
}

}  // namespace orvml::detail
