#include "convert/foreign_mesh.h"

#include "console.h"
#include "convert/format_error.h"
#include "convert/placed_groups.h"
#include "convert/storable_names.h"
#include "facts.h"
#include "messages.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <set>

namespace orvml_tool {

using orvml::CellForm;
using orvml::Entity;
using orvml::Shape;

namespace {

constexpr std::size_t kSpaceAxes = 3;
constexpr std::array<Entity, 3> kContainers = {Entity::edges, Entity::faces, Entity::elements};

bool isAlike(const CellRun& run, const DocumentFacts::Group& group) {
  return run.container == group.container && run.form == group.form;
}

/// Whether the groups that the facts tell are the cells that the file has, in their order. They are
/// not when another program wrote the file again and changed the cells.
bool areGroupsOf(const std::vector<DocumentFacts::Group>& groups,
                 const std::vector<CellRun>& runs) {
  std::size_t run = 0;
  std::size_t left = runs.empty() ? 0 : runs.front().cells;
  for (const DocumentFacts::Group& group : groups) {
    auto wanted = group.cells;
    while (wanted > 0) {
      while (left == 0 && run < runs.size()) {
        ++run;
        left = run < runs.size() ? runs[run].cells : 0;
      }
      if (run >= runs.size() || !isAlike(runs[run], group)) {
        return false;
      }
      const auto taken = std::min(left, static_cast<std::size_t>(wanted));
      wanted -= static_cast<std::int64_t>(taken);
      left -= taken;
    }
    if (wanted < 0) {
      return false;
    }
  }
  const auto counted = [](auto sum, const auto& some) {
    return sum + static_cast<std::int64_t>(some.cells);
  };
  return std::accumulate(groups.begin(), groups.end(), std::int64_t{0}, counted) ==
         std::accumulate(runs.begin(), runs.end(), std::int64_t{0}, counted);
}

/// Where the cells of a run come from and go to.
struct PlacedRun {
  CellRun run;
  std::size_t firstCell = 0;  // in the file
  std::size_t firstNode = 0;  // in nodeIndices
  std::size_t group = 0;      // in the order in which groups come first
};

class MeshDraft {
 public:
  MeshDraft(ForeignMesh& mesh, const ImportOptions& options, ConversionReport& report)
      : mesh_(mesh),
        report_(report),
        draft_(mesh.facts ? mesh.facts->kind : options.kind, dimensionOf(mesh, options)) {
    identify();
    setNodes();
    placeRuns();
    turnPrisms();
    setCells();
    setNodeArrays();
    setCellArrays();
    setParameters();
  }

  Draft take() { return std::move(draft_); }

 private:
  static bool isPlane(const std::vector<double>& coordinates) {
    for (std::size_t z = 2; z < coordinates.size(); z += kSpaceAxes) {
      if (coordinates[z] != 0.0) {
        return false;
      }
    }
    return true;
  }

  static int dimensionOf(const ForeignMesh& mesh, const ImportOptions& options) {
    const int wanted = options.dimension.value_or(mesh.facts ? mesh.facts->dimension : 3);
    if (wanted == 2 && !isPlane(mesh.coordinates)) {
      if (options.dimension) {
        throw Refusal("there are nodes outside of the plane z = 0", "leave --dimension 2 out");
      }
      return 3;
    }
    return wanted;
  }

  void identify() {
    draft_.setCreator(mesh_.facts ? mesh_.facts->creator : "orvml");
    if (mesh_.facts) {
      draft_.setModule(mesh_.facts->moduleName);
      draft_.setModuleFormatVersion(mesh_.facts->moduleFormatVersion);
    }
  }

  void setNodes() {
    if (draft_.dimension() == 2) {
      std::size_t kept = 0;
      for (std::size_t node = 0; node < mesh_.coordinates.size(); node += kSpaceAxes) {
        mesh_.coordinates[kept++] = mesh_.coordinates[node];
        mesh_.coordinates[kept++] = mesh_.coordinates[node + 1];
      }
      mesh_.coordinates.resize(kept);
    }
    draft_.setNodes(std::move(mesh_.coordinates));
  }

