#include "check/finding_list.h"
#include "vtkhdf/vtk_arrays.h"
#include "vtkhdf/vtk_names.h"
#include "vtkhdf/vtk_target.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <map>
#include <string_view>
#include <type_traits>
#include <utility>

namespace orvml::detail {

namespace {

constexpr char kPointData[] = "PointData";
constexpr char kCellData[] = "CellData";
constexpr char kFieldData[] = "FieldData";
constexpr char kContainer[] = "orvml.container";
constexpr int kPaddingInt = -1;
constexpr double kPaddingDouble = std::numeric_limits<double>::quiet_NaN();

/// A group of arrays, each of which gets a name of its own.
class ArrayGroup {
 public:
  ArrayGroup(const VtkTarget& target, std::string name)
      : target_(target),
        name_(std::move(name)),
        group_(H5Gcreate2(target.group, name_.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT)) {
    target.require(group_.valid());
  }

  [[nodiscard]] hid_t id() const noexcept { return group_.get(); }
  [[nodiscard]] std::string shown(const std::string& name) const {
    return shownAt(name_ + "/" + name);
  }

  /// The name for something that is shown in this group; another one than it has is noted.
  [[nodiscard]] std::string take(std::string_view wanted, const std::string& object) {
    std::string name = names_.take(wanted);
    if (name != wanted) {
      target_.note(Fate::renamed, object, "is called " + name + " in " + shownAt(name_));
    }
    return name;
  }

 private:
  const VtkTarget& target_;
  std::string name_;
  orvml_io::GroupId group_;
  ArrayNames names_;
};

/// Makes an array of some values, which are given until there are `length`.
template <class Fill>
bool makeValues(hid_t group, const std::string& name, bool areInts, std::int64_t length,
                const Fill& fill) {
  return areInts ? makeArray<std::int32_t>(group, name, length, 1, fill)
                 : makeArray<double>(group, name, length, 1, fill);
}

/// Gives values one after the other, and zero-length places nothing.
class Values {
 public:
  explicit Values(const Attribute::Values& values) : values_(values) {}

  template <class T>
  void operator()(std::span<T> place) {
    std::visit(
        [&](const auto& values) {
          for (T& value : place) {
            value = static_cast<T>(values[next_++]);
          }
        },
        values_);
  }

 private:
  Attribute::Values values_;
  std::size_t next_ = 0;
};

/// Shows a whole vector, where it lies if that can be.
void showVector(const VtkTarget& target, ArrayGroup& group, const StoredArray& stored,
                const Attribute& vector) {
  const std::string name = group.take(vector.name, stored.object);
  const auto length = static_cast<std::int64_t>(vector.size());
  if (stored.dataset.valid() && isReadByVtk(stored.dataset.get(), length)) {
    target.require(linkArray(stored.dataset.get(), group.id(), name));
    return target.note(Fate::linked, stored.object, "is " + group.shown(name));
  }
  target.require(makeValues(group.id(), name, vector.holdsInts(), length, Values(vector.values)));
  target.note(Fate::copied, stored.object, "is copied to " + group.shown(name));
}

std::string pluralOf(Entity entity) {
  constexpr std::array kNames = {"nodes", "edges", "faces", "elements"};
  return kNames[static_cast<std::size_t>(entity)];
}

/// Notes an attribute that has not one value for each of its nodes or cells. Returns whether it
/// has.
bool fits(const VtkTarget& target, const Attribute& attribute, const std::string& object,
          Entity entity, int entities) {
  if (attribute.size() == static_cast<std::size_t>(entities)) {
    return true;
  }
  const auto values = static_cast<std::int64_t>(attribute.size());
  target.note(Fate::dropped, object,
              "has " + countText(values, "value", "values") + " for " + std::to_string(entities) +
                  " " + pluralOf(entity) + ", and is not shown");
  return false;
}

void showPointData(const VtkTarget& target) {
  const NodesView& nodes = target.document.nodes();
  ArrayGroup group(target, kPointData);
  for (const Attribute& attribute : nodes.attributes()) {
    const StoredArray stored = target.stored.attribute(Entity::nodes, attribute.name);
    if (fits(target, attribute, stored.object, Entity::nodes, nodes.size())) {
      showVector(target, group, stored, attribute);
    }
  }
}

/// An attribute by its name, as the kinds of cells have it.
struct CellAttribute {
  std::array<const Attribute*, 4> ofKind = {};  // by Entity; null where a kind has none
  std::array<StoredArray, 4> stored;

