#include <orvml/vtk_cells.hpp>

#include "vtkhdf/vtk_arrays.h"
#include "vtkhdf/vtk_target.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <span>

namespace orvml::detail {

namespace {

constexpr char kPoints[] = "Points";
constexpr char kConnectivity[] = "Connectivity";
constexpr char kOffsets[] = "Offsets";
constexpr char kTypes[] = "Types";
constexpr char kTurnedPrisms[] = "TurnedPrisms";  // passed over by VTK, which sees them joined

/// Goes through the node indices of groups of cells, in the order in which they are shown.
class ShownIndices {
 public:
  /// @param turnedAlone  whether all other cells are left out
  ShownIndices(std::span<const ShownGroup> groups, bool turnedAlone)
      : groups_(groups), turnedAlone_(turnedAlone) {
    skip();
  }

  template <class T>
  void operator()(std::span<T> place) {
    for (T& index : place) {
      index = static_cast<T>(next());
    }
  }

 private:
  void skip() {
    while (turnedAlone_ && !groups_.empty() && !groups_.front().isTurned) {
      groups_ = groups_.subspan(1);
    }
  }

  int next() {
    const ShownGroup& group = groups_.front();
    const std::span<const int> indices = group.cells.nodeIndices();
    const auto width = static_cast<std::size_t>(group.cells.nodesPerCell());
    const std::size_t node = index_ % width;
    const std::size_t from =
        group.isTurned ? olderVtkPrismOrder(group.cells.nodesPerCell())[node] : node;
    const int value = indices[index_ - node + from];
    if (++index_ == indices.size()) {
      index_ = 0;
      groups_ = groups_.subspan(1);
      skip();
    }
    return value;
  }

  std::span<const ShownGroup> groups_;
  std::size_t index_ = 0;
  bool turnedAlone_;
};

/// Gives a value for each cell of groups, one after the other.
template <class ValueOf>
class EachCell {
 public:
  EachCell(std::span<const ShownGroup> groups, ValueOf valueOf)
      : groups_(groups), valueOf_(valueOf) {}

  template <class T>
  void operator()(std::span<T> place) {
    for (T& value : place) {
      value = static_cast<T>(valueOf_(groups_.front()));
      if (++cell_ == groups_.front().cells.size()) {
        cell_ = 0;
        groups_ = groups_.subspan(1);
      }
    }
  }

 private:
  std::span<const ShownGroup> groups_;
  ValueOf valueOf_;
  int cell_ = 0;
};

/// Makes the number of the first node index of each cell, and behind them that of all.
template <class T>
bool makeOffsets(const VtkTarget& target) {
  std::int64_t end = 0;
  bool isFirst = true;
  EachCell eachCell(target.cells.groups(),
                    [&end](const ShownGroup& group) { return end += group.cells.nodesPerCell(); });
  return makeArray<T>(target.group, kOffsets, target.cells.cells() + 1, 1, [&](std::span<T> place) {
    if (isFirst) {
      place.front() = 0;
      place = place.subspan(1);
      isFirst = false;
    }
    eachCell(place);
  });
}

std::int64_t indicesOf(const CellsView& cells) {
  std::int64_t indices = 0;
  for (const CellGroup& group : cells.groups()) {
    indices += static_cast<std::int64_t>(group.nodeIndices().size());
  }
  return indices;
}

/// The node indices of all cells, which are shown where they lie if that can be.
class Connectivity {
 public:
  explicit Connectivity(const VtkTarget& target)
      : target_(target), stretches_(target.cells.stretchesOfIndices()) {
    for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
      lengths_[numberOf(entity)] = indicesOf(target.document.cells(entity));
      if (lengths_[numberOf(entity)] > 0) {
        stored_[numberOf(entity)] = target.stored.nodeIndices(entity);
      }
    }
  }

  /// Makes it, and the offsets, for which VTK wants the same type.
  void make() {
    if (!isLinked() && !isJoined()) {
      copy();
    }
    target_.require(is64_ ? makeOffsets<std::int64_t>(target_)
                          : makeOffsets<std::int32_t>(target_));
  }

 private:
  static std::size_t numberOf(Entity entity) noexcept { return static_cast<std::size_t>(entity); }

  [[nodiscard]] bool isLinked() {
    if (stretches_.size() != 1 || stretches_.front().isTurned) {
      return false;
    }
    const std::size_t number = numberOf(stretches_.front().entity);
    const hid_t dataset = stored_[number].dataset.get();
    is64_ = dataset >= 0 && hasIndexType(dataset, H5T_NATIVE_INT64);
    const bool canBe = dataset >= 0 && stretches_.front().count == lengths_[number] &&
                       isReadByVtk(dataset, lengths_[number]) &&
                       (is64_ || hasIndexType(dataset, H5T_NATIVE_INT32));
    if (!canBe) {
      return false;
    }
    target_.require(linkArray(dataset, target_.group, kConnectivity));
    target_.note(Fate::linked, stored_[number].object, "is " + shownAt(kConnectivity));
    return true;
  }

