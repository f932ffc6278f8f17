// The members of the reader of a document that read nodes and cells.
#include "check/finding_list.h"
#include "hdf5/layout.h"
#include "hdf5/read_array.h"
#include "opened_file.h"
#include "rescue/document_reader.h"
#include "rescue/read_arrays.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace orvml::detail {

namespace layout = orvml_io::layout;
using orvml_io::OpenGroup;

namespace {

/// Cells without nodes take nothing in a file, so that any number of them may be claimed.
constexpr std::int64_t kMostCellsWithoutNodes = std::int64_t{1} << 20;

}  // namespace

/// The three arrays that describe the groups of cells.
struct GroupArrays {
  std::vector<int> counts;
  std::vector<int> shapes;
  std::vector<int> nodesPerCell;

  [[nodiscard]] std::size_t described() const noexcept {
    return std::min({counts.size(), shapes.size(), nodesPerCell.size()});
  }
  [[nodiscard]] std::size_t largest() const noexcept {
    return std::max({counts.size(), shapes.size(), nodesPerCell.size()});
  }

  /// How many groups come before the first whose size is none.
  [[nodiscard]] std::size_t usable() const noexcept {
    std::int64_t cells = 0;
    std::int64_t indices = 0;
    std::int64_t withoutNodes = 0;
    for (std::size_t i = 0; i < described(); ++i) {
      if (counts[i] < 0 || nodesPerCell[i] < 0) {
        return i;
      }
      withoutNodes += nodesPerCell[i] == 0 ? counts[i] : 0;
      if (withoutNodes > kMostCellsWithoutNodes) {
        return i;
      }
      cells += counts[i];
      indices += std::int64_t{counts[i]} * nodesPerCell[i];
      if (std::max(cells, indices) > std::numeric_limits<int>::max()) {
        return i;
      }
    }
    return described();
  }

  [[nodiscard]] std::int64_t indicesOf(std::size_t groups) const noexcept {
    std::int64_t indices = 0;
    for (std::size_t i = 0; i < groups; ++i) {
      indices += std::int64_t{counts[i]} * nodesPerCell[i];
    }
    return indices;
  }

  /// The number of all cells; none where a count is damaged.
  [[nodiscard]] std::optional<std::int64_t> cells() const noexcept {
    std::int64_t cells = 0;
    for (const int count : counts) {
      if (count < 0) {
        return std::nullopt;
      }
      cells += count;
    }
    return counts.size() == largest() ? std::optional(cells) : std::nullopt;
  }
};

void DocumentReader::readNodes(const OpenGroup& document) {
  const auto opened = file_.openGroup(document, layout::kNodes);
  if (!opened.isObject()) {
    file_.reportIfAbsent(opened.found, document, layout::kNodes);
    return;
  }
  const OpenGroup container = document.below(opened.id.get(), layout::kNodes);
  requireNames(container, group_ + layout::kNodes);
  const std::optional<std::int64_t> count = readCoordinates(container);
  readAttributes(container, Entity::nodes, count);
}

/// Returns how many nodes the file says it has.
std::optional<std::int64_t> DocumentReader::readCoordinates(const OpenGroup& container) {
  auto coordinates = readDoubles(file_, container, layout::kCoordinates, Rows::firstOnes);
  if (!coordinates) {
    return std::nullopt;
  }
  const hsize_t rows = coordinates->extent.rank == 0 ? 1 : coordinates->extent.first;
  const auto dimension = static_cast<hsize_t>(read_.dimension);
  if (rows * dimension != coordinates->extent.numberOfValues) {
    losses_.add(Code::objectWrongShape, group_ + layout::kNodesCoordinates,
                "has " + std::to_string(coordinates->extent.numberOfValues) + " values in " +
                    std::to_string(rows) + " rows, which are no " + std::to_string(dimension) +
                    " coordinates each");
    return std::nullopt;
  }
  read_.coordinates = std::move(coordinates->values);
  return static_cast<std::int64_t>(rows);
}

std::optional<std::vector<int>> DocumentReader::readGroupArray(const OpenGroup& container,
                                                               const std::string& containerPath,
                                                               const char* subPath) {
  if (facts_.clamped.contains(containerPath + subPath)) {
    return std::nullopt;
  }
  auto found = readInts(file_, container, subPath);
  return found ? std::optional(std::move(found->values)) : std::nullopt;
}