  void placeRuns() {
    if (mesh_.facts && areGroupsOf(mesh_.facts->groups, mesh_.runs)) {
      std::vector<CellRun> told;
      for (const DocumentFacts::Group& group : mesh_.facts->groups) {
        told.push_back({group.container, group.form, static_cast<std::size_t>(group.cells)});
      }
      addRuns(told, true);
    } else {
      addRuns(mesh_.runs, false);
      if (mesh_.facts) {
        report_.add(
            orvml::Fate::dropped, "the division of cells into groups", 1,
            "is that of other cells than the file has now; those of one form are one group");
      }
    }
    std::stable_sort(runs_.begin(), runs_.end(),
                     [](const PlacedRun& a, const PlacedRun& b) { return a.group < b.group; });
  }

  void addRuns(const std::vector<CellRun>& runs, bool areGroups) {
    std::map<std::array<int, 3>, std::size_t> groups;
    PlacedRun next;
    for (const CellRun& run : runs) {
      const std::array<int, 3> key = {static_cast<int>(run.container),
                                      static_cast<int>(run.form.shape), run.form.nodesPerCell};
      next.run = run;
      next.group = areGroups ? runs_.size() : groups.try_emplace(key, groups.size()).first->second;
      runs_.push_back(next);
      next.firstCell += run.cells;
      next.firstNode += run.cells * static_cast<std::size_t>(run.form.nodesPerCell);
    }
    numberOfCells_ = next.firstCell;
    if (next.firstNode != mesh_.nodeIndices.size()) {
      throw FormatError("the cells do not have the nodes that they should");
    }
  }

  /// Below 0 for a prism whose base is seen clockwise from the opposite triangle.
  [[nodiscard]] double volumeSign(std::span<const int> nodes, std::span<const double> xyz) const {
    const auto width = static_cast<std::size_t>(draft_.dimension());
    const auto at = [&](std::size_t corner, std::size_t axis) {
      return xyz[static_cast<std::size_t>(nodes[corner]) * width + axis];
    };
    std::array<double, kSpaceAxes> a = {};
    std::array<double, kSpaceAxes> b = {};
    std::array<double, kSpaceAxes> up = {};
    for (std::size_t axis = 0; axis < width; ++axis) {
      a[axis] = at(1, axis) - at(0, axis);
      b[axis] = at(2, axis) - at(0, axis);
      up[axis] = at(3, axis) + at(4, axis) + at(5, axis) - at(0, axis) - at(1, axis) - at(2, axis);
    }
    return (a[1] * b[2] - a[2] * b[1]) * up[0] + (a[2] * b[0] - a[0] * b[2]) * up[1] +
           (a[0] * b[1] - a[1] * b[0]) * up[2];
  }

  void turnPrisms() {
    if (mesh_.facts && !mesh_.facts->hasOlderPrisms) {
      return;
    }
    const auto xyz = draft_.nodes().coordinates();
    std::int64_t turned = 0;
    for (const PlacedRun& placed : runs_) {
      const auto order = orvml::olderVtkPrismOrder(placed.run.form.nodesPerCell);
      const std::size_t width = order.size();
      const std::size_t cells = placed.run.form.shape == Shape::prism ? placed.run.cells : 0;
      for (std::size_t cell = 0; cell < cells && width > 0; ++cell) {
        const std::span nodes(&mesh_.nodeIndices[placed.firstNode + cell * width], width);
        if (mesh_.facts || volumeSign(nodes, xyz) < 0.0) {
          const std::vector<int> old(nodes.begin(), nodes.end());
          std::transform(order.begin(), order.end(), nodes.begin(),
                         [&](std::uint8_t place) { return old[place]; });
          ++turned;
        }
      }
    }
    if (turned > 0 && !mesh_.facts) {
      report_.add(orvml::Fate::turned, counted(turned, "prism"), turned,
                  "had a negative volume and got the order of nodes that makes it positive");
    }
  }

