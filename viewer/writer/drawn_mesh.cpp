#include "drawn_mesh.h"

#include <orvml/cell_faces.hpp>
#include <orvml/skin.hpp>

#include "decimation.h"
#include "words.h"

#include <algorithm>
#include <utility>

namespace orvml_report {

namespace {

using orvml::Entity;

/// So many of a number of things, evenly; all counts have 31 bits.
bool isAmongKept(std::int64_t index, std::int64_t count, std::int64_t kept) noexcept {
  return (index + 1) * kept / count > index * kept / count;
}

std::size_t asSize(std::int64_t limit) {
  return static_cast<std::size_t>(std::max<std::int64_t>(limit, 0));
}

DrawnCells thinned(const DrawnCells& cells, std::size_t most) {
  DrawnCells left{cells.entity, false, {}, {}, {}};
  std::vector<int> numbers;
  const auto count = static_cast<std::int64_t>(cells.size());
  std::size_t cell = 0;
  for (const DrawnGroup& group : cells.groups) {
    DrawnGroup part{group.form, {}, {}};
    const auto width = static_cast<std::size_t>(group.form.nodesPerCell);
    for (std::size_t i = 0; i < group.size(); ++i, ++cell) {
      if (isAmongKept(static_cast<std::int64_t>(cell), count, static_cast<std::int64_t>(most))) {
        const auto nodes = group.nodes().subspan(i * width, width);
        part.own.insert(part.own.end(), nodes.begin(), nodes.end());
        numbers.push_back(cells.numberOf(cell));
      }
    }
    if (!part.own.empty()) {
      left.groups.push_back(std::move(part));
    }
  }
  left.numbers = std::move(numbers);
  return left;
}

std::vector<orvml::SkinFaces> skinOf(const DrawnCells& elements, const NodePlaces& places) {
  std::vector<orvml::CellGroup> groups;
  for (const DrawnGroup& group : elements.groups) {
    groups.emplace_back(group.form.shape, group.form.nodesPerCell, group.nodes());
  }
  return orvml::skinOf(orvml::CellsView(std::move(groups)), static_cast<int>(places.size()));
}

/// Whether its cells are faces, which are seen from both sides.
bool isFlat(const DrawnGroup& group) { return orvml::facesOf(group.form).empty(); }

/// Marks the sides of each element that are outside.
void markOuter(DrawnCells& elements, std::span<const orvml::SkinFaces> skin) {
  elements.outer.assign(elements.size(), 0);
  for (const orvml::SkinFaces& faces : skin) {
    for (std::size_t face = 0; face < faces.elements.size(); ++face) {
      std::uint8_t& bits = elements.outer[static_cast<std::size_t>(faces.elements[face])];
      bits = static_cast<std::uint8_t>(bits | 1U << faces.sides[face]);
    }
  }
  std::size_t first = 0;
  for (const DrawnGroup& group : elements.groups) {
    if (isFlat(group)) {
      std::fill_n(elements.outer.begin() + static_cast<std::ptrdiff_t>(first), group.size(),
                  std::uint8_t{1});
    }
    first += group.size();
  }
}

/// The outer faces as cells of their own.
DrawnCells outerFaces(const DrawnCells& elements, std::vector<orvml::SkinFaces> skin) {
  DrawnCells cells{Entity::elements, true, {}, {}, {}};
  std::vector<int> numbers;
  for (orvml::SkinFaces& faces : skin) {
    std::transform(
        faces.elements.begin(), faces.elements.end(), std::back_inserter(numbers),
        [&](int element) { return elements.numberOf(static_cast<std::size_t>(element)); });
    cells.groups.push_back({faces.form, {}, std::move(faces.nodes)});
  }
  std::size_t first = 0;
  for (const DrawnGroup& group : elements.groups) {
    if (isFlat(group)) {
      for (std::size_t cell = first; cell < first + group.size(); ++cell) {
        numbers.push_back(elements.numberOf(cell));
      }
      cells.groups.push_back(group);
    }
    first += group.size();
  }
  cells.numbers = std::move(numbers);
  return cells;
}

void tellDecimated(const DrawnCells& before, std::size_t flat, std::size_t after, double width,
                   std::vector<std::string>& notes) {
  const std::string what = before.isSkin ? "outer face" : "face";
  const bool isCurved = flat != before.size();
  notes.push_back("The " + counted(static_cast<std::int64_t>(before.size()), what) +
                  (isCurved ? " with " + grouped(static_cast<std::int64_t>(flat)) + " flat parts"
                            : std::string()) +
                  " are shown as " + grouped(static_cast<std::int64_t>(after)) +
                  ": nodes closer than " + rounded(width) + " are drawn as one.");
}

/// Makes fewer faces of some cells that are faces, all by one grid.
void decimateAll(std::span<DrawnCells* const> cells, const NodePlaces& places, std::size_t most,
                 std::vector<std::string>& notes) {
  std::vector<FlatSurface> surfaces;
  std::vector<std::size_t> flat;
  for (const DrawnCells* one : cells) {
    surfaces.push_back(flattened(*one));
    flat.push_back(surfaces.back().size());
  }
  const double width = decimate(surfaces, places, most);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (flat[i] > 0) {
      tellDecimated(*cells[i], flat[i], surfaces[i].size(), width, notes);
      *cells[i] = cellsOf(surfaces[i], cells[i]->entity, cells[i]->isSkin);
    }
  }
}

/// Chooses how elements and faces are shown, within the limits.
class ShownSurfaces {
 public:
  ShownSurfaces(DrawnCells elements, DrawnCells faces, const NodePlaces& places,
                const ReportLimits& limits, std::vector<std::string>& notes)
      : elements_(std::move(elements)),
        faces_(std::move(faces)),
        places_(places),
        mostElements_(asSize(limits.elements)),
        mostFaces_(asSize(limits.faces)),
        notes_(notes) {
    std::vector<orvml::SkinFaces> skin = skinOf(elements_, places_);
    DrawnCells outer = outerFaces(elements_, skin);
    const std::size_t outerCount = numberOfFlatFaces(outer);
    const std::size_t faceCount = numberOfFlatFaces(faces_);
    if (canBeWhole(outerCount, faceCount)) {
      markOuter(elements_, skin);
      if (outerCount + faceCount > mostFaces_) {
        DrawnCells* const all[] = {&faces_};
        decimateAll(all, places_, mostFaces_ - outerCount, notes_);
      }
      return;
    }
    tellHollow(outer.size());
    elements_ = std::move(outer);
    if (outerCount + faceCount > mostFaces_) {
      DrawnCells* const all[] = {&elements_, &faces_};
      decimateAll(all, places_, mostFaces_, notes_);
    }
  }