  [[nodiscard]] const Attribute* of(Entity entity) const {
    return ofKind[static_cast<std::size_t>(entity)];
  }
  [[nodiscard]] const StoredArray& storedOf(Entity entity) const {
    return stored[static_cast<std::size_t>(entity)];
  }
};

using CellAttributes = std::map<std::string_view, CellAttribute>;

/// The attributes of all cells that are shown.
class CellData {
 public:
  explicit CellData(const VtkTarget& target)
      : target_(target), stretches_(target.cells.stretchesOfCells()), group_(target, kCellData) {}

  void show() {
    showContainers();
    for (const auto& [name, attribute] : attributes()) {
      showAttribute(name, attribute);
    }
  }

 private:
  /// Tells the kinds of cells apart.
  void showContainers() {
    const std::string name = group_.take(kContainer, {});
    target_.require(
        makeArray<std::uint8_t>(group_.id(), name, target_.cells.cells(), 1,
                                [stretches = std::span(stretches_),
                                 done = std::int64_t{0}](std::span<std::uint8_t> place) mutable {
                                  for (std::uint8_t& value : place) {
                                    value = static_cast<std::uint8_t>(stretches.front().entity);
                                    if (++done == stretches.front().count) {
                                      done = 0;
                                      stretches = stretches.subspan(1);
                                    }
                                  }
                                }));
  }

  [[nodiscard]] bool shows(Entity entity) const {
    return std::any_of(stretches_.begin(), stretches_.end(),
                       [entity](const Stretch& stretch) { return stretch.entity == entity; });
  }

  CellAttributes attributes() const {
    CellAttributes attributes;
    for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
      if (!shows(entity)) {
        continue;
      }
      const CellsView& cells = target_.document.cells(entity);
      for (const Attribute& attribute : cells.attributes()) {
        StoredArray stored = target_.stored.attribute(entity, attribute.name);
        if (fits(target_, attribute, stored.object, entity, cells.size())) {
          CellAttribute& joined = attributes[attribute.name];
          joined.ofKind[static_cast<std::size_t>(entity)] = &attribute;
          joined.stored[static_cast<std::size_t>(entity)] = std::move(stored);
        }
      }
    }
    return attributes;
  }

  void showAttribute(std::string_view name, const CellAttribute& attribute) {
    if (stretches_.size() == 1 && isWhole(stretches_.front())) {
      const Entity entity = stretches_.front().entity;
      return showVector(target_, group_, attribute.storedOf(entity), *attribute.of(entity));
    }
    const std::string shown = group_.take(name, objectOfFirst(attribute));
    const bool areInts =
        std::all_of(attribute.ofKind.begin(), attribute.ofKind.end(),
                    [](const Attribute* one) { return one == nullptr || one->holdsInts(); });
    const bool isJoined = join(shown, attribute, areInts);
    if (!isJoined) {
      target_.require(
          makeValues(group_.id(), shown, areInts, target_.cells.cells(),
                     [&, stretches = std::span<const Stretch>(stretches_), done = std::int64_t{0}](
                         auto place) mutable { fill(place, attribute, stretches, done); }));
    }
    noteKinds(attribute, shown, isJoined, areInts);
  }

  [[nodiscard]] bool isWhole(const Stretch& stretch) const {
    return stretch.count == target_.document.cells(stretch.entity).size();
  }

  static std::string objectOfFirst(const CellAttribute& attribute) {
    const auto* const first =
        std::find_if(attribute.stored.begin(), attribute.stored.end(),
                     [](const StoredArray& stored) { return !stored.object.empty(); });
    return first->object;
  }

