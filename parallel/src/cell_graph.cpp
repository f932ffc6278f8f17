#include <orvml/cell_faces.hpp>

#include "agreement.h"
#include "exchange.h"
#include "partition.h"
#include "routes.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <string>
#include <utility>

namespace orvml::parallel::detail {

namespace {

/// What two cells have in common: the corners of a face of a volume element, of a side of a face,
/// or of an end of an edge, by their places in the cell.
using Facet = std::vector<std::size_t>;

std::vector<Facet> sidesOfPolygon(std::size_t corners) {
  std::vector<Facet> sides;
  for (std::size_t i = 0; i < corners; ++i) {
    sides.push_back({i, (i + 1) % corners});
  }
  return sides;
}

/// The facets of cells of a group; none for what has no known form, which then has no neighbours.
std::vector<Facet> facetsOf(const GroupOutline& group) {
  const CellForm form = {static_cast<Shape>(group.shape), group.nodesPerCell};
  switch (form.shape) {
    case Shape::line:
      return form.nodesPerCell >= 2 ? std::vector<Facet>{{0}, {1}} : std::vector<Facet>{};
    case Shape::triangle:
      return form.nodesPerCell >= 3 ? sidesOfPolygon(3) : std::vector<Facet>{};
    case Shape::quadrilateral:
      return form.nodesPerCell >= 4 ? sidesOfPolygon(4) : std::vector<Facet>{};
    default:
      break;
  }
  std::vector<Facet> facets;
  for (const CellFace& face : facesOf(form)) {
    const auto corners = static_cast<std::ptrdiff_t>(face.corners);
    facets.emplace_back(face.nodes.begin(), face.nodes.begin() + corners);
  }
  return facets;
}

/// A facet as ranks tell it to each other: its nodes, ascending and with kNone behind them, and the
/// place of its cell among all.
constexpr std::size_t kMostCorners = 4;
constexpr int kNone = -1;
using Record = std::array<int, kMostCorners + 1>;

Record recordOf(const Facet& facet, std::span<const int> cell, int place) {
  Record record;
  record.fill(kNone);
  const std::size_t corners = std::min(facet.size(), kMostCorners);
  for (std::size_t i = 0; i < corners; ++i) {
    const int node = cell[facet[i]];
    std::size_t at = i;
    for (; at > 0 && record[at - 1] > node; --at) {
      record[at] = record[at - 1];
    }
    record[at] = node;
  }
  record.back() = place;
  return record;
}

/// Whether two cells have a facet in common.
bool isSameFacet(const Record& a, const Record& b) {
  return std::equal(a.begin(), a.end() - 1, b.begin());
}

std::vector<Record> recordsOf(const SliceCells& cells, int firstPlace) {
  std::vector<Record> records;
  const GroupOutline* group = nullptr;
  std::vector<Facet> facets;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (group != &cells.groupOf(i)) {
      group = &cells.groupOf(i);
      facets = facetsOf(*group);
    }
    for (const Facet& facet : facets) {
      records.push_back(recordOf(facet, cells.nodesOf(i), firstPlace + static_cast<int>(i)));
    }
  }
  std::sort(records.begin(), records.end());
  return records;
}

std::vector<Record> recordsOf(const Bins<int>& bins) {
  std::vector<Record> records;
  for (const std::vector<int>& bin : bins) {
    for (std::size_t i = 0; i < bin.size(); i += Record().size()) {
      Record record;
      std::copy_n(bin.begin() + static_cast<std::ptrdiff_t>(i), record.size(), record.begin());
      records.push_back(record);
    }
  }
  std::sort(records.begin(), records.end());
  return records;
}

/// Facets that one cell alone has here, for the ranks whose slices have their lowest nodes: there
/// those meet that are the same. One that two cells here have would seldom find a third.
Bins<int> binsOfOpenFacets(const std::vector<Record>& records,
                           std::span<const std::int64_t> offsetsOfNodes) {
  Bins<int> bins(offsetsOfNodes.size() - 1);
  for (std::size_t i = 0; i < records.size(); ++i) {
    const Record& record = records[i];
    const auto isShared = [&record](const Record& other) {
      return isSameFacet(record, other) && record.back() != other.back();
    };
    if (!((i > 0 && isShared(records[i - 1])) ||
          (i + 1 < records.size() && isShared(records[i + 1])))) {
      std::vector<int>& bin = bins[static_cast<std::size_t>(homeOf(offsetsOfNodes, record[0]))];
      bin.insert(bin.end(), record.begin(), record.end());
    }
  }
  return bins;
}

/// Tells the ranks of cells with a common facet of each other. Where more than two have it, each
/// hears of the one before and of the one behind it.
void addPairs(const std::vector<Record>& records, std::span<const std::int64_t> offsetsOfCells,
              Bins<int>& bins) {
  const auto tell = [&](int cell, int neighbour) {
    std::vector<int>& bin = bins[static_cast<std::size_t>(homeOf(offsetsOfCells, cell))];
    bin.insert(bin.end(), {cell, neighbour});
  };
  for (std::size_t i = 1; i < records.size(); ++i) {
    const int a = records[i - 1].back();
    const int b = records[i].back();
    if (a != b && isSameFacet(records[i - 1], records[i])) {
      tell(a, b);
      tell(b, a);
    }
  }
}

CellGraph graphOfPairs(const Bins<int>& bins, std::size_t cells, int firstPlace) {
  std::vector<std::pair<int, int>> pairs;
  for (const std::vector<int>& bin : bins) {
    for (std::size_t i = 0; i < bin.size(); i += 2) {
      pairs.emplace_back(bin[i] - firstPlace, bin[i + 1]);
    }
  }
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  requireMessage(pairs.size());
  CellGraph graph;
  graph.starts.push_back(0);
  auto next = pairs.begin();
  for (std::size_t i = 0; i < cells; ++i) {
    for (; next != pairs.end() && next->first == static_cast<int>(i); ++next) {
      graph.neighbours.push_back(next->second);
    }
    graph.starts.push_back(static_cast<int>(graph.neighbours.size()));
  }
  return graph;
}

}  // namespace

CellGraph graphOf(const Communicator& comm, const SliceCells& cells,
                  std::span<const std::int64_t> offsetsOfNodes) {
  std::vector<std::int64_t> offsets;
  together(comm, [&] { offsets.resize(static_cast<std::size_t>(comm.size()) + 1); });
  comm.listOffsets(static_cast<std::int64_t>(cells.size()), offsets);
  const auto firstPlace = static_cast<int>(offsets[static_cast<std::size_t>(comm.rank())]);
  Bins<int> pairs;
  Bins<int> facets;
  together(comm, [&] {
    const std::vector<Record> own = recordsOf(cells, firstPlace);
    pairs.resize(offsets.size() - 1);
    addPairs(own, offsets, pairs);
    facets = binsOfOpenFacets(own, offsetsOfNodes);
  });
  facets = exchangeBins(comm, std::move(facets));
  together(comm, [&] { addPairs(recordsOf(facets), offsets, pairs); });
  pairs = exchangeBins(comm, std::move(pairs));
  CellGraph graph;
  together(comm, [&] { graph = graphOfPairs(pairs, cells.size(), firstPlace); });
  const std::int64_t arcs = comm.sum(static_cast<std::int64_t>(graph.neighbours.size()));
  together(comm, [&] {
    if (arcs > INT_MAX) {
      throw Error(Code::tooManyValues, "the cells have " + std::to_string(arcs) +
                                           " neighbours all together, PT-Scotch counts up to " +
                                           std::to_string(INT_MAX));
    }
  });
  return graph;
}

}  // namespace orvml::parallel::detail