  void setCells() {
    for (const Entity container : kContainers) {
      std::vector<Draft::Group> groups;
      std::size_t last = SIZE_MAX;
      for (const PlacedRun& placed : runs_) {
        if (placed.run.container != container) {
          continue;
        }
        if (placed.group != last) {
          groups.push_back({placed.run.form.shape, placed.run.form.nodesPerCell, {}});
          last = placed.group;
        }
        const auto begin =
            mesh_.nodeIndices.begin() + static_cast<std::ptrdiff_t>(placed.firstNode);
        const auto size = placed.run.cells * static_cast<std::size_t>(placed.run.form.nodesPerCell);
        auto& nodes = groups.back().nodeIndices;
        nodes.insert(nodes.end(), begin, begin + static_cast<std::ptrdiff_t>(size));
      }
      draft_.setCells(container, std::move(groups));
    }
    mesh_.nodeIndices = {};
  }

  /// What the facts tell of an array; none where they do not know it.
  [[nodiscard]] const DocumentFacts::Attribute* factsOfArray(Entity entity,
                                                             const std::string& name) const {
    if (!mesh_.facts) {
      return nullptr;
    }
    const auto& known = mesh_.facts->attributes;
    const auto found = std::find_if(known.begin(), known.end(), [&](const auto& attribute) {
      return attribute.entity == entity && attribute.storedName == name;
    });
    return found == known.end() ? nullptr : &*found;
  }

  /// Whether the facts say that some cells have the array: then others do not.
  [[nodiscard]] bool isKnownOfCells(const std::string& name) const {
    return std::any_of(kContainers.begin(), kContainers.end(),
                       [&](Entity container) { return factsOfArray(container, name) != nullptr; });
  }

  /// The values as integers, where all of them are.
  static Numbers asInts(Numbers values) {
    const auto* doubles = std::get_if<std::vector<double>>(&values);
    if (doubles == nullptr) {
      return values;
    }
    std::vector<int> ints;
    ints.reserve(doubles->size());
    for (const double value : *doubles) {
      if (!(value >= INT_MIN && value <= INT_MAX) || std::trunc(value) != value) {
        return values;
      }
      ints.push_back(static_cast<int>(value));
    }
    return ints;
  }

  static Numbers asDoubles(Numbers values) {
    const auto* ints = std::get_if<std::vector<int>>(&values);
    return ints == nullptr ? values : Numbers(std::vector<double>(ints->begin(), ints->end()));
  }

  void setAttribute(Entity entity, const std::string& name, Numbers values, StorableNames& names) {
    const DocumentFacts::Attribute* known = factsOfArray(entity, name);
    if (known == nullptr) {
      draft_.setAttribute(entity, names.of(name), std::move(values), false);
      return;
    }
    draft_.setAttribute(entity, names.of(known->name),
                        known->holdsInts ? asInts(std::move(values)) : asDoubles(std::move(values)),
                        known->mustBeTransmitted);
  }

  static void requireSize(const ForeignArray& array, std::size_t wanted) {
    const std::size_t size =
        std::visit([](const auto& values) { return values.size(); }, array.values);
    if (size != wanted || (!array.isGiven.empty() && array.isGiven.size() != wanted)) {
      throw FormatError("the array '" + array.name + "' has " + std::to_string(size) +
                        " values instead of " + std::to_string(wanted));
    }
  }

  void reportPadded(Entity entity, const ForeignArray& array, std::size_t missing, bool areInts) {
    report_.add(orvml::Fate::padded, groupName(entity) + " array '" + array.name + "'",
                static_cast<std::int64_t>(missing),
                "has no value for " + std::to_string(missing) + " of them, which get " +
                    (areInts ? "-1" : "nan"));
  }

