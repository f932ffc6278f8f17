#include "check/checked_mesh.h"
#include "check/hash_company.h"
#include "check/key_groups.h"
#include "check/rules.h"

#include <algorithm>
#include <utility>

namespace orvml::detail {

namespace {

/// Calls a function with the number of each cell and a hash of its shape and all its nodes, in
/// whatever order they are.
template <int Width, class Function>
void hashCells(const CheckedGroup& group, std::int64_t nodes, Function& function) {
  const int width = Width == 0 ? group.width() : Width;
  const std::uint64_t shape = scattered(~static_cast<std::uint64_t>(group.facts->shape));
  forEachCell(group, nodes, [&](std::int64_t i, const int* cell) {
    std::uint64_t hash = shape;
    for (int node = 0; node < width; ++node) {
      hash += scattered(static_cast<std::uint64_t>(cell[node]));
    }
    function(group.first + i, hash);
  });
}

template <class Function>
void hashCells(const CheckedCells& cells, std::int64_t nodes, Function function) {
  for (const CheckedGroup& group : cells.groups) {
    if (group.facts == nullptr) {
      continue;
    }
    switch (group.width()) {
      case 4:
        hashCells<4>(group, nodes, function);
        break;
      case 8:
        hashCells<8>(group, nodes, function);
        break;
      default:
        hashCells<0>(group, nodes, function);
    }
  }
}

void checkDuplicates(const CheckedMesh& mesh, const CheckedCells& cells, FindingList& findings) {
  std::int64_t known = 0;
  for (const CheckedGroup& group : cells.groups) {
    known += group.facts != nullptr ? group.cells.size() : 0;
  }
  if (known < 2) {
    return;
  }
  const std::vector<HashedItem> found =
      itemsWithCompany(known, [&](auto add) { hashCells(cells, mesh.nodes, add); });
  std::vector<std::int64_t> later;
  for (std::size_t i = 1; i < found.size(); ++i) {
    if (found[i].hash == found[i - 1].hash) {
      later.push_back(found[i].item);
    }
  }
  std::sort(later.begin(), later.end());
  Places places = findings.places(placeKindOf(cells.entity));
  for (const std::int64_t cell : later) {
    places.add(cell);
  }
  const std::string sentence =
      "has " + countText(places.size(), places.kind()) + " with the nodes of another one";
  findings.add(ruleOf(CheckCode::duplicateCell), cells.object, std::move(places), sentence);
}

}  // namespace

void checkDuplicates(const CheckedMesh& mesh, bool ofElements, FindingList& findings) {
  for (const CheckedCells& cells : mesh.kinds) {
    if (cells.entity != Entity::elements || ofElements) {
      checkDuplicates(mesh, cells, findings);
    }
  }
}

}  // namespace orvml::detail