  /// Turned prisms are made first, as an array from which they are joined.
  [[nodiscard]] bool isJoined() {
    is64_ = target_.cells.indices() > std::numeric_limits<std::int32_t>::max();
    if (stretches_.empty() || !canJoin(stretches_.size()) || !areStored()) {
      return false;
    }
    const orvml_io::DatasetId turned = makeTurned();
    const hid_t type = is64_ ? H5T_NATIVE_INT64 : H5T_NATIVE_INT32;
    target_.require(makeJoined(target_.group, kConnectivity, type, target_.cells.indices(),
                               partsFrom(turned.get()), nullptr));
    noteKinds(Fate::linked, "is part of ");
    return true;
  }

  [[nodiscard]] bool areStored() const {
    return std::all_of(stretches_.begin(), stretches_.end(), [&](const Stretch& stretch) {
      const std::size_t number = numberOf(stretch.entity);
      const hid_t dataset = stored_[number].dataset.get();
      return stretch.isTurned || (dataset >= 0 && canBeJoined(dataset, lengths_[number]));
    });
  }

  [[nodiscard]] orvml_io::DatasetId makeTurned() const {
    std::int64_t indices = 0;
    for (const Stretch& stretch : stretches_) {
      indices += stretch.isTurned ? stretch.count : 0;
    }
    if (indices == 0) {
      return {};
    }
    target_.require(makeArray<std::int32_t>(target_.group, kTurnedPrisms, indices, 1,
                                            ShownIndices(target_.cells.groups(), true)));
    orvml_io::DatasetId turned(H5Dopen2(target_.group, kTurnedPrisms, H5P_DEFAULT));
    target_.require(turned.valid());
    return turned;
  }

  [[nodiscard]] std::vector<JoinedPart> partsFrom(hid_t turned) const {
    std::vector<JoinedPart> parts;
    std::int64_t at = 0;
    std::int64_t turnedBefore = 0;
    for (const Stretch& stretch : stretches_) {
      const StoredArray& stored = stored_[numberOf(stretch.entity)];
      if (stretch.isTurned) {
        parts.push_back({turned, shownAt(kTurnedPrisms), turnedBefore, stretch.count, at});
        turnedBefore += stretch.count;
      } else {
        parts.push_back({stored.dataset.get(), stored.object, stretch.first, stretch.count, at});
      }
      at += stretch.count;
    }
    return parts;
  }

  void copy() {
    const ShownIndices indices(target_.cells.groups(), false);
    target_.require(is64_ ? makeArray<std::int64_t>(target_.group, kConnectivity,
                                                    target_.cells.indices(), 1, indices)
                          : makeArray<std::int32_t>(target_.group, kConnectivity,
                                                    target_.cells.indices(), 1, indices));
    noteKinds(Fate::copied, "is copied to ");
  }

  void noteKinds(Fate fate, const std::string& what) const {
    for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
      const bool isShown =
          std::any_of(stretches_.begin(), stretches_.end(), [&](const Stretch& stretch) {
            return stretch.entity == entity && (fate == Fate::copied || !stretch.isTurned);
          });
      if (isShown) {
        target_.note(fate, stored_[numberOf(entity)].object, what + shownAt(kConnectivity));
      }
    }
  }

  const VtkTarget& target_;
  std::vector<Stretch> stretches_;
  std::array<StoredArray, 4> stored_;         // by Entity
  std::array<std::int64_t, 4> lengths_ = {};  // by Entity
  bool is64_ = false;
};

/// Gives each point three coordinates.
auto inSpace(const NodesView& nodes) {
  return [at = nodes.coordinates(),
          width = static_cast<std::size_t>(nodes.dimension())](std::span<double> place) mutable {
    constexpr std::size_t kOfSpace = 3;
    for (std::size_t i = 0; i < place.size(); ++i) {
      const std::size_t axis = i % kOfSpace;
      place[i] = axis < width ? at[axis] : 0.0;
      at = axis + 1 == kOfSpace ? at.subspan(width) : at;
    }
  };
}

}  // namespace

void showPoints(const VtkTarget& target) {
  const NodesView& nodes = target.document.nodes();
  const StoredArray stored = target.stored.coordinates();
  if (stored.dataset.valid() && nodes.dimension() == 3 &&
      isReadByVtkAsPoints(stored.dataset.get(), nodes.size())) {
    target.require(linkArray(stored.dataset.get(), target.group, kPoints));
    return target.note(Fate::linked, stored.object, "is " + shownAt(kPoints));
  }
  target.require(makeArray<double>(target.group, kPoints, nodes.size(), 3, inSpace(nodes)));
  target.note(Fate::copied, stored.object,
              "is copied to " + shownAt(kPoints) +
                  (nodes.dimension() == 2 ? ", with a third coordinate of 0" : ""));
}

void showCells(const VtkTarget& target) {
  Connectivity(target).make();
  target.require(makeArray<std::uint8_t>(
      target.group, kTypes, target.cells.cells(), 1,
      EachCell(target.cells.groups(), [](const ShownGroup& group) { return group.vtkType; })));
}

}  // namespace orvml::detail