  void setNodeArrays() {
    StorableNames names("the attribute of nodes", report_);
    for (ForeignArray& array : mesh_.nodeArrays) {
      requireSize(array, draft_.sizeOf(Entity::nodes));
      const auto missing =
          static_cast<std::size_t>(std::count(array.isGiven.begin(), array.isGiven.end(), false));
      if (missing > 0) {
        reportPadded(Entity::nodes, array, missing, array.values.index() == 0);
      }
      setAttribute(Entity::nodes, array.name, std::move(array.values), names);
    }
  }

  /// Attributes of containers without cells, for which no file has an array.
  void setEmptyArrays() {
    for (const auto& known :
         mesh_.facts ? mesh_.facts->attributes : std::vector<DocumentFacts::Attribute>()) {
      if (draft_.sizeOf(known.entity) == 0) {
        draft_.setAttribute(
            known.entity, known.name,
            known.holdsInts ? Numbers(std::vector<int>()) : Numbers(std::vector<double>()),
            known.mustBeTransmitted);
      }
    }
  }

  void setCellArrays() {
    setEmptyArrays();
    for (const Entity container : kContainers) {
      StorableNames names("the attribute of " + groupName(container), report_);
      for (const ForeignArray& array : mesh_.cellArrays) {
        requireSize(array, numberOfCells_);
        if (factsOfArray(container, array.name) != nullptr || !isKnownOfCells(array.name)) {
          setCellArray(container, array, names);
        }
      }
    }
  }

  void setCellArray(Entity container, const ForeignArray& array, StorableNames& names) {
    const std::size_t size = draft_.sizeOf(container);
    std::size_t missing = 0;
    for (const PlacedRun& placed : runs_) {
      for (std::size_t i = 0;
           placed.run.container == container && !array.isGiven.empty() && i < placed.run.cells;
           ++i) {
        missing += array.isGiven[placed.firstCell + i] ? 0U : 1U;
      }
    }
    if (size == 0 || missing == size) {
      return;
    }
    if (missing > 0) {
      reportPadded(container, array, missing, array.values.index() == 0);
    }
    setAttribute(container, array.name,
                 std::visit([&](const auto& all) { return Numbers(ofContainer(container, all)); },
                            array.values),
                 names);
  }

  template <class T>
  std::vector<T> ofContainer(Entity container, const std::vector<T>& all) const {
    std::vector<T> values;
    values.reserve(draft_.sizeOf(container));
    for (const PlacedRun& placed : runs_) {
      if (placed.run.container == container) {
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(placed.firstCell);
        values.insert(values.end(), begin, begin + static_cast<std::ptrdiff_t>(placed.run.cells));
      }
    }
    return values;
  }

  void setParameters() {
    const bool areKnown = mesh_.facts.has_value();
    const auto& scalars = areKnown ? mesh_.facts->parameters : mesh_.parameters;
    const auto& vectors = areKnown ? mesh_.facts->vectorParameters : mesh_.vectorParameters;
    StorableNames names("the parameter", report_);
    for (const auto& [name, value] : scalars) {
      draft_.setParameter(names.of(name), value);
    }
    StorableNames vectorNames("the vector parameter", report_);
    for (const auto& [name, values] : vectors) {
      draft_.setVectorParameter(vectorNames.of(name), values);
    }
  }

  ForeignMesh& mesh_;
  ConversionReport& report_;
  Draft draft_;
  std::vector<PlacedRun> runs_;  // group after group
  std::size_t numberOfCells_ = 0;
};

}  // namespace

void ForeignMesh::addRun(Entity container, CellForm form, std::size_t cells) {
  if (!runs.empty() && runs.back().container == container && runs.back().form == form) {
    runs.back().cells += cells;
  } else if (cells > 0) {
    runs.push_back({container, form, cells});
  }
}

Entity containerOf(Shape shape) noexcept {
  switch (shape) {
    case Shape::point:
    case Shape::line:
      return Entity::edges;
    case Shape::triangle:
    case Shape::quadrilateral:
      return Entity::faces;
    default:
      return Entity::elements;
  }
}

Draft draftOf(ForeignMesh mesh, const ImportOptions& options, ConversionReport& report) {
  return MeshDraft(mesh, options, report).take();
}

}  // namespace orvml_tool
