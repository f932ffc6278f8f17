#include <orvml/shape.hpp>
#include <orvml/version.hpp>
#include <orvml/view.hpp>

#include "model/names.h"
#include "requirements.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

namespace orvml {

namespace {

/// Sorts named things, and refuses a name that two of them have.
template <class Named>
std::shared_ptr<const std::vector<Named>> sorted(std::vector<Named> named) {
  const auto isBefore = [](const Named& a, const Named& b) { return a.name < b.name; };
  if (!std::is_sorted(named.begin(), named.end(), isBefore)) {
    std::sort(named.begin(), named.end(), isBefore);
  }
  const auto twice = std::adjacent_find(
      named.begin(), named.end(), [](const Named& a, const Named& b) { return a.name == b.name; });
  if (twice != named.end()) {
    const std::string name(twice->name);
    throw Error(Code::nameTwice, "two entries are called \"" + name + "\"", {{}, name, {}});
  }
  return named.empty() ? nullptr : std::make_shared<const std::vector<Named>>(std::move(named));
}

template <class Named>
const Named* findIn(const std::vector<Named>& list, std::string_view name) noexcept {
  const auto found =
      std::lower_bound(list.begin(), list.end(), name,
                       [](const Named& entry, std::string_view key) { return entry.name < key; });
  return found == list.end() || found->name != name ? nullptr : &*found;
}

template <class Named>
const Named& entryOf(const std::vector<Named>& list, std::string_view name) {
  if (const Named* found = findIn(list, name)) {
    return *found;
  }
  const std::string text(name);
  throw Error(Code::nameNotFound, "nothing is called \"" + text + "\"", {{}, text, {}});
}

/// How many rows of `width` values there are.
int rowsOf(std::size_t values, int width, const char* what) {
  if (width < 1 || values % static_cast<std::size_t>(width) != 0) {
    throw Error(Code::sizesDisagree,
                std::to_string(values) + " values are no rows of " + std::to_string(width) + what);
  }
  (void)detail::require32(values);
  return detail::require32(values / static_cast<std::size_t>(width));
}

template <class Value>
std::span<const Value> valuesOf(const Attribute& attribute, const char* wanted, const char* found) {
  if (const auto* values = std::get_if<std::span<const Value>>(&attribute.values)) {
    return *values;
  }
  const std::string name(attribute.name);
  throw Error(Code::wrongValueType, "\"" + name + "\" holds " + found + ", not " + wanted,
              {{}, name, {}});
}

/// The parts of a view, to be changed and made into another one.
DocumentParts partsOf(const DocumentView& document) {
  return {document.identification(), document.dimension(),       document.nodes(),
          document.edges(),          document.faces(),           document.elements(),
          document.parameters(),     document.vectorParameters()};
}

/// Gives nodes or cells an attribute, in the place of one of its name.
template <class Things>
void add(Things& things, const Attribute& added) {
  std::vector<Attribute> list;
  std::copy_if(things.attributes().begin(), things.attributes().end(), std::back_inserter(list),
               [&](const Attribute& attribute) { return attribute.name != added.name; });
  list.push_back(added);
  things = things.withAttributes(Attributes(std::move(list)));
}

}  // namespace

std::string_view name(Shape shape) noexcept {
  constexpr std::array<std::string_view, 11> kNames = {
      "none",  "line",  "triangle", "quadrilateral", "tetrahedron", "hexahedron",
      "prism", "point", "pyramid",  "sphere",        "circle"};
  const auto index = static_cast<std::size_t>(shape);
  return index < kNames.size() ? kNames[index] : "unknown";
}

std::string_view version() noexcept { return orvml_io::kLibraryVersion; }

std::string_view formatVersion() noexcept { return orvml_io::kFormatVersion; }

std::size_t Attribute::size() const noexcept {
  const auto* ints = std::get_if<std::span<const int>>(&values);
  return ints != nullptr ? ints->size() : std::get_if<std::span<const double>>(&values)->size();
}

std::span<const int> Attribute::ints() const { return valuesOf<int>(*this, "ints", "doubles"); }

std::span<const double> Attribute::doubles() const {
  return valuesOf<double>(*this, "doubles", "ints");
}

Attributes::Attributes(std::vector<Attribute> attributes) : list_(sorted(std::move(attributes))) {}

const std::vector<Attribute>& Attributes::list() const noexcept {
  static const std::vector<Attribute> kNone;
  return list_ == nullptr ? kNone : *list_;
}

const Attribute* Attributes::find(std::string_view name) const noexcept {
  return findIn(list(), name);
}

const Attribute& Attributes::at(std::string_view name) const { return entryOf(list(), name); }

Parameters::Parameters(std::vector<Parameter> parameters) : list_(sorted(std::move(parameters))) {}

const std::vector<Parameter>& Parameters::list() const noexcept {
  static const std::vector<Parameter> kNone;
  return list_ == nullptr ? kNone : *list_;
}

std::optional<double> Parameters::find(std::string_view name) const noexcept {
  const Parameter* found = findIn(list(), name);
  return found == nullptr ? std::nullopt : std::optional<double>(found->value);
}

double Parameters::at(std::string_view name) const { return entryOf(list(), name).value; }

NodesView::NodesView(std::span<const double> coordinates, int dimension, Attributes attributes)
    : coordinates_(coordinates),
      size_(rowsOf(coordinates.size(), dimension, " coordinates")),
      dimension_(dimension),
      attributes_(std::move(attributes)) {}

NodesView NodesView::withoutCoordinates(int size, int dimension) {
  NodesView nodes;
  nodes.size_ = std::max(size, 0);
  nodes.dimension_ = std::max(dimension, 0);
  return nodes;
}

NodesView NodesView::withAttributes(Attributes attributes) const {
  NodesView nodes = *this;
  nodes.attributes_ = std::move(attributes);
  return nodes;
}

NodesView NodesView::range(int first, int last) const {
  if (first < 0 || last < first || last > size_) {
    throwOutOfRange();
  }
  const auto begin = static_cast<std::size_t>(first);
  const auto count = static_cast<std::size_t>(last - first);
  std::vector<Attribute> parts;
  for (Attribute attribute : attributes_) {
    std::visit(
        [&](auto values) {
          // One that has not a value for each node has no part that belongs to these.
          if (values.size() == static_cast<std::size_t>(size_)) {
            attribute.values = values.subspan(begin, count);
            parts.push_back(attribute);
          }
        },
        attribute.values);
  }
  NodesView nodes = *this;
  nodes.size_ = last - first;
  if (!coordinates_.empty()) {
    const auto width = static_cast<std::size_t>(dimension_);
    nodes.coordinates_ = coordinates_.subspan(begin * width, count * width);
  }
  nodes.attributes_ = Attributes(std::move(parts));
  return nodes;
}

void NodesView::throwOutOfRange() { throw std::out_of_range("there is no such node"); }

CellGroup::CellGroup(Shape shape, int nodesPerCell, std::span<const int> nodeIndices)
    : shape_(shape),
      nodesPerCell_(nodesPerCell),
      size_(rowsOf(nodeIndices.size(), nodesPerCell, " node indices")),
      nodeIndices_(nodeIndices) {}

CellGroup CellGroup::withoutNodes(Shape shape, int size) {
  CellGroup group;
  group.shape_ = shape;
  group.size_ = std::max(size, 0);
  return group;
}

void CellGroup::throwOutOfRange() { throw std::out_of_range("there is no such cell"); }

CellsView::CellsView(std::vector<CellGroup> groups, Attributes attributes)
    : attributes_(std::move(attributes)) {
  std::size_t cells = 0;
  std::size_t indices = 0;
  for (const CellGroup& group : groups) {
    cells += static_cast<std::size_t>(group.size());
    indices += group.nodeIndices().size();
  }
  (void)detail::require32(indices);
  size_ = detail::require32(cells);
  if (!groups.empty()) {
    (void)detail::require32(groups.size());
    groups_ = std::make_shared<const std::vector<CellGroup>>(std::move(groups));
  }
}

std::span<const CellGroup> CellsView::groups() const noexcept {
  return groups_ == nullptr ? std::span<const CellGroup>() : std::span(*groups_);
}

CellsView CellsView::withAttributes(Attributes attributes) const {
  CellsView cells = *this;
  cells.attributes_ = std::move(attributes);
  return cells;
}

DocumentView::DocumentView(Kind kind, DocumentParts parts)
    : kind_(kind), parts_(std::make_shared<const DocumentParts>(std::move(parts))) {}

const CellsView& DocumentView::cells(Entity entity) const noexcept {
  static const CellsView kNone;
  switch (entity) {
    case Entity::edges:
      return edges();
    case Entity::faces:
      return faces();
    case Entity::elements:
      return elements();
    default:
      return kNone;
  }
}

const Attributes& DocumentView::attributes(Entity entity) const noexcept {
  return entity == Entity::nodes ? nodes().attributes() : cells(entity).attributes();
}

DocumentView withAttribute(const DocumentView& document, Entity entity,
                           const Attribute& attribute) {
  DocumentParts parts = partsOf(document);
  switch (entity) {
    case Entity::nodes:
      add(parts.nodes, attribute);
      break;
    case Entity::edges:
      add(parts.edges, attribute);
      break;
    case Entity::faces:
      add(parts.faces, attribute);
      break;
    case Entity::elements:
      add(parts.elements, attribute);
      break;
  }
  if (document.kind() == Kind::input) {
    return InputView(std::move(parts));
  }
  return OutputView(std::move(parts));
}

}  // namespace orvml