void DocumentReader::readCells(const OpenGroup& document, Entity entity, const char* subPath) {
  const auto opened = file_.openGroup(document, subPath);
  if (!opened.isObject()) {
    return;  // nothing, or told
  }
  const OpenGroup container = document.below(opened.id.get(), subPath);
  requireNames(container, group_ + subPath);
  readAttributes(container, entity, readGroups(container, entity));
}

/// Returns how many cells the file says it has.
std::optional<std::int64_t> DocumentReader::readGroups(const OpenGroup& container, Entity entity) {
  const std::string object = objectOf(read_.kind, entity);
  auto counts = readGroupArray(container, object, layout::kNumberOfElementsByType);
  auto shapes = readGroupArray(container, object, layout::kElementTypes);
  auto nodesPerCell = readGroupArray(container, object, layout::kNumberOfNodesByElement);
  const bool areAllRead = counts && shapes && nodesPerCell;
  GroupArrays arrays;
  if (counts) {
    arrays.counts = std::move(*counts);
  }
  if (!areAllRead) {
    losses_.add(Code::dependsOnLost, object, "has groups of cells that cannot be told apart");
    return arrays.counts.empty() ? std::nullopt : arrays.cells();
  }
  arrays.shapes = std::move(*shapes);
  arrays.nodesPerCell = std::move(*nodesPerCell);
  if (arrays.described() != arrays.largest()) {
    losses_.add(Code::valuesTooFew, object,
                "describes " + std::to_string(arrays.largest()) + " groups of cells, and " +
                    std::to_string(arrays.described()) + " of them in full");
  }
  readConnectivities(container, entity, arrays);
  return arrays.cells();
}

void DocumentReader::readConnectivities(const OpenGroup& container, Entity entity,
                                        const GroupArrays& arrays) {
  const std::string object = objectOf(read_.kind, entity);
  const std::size_t groups = arrays.usable();
  const std::int64_t needed = arrays.indicesOf(groups);
  if (groups < arrays.described()) {
    losses_.add(Code::valuesNegativeOrTooLarge, object,
                "has no usable size in its group " + std::to_string(groups) +
                    ", and with it nobody knows where the others lie");
  }
  const auto found = readInts(file_, container, layout::kConnectivities, Rows::firstOnes);
  if (!found) {
    if (needed > 0) {
      losses_.add(Code::dependsOnLost, object, "has no node indices that can be read");
    }
    return;
  }
  const auto entries = static_cast<std::int64_t>(found->extent.numberOfValues);
  const bool isExact = groups == arrays.largest();
  if (isExact ? entries != needed : entries < needed) {
    losses_.add(entries > needed ? Code::valuesTooMany : Code::valuesTooFew,
                object + layout::kConnectivities,
                orvml_io::entriesSentence(found->extent.numberOfValues, "the groups need",
                                          static_cast<int>(needed)));
    return;
  }
  takeCells(arrays, groups, found->values, read_.part(entity).groups);
}

/// Takes the cells whose nodes are all there.
void DocumentReader::takeCells(const GroupArrays& arrays, std::size_t groups,
                               const std::vector<int>& indices, std::vector<RescuedGroup>& taken) {
  std::size_t begin = 0;
  for (std::size_t i = 0; i < groups; ++i) {
    const auto width = static_cast<std::size_t>(arrays.nodesPerCell[i]);
    const auto wanted = static_cast<std::size_t>(arrays.counts[i]);
    const std::size_t cells =
        width == 0 ? wanted : std::min(wanted, (indices.size() - begin) / width);
    const auto first = indices.begin() + static_cast<std::ptrdiff_t>(begin);
    taken.push_back({static_cast<Shape>(arrays.shapes[i]), arrays.nodesPerCell[i],
                     static_cast<std::int64_t>(cells),
                     std::vector<int>(first, first + static_cast<std::ptrdiff_t>(cells * width))});
    begin += cells * width;
    if (cells < wanted) {
      return;
    }
  }
}

}  // namespace orvml::detail