  [[nodiscard]] DrawnCells takeElements() { return std::move(elements_); }
  [[nodiscard]] DrawnCells takeFaces() { return std::move(faces_); }

 private:
  /// Faces that are decimated get at least half of all, so that something is left of them.
  [[nodiscard]] bool canBeWhole(std::size_t outer, std::size_t faces) const noexcept {
    return elements_.size() <= mostElements_ &&
           (outer + faces <= mostFaces_ || outer <= mostFaces_ / 2);
  }

  void tellHollow(std::size_t outer) {
    notes_.push_back("Of the " + counted(static_cast<std::int64_t>(elements_.size()), "element") +
                     " the " + counted(static_cast<std::int64_t>(outer), "outer face") +
                     " are shown alone: clip planes show a hollow body.");
  }

  DrawnCells elements_;
  DrawnCells faces_;
  const NodePlaces& places_;
  std::size_t mostElements_;
  std::size_t mostFaces_;
  std::vector<std::string>& notes_;
};

DrawnCells shownEdges(DrawnCells edges, const ReportLimits& limits,
                      std::vector<std::string>& notes) {
  const std::size_t most = asSize(limits.edges);
  if (edges.size() <= most) {
    return edges;
  }
  notes.push_back("Of the " + grouped(static_cast<std::int64_t>(edges.size())) + " edges " +
                  grouped(limits.edges) + " are shown, evenly chosen.");
  return thinned(edges, most);
}

/// The nodes with a place, or so many of them, evenly chosen.
std::vector<int> placedNodes(const NodePlaces& places, std::int64_t most) {
  std::vector<int> nodes;
  std::int64_t placed = 0;
  for (int node = 0; places.numberPlaced() > 0 && node < places.size(); ++node) {
    if (places.isPlaced(node) &&
        (places.numberPlaced() <= most || isAmongKept(placed, places.numberPlaced(), most))) {
      nodes.push_back(node);
    }
    placed += places.isPlaced(node) ? 1 : 0;
  }
  return nodes;
}

std::vector<int> usedNodes(std::span<const DrawnCells> cells, const NodePlaces& places) {
  std::vector<bool> isUsed(asSize(places.size()));
  for (const DrawnCells& some : cells) {
    for (const DrawnGroup& group : some.groups) {
      for (const int node : group.nodes()) {
        isUsed[static_cast<std::size_t>(node)] = true;
      }
    }
  }
  std::vector<int> nodes;
  for (std::size_t node = 0; node < isUsed.size(); ++node) {
    if (isUsed[node]) {
      nodes.push_back(static_cast<int>(node));
    }
  }
  return nodes;
}

void tellUnplaced(const NodePlaces& places, std::vector<std::string>& notes) {
  if (places.size() > 0 && places.numberPlaced() == 0) {
    notes.push_back("No node has coordinates that can be drawn.");
  } else if (!places.areAllPlaced()) {
    const std::int64_t count = places.size() - places.numberPlaced();
    notes.push_back(counted(count, "node") + (count == 1 ? " is" : " are") +
                    " not drawn: the coordinates are not finite.");
  }
}

void chooseNodes(DrawnMesh& mesh, const NodePlaces& places, const ReportLimits& limits,
                 std::vector<std::string>& notes) {
  tellUnplaced(places, notes);
  const bool doFit = places.numberPlaced() <= limits.nodes;
  if (doFit && places.areAllPlaced()) {
    return;
  }
  if (doFit || mesh.cells.empty()) {
    mesh.nodes = placedNodes(places, limits.nodes);
  } else {
    mesh.nodes = usedNodes(mesh.cells, places);
  }
  const auto shown = static_cast<std::int64_t>(mesh.nodes->size());
  if (shown < places.numberPlaced()) {
    notes.push_back("Of the " + grouped(places.size()) + " nodes " + grouped(shown) +
                    (mesh.cells.empty() ? " are shown, evenly chosen."
                                        : " are in the page: those of the cells that are drawn."));
  }
}

}  // namespace

const DrawnCells* DrawnMesh::find(orvml::Entity entity) const noexcept {
  const auto found = std::find_if(cells.begin(), cells.end(),
                                  [&](const DrawnCells& some) { return some.entity == entity; });
  return found == cells.end() ? nullptr : &*found;
}

DrawnMesh drawnMesh(const StoredMesh& stored, const NodePlaces& places, const ReportLimits& limits,
                    std::vector<std::string>& notes) {
  const auto drawable = [&](Entity entity) {
    return drawableCells(entity, stored.of(entity), places, notes);
  };
  DrawnMesh mesh;
  mesh.cells.push_back(shownEdges(drawable(Entity::edges), limits, notes));
  DrawnCells faces = drawable(Entity::faces);
  ShownSurfaces surfaces(drawable(Entity::elements), std::move(faces), places, limits, notes);
  mesh.cells.push_back(surfaces.takeFaces());
  mesh.cells.push_back(surfaces.takeElements());
  std::erase_if(mesh.cells, [](const DrawnCells& cells) { return cells.groups.empty(); });
  chooseNodes(mesh, places, limits, notes);
  return mesh;
}

}  // namespace orvml_report