  /// Whether the attribute could be joined of what its kinds have.
  [[nodiscard]] bool join(const std::string& name, const CellAttribute& attribute, bool areInts) {
    std::vector<JoinedPart> parts;
    std::int64_t at = 0;
    for (const Stretch& stretch : stretches_) {
      if (attribute.of(stretch.entity) != nullptr) {
        const StoredArray& stored = attribute.storedOf(stretch.entity);
        const int cells = target_.document.cells(stretch.entity).size();
        if (!stored.dataset.valid() || !canBeJoined(stored.dataset.get(), cells)) {
          return false;
        }
        parts.push_back({stored.dataset.get(), stored.object, stretch.first, stretch.count, at});
      }
      at += stretch.count;
    }
    if (!canJoin(parts.size())) {
      return false;
    }
    const void* padding = areInts ? static_cast<const void*>(&kPaddingInt) : &kPaddingDouble;
    target_.require(makeJoined(group_.id(), name, areInts ? H5T_NATIVE_INT32 : H5T_NATIVE_DOUBLE,
                               at, parts, padding));
    return true;
  }

  /// Gives the next values of a copy.
  template <class T>
  static void fill(std::span<T> place, const CellAttribute& attribute,
                   std::span<const Stretch>& stretches, std::int64_t& done) {
    for (T& value : place) {
      const Stretch& stretch = stretches.front();
      value = valueOf<T>(attribute.of(stretch.entity), stretch.first + done);
      if (++done == stretch.count) {
        done = 0;
        stretches = stretches.subspan(1);
      }
    }
  }

  template <class T>
  static T valueOf(const Attribute* attribute, std::int64_t cell) {
    if (attribute == nullptr) {
      if constexpr (std::is_same_v<T, double>) {
        return kPaddingDouble;
      } else {
        return kPaddingInt;
      }
    }
    return std::visit(
        [cell](const auto& values) {
          return static_cast<T>(values[static_cast<std::size_t>(cell)]);
        },
        attribute->values);
  }

  void noteKinds(const CellAttribute& attribute, const std::string& name, bool isJoined,
                 bool areInts) const {
    std::string padded;
    for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
      const Attribute* one = attribute.of(entity);
      if (one == nullptr) {
        padded += !shows(entity) ? "" : (padded.empty() ? "" : " and ") + pluralOf(entity);
        continue;
      }
      const std::string as = one->holdsInts() && !areInts ? ", as doubles" : "";
      target_.note(isJoined ? Fate::linked : Fate::copied, attribute.storedOf(entity).object,
                   (isJoined ? "is part of " : "is copied to ") + group_.shown(name) + as);
    }
    if (!padded.empty()) {
      target_.note(Fate::padded, objectOfFirst(attribute),
                   std::string("is padded with ") + (areInts ? "-1" : "nan") + " for " + padded);
    }
  }

  const VtkTarget& target_;
  std::vector<Stretch> stretches_;
  ArrayGroup group_;
};

void showFieldData(const VtkTarget& target) {
  ArrayGroup group(target, kFieldData);
  const std::string object = objectOf(target.document.kind()) + orvml_io::layout::kParameters;
  for (const Parameter& parameter : target.document.parameters()) {
    const std::string name = group.take(parameter.name, object + "/" + std::string(parameter.name));
    target.require(makeArray<double>(
        group.id(), name, 1, 1, [&](std::span<double> place) { place.front() = parameter.value; }));
  }
  if (!target.document.parameters().empty()) {
    target.note(Fate::copied, object, "is copied to " + shownAt(kFieldData));
  }
  for (const Attribute& vector : target.document.vectorParameters()) {
    showVector(target, group, target.stored.vectorParameter(vector.name), vector);
  }
}

}  // namespace

void showValues(const VtkTarget& target) {
  showPointData(target);
  CellData(target).show();
  showFieldData(target);
}

}  // namespace orvml::detail
