#include "raw_document.h"

#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <utility>

namespace orvml::python {

namespace {

/// NumPy's view of memory that somebody else owns.
template <class Value>
py::array arrayOf(std::span<const Value> values, std::vector<py::ssize_t> extents,
                  const py::object& owner) {
  // NumPy makes memory of its own for a null pointer, which an empty view may have.
  py::array_t<Value> array(std::move(extents), values.data(), owner);
  array.attr("setflags")(py::arg("write") = false);
  return array;
}

template <class Value>
py::array vectorOf(std::span<const Value> values, const py::object& owner) {
  return arrayOf(values, {static_cast<py::ssize_t>(values.size())}, owner);
}

py::list rowsOf(const Attributes& attributes, const py::object& owner) {
  py::list rows;
  for (const Attribute& attribute : attributes) {
    const auto toArray = [&owner](const auto& values) { return vectorOf(values, owner); };
    rows.append(py::make_tuple(textOf(attribute.name), std::visit(toArray, attribute.values),
                               attribute.mustBeTransmitted));
  }
  return rows;
}

py::list rowsOf(const CellsView& cells, const py::object& owner) {
  py::list rows;
  for (const CellGroup& group : cells.groups()) {
    rows.append(
        py::make_tuple(static_cast<int>(group.shape()),
                       arrayOf(group.nodeIndices(), {group.size(), group.nodesPerCell()}, owner)));
  }
  return rows;
}

py::list rowsOf(const Parameters& parameters) {
  py::list rows;
  for (const Parameter& parameter : parameters) {
    rows.append(py::make_tuple(textOf(parameter.name), parameter.value));
  }
  return rows;
}

/// Coordinates that are not known have no columns, and as many rows as there are nodes.
py::array pointsOf(const NodesView& nodes, const py::object& owner) {
  const bool areKnown = nodes.size() == 0 || !nodes.coordinates().empty();
  return arrayOf(nodes.coordinates(), {nodes.size(), areKnown ? nodes.dimension() : 0}, owner);
}

constexpr Entity kEntities[] = {Entity::nodes, Entity::edges, Entity::faces, Entity::elements};
constexpr const char* kEntityNames[] = {"nodes", "edges", "faces", "elements"};

/// A number of rows or columns as the format counts them.
int countOf(py::ssize_t count) {
  if (count > std::numeric_limits<int>::max()) {
    throw Error(Code::tooManyValues,
                std::to_string(count) + " nodes or cells are more than 32 bits count");
  }
  return static_cast<int>(count);
}

template <class Value>
std::span<const Value> spanOf(const py::array_t<Value>& array) {
  return {array.data(), static_cast<std::size_t>(array.size())};
}

}  // namespace

py::str textOf(std::string_view text) {
  PyObject* decoded =
      PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "surrogateescape");
  if (decoded == nullptr) {
    throw py::error_already_set();
  }
  return py::reinterpret_steal<py::str>(decoded);
}

std::string bytesOf(const py::handle& text) {
  PyObject* encoded = PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape");
  if (encoded == nullptr) {
    throw py::error_already_set();
  }
  return std::string(py::reinterpret_steal<py::bytes>(encoded));
}

py::dict toPython(const DocumentView& document, const py::object& owner) {
  const Identification& identification = document.identification();
  py::dict raw;
  raw["kind"] = document.kind() == Kind::input ? "input" : "output";
  raw["module"] = textOf(identification.moduleName);
  raw["module_format_version"] = textOf(identification.moduleFormatVersion);
  raw["creator"] = textOf(identification.creator);
  raw["dimension"] = document.dimension();
  raw["points"] = pointsOf(document.nodes(), owner);
  py::dict attributes;
  for (std::size_t i = 0; i < std::size(kEntities); ++i) {
    attributes[kEntityNames[i]] = rowsOf(document.attributes(kEntities[i]), owner);
    if (kEntities[i] != Entity::nodes) {
      raw[kEntityNames[i]] = rowsOf(document.cells(kEntities[i]), owner);
    }
  }
  raw["attributes"] = attributes;
  raw["parameters"] = rowsOf(document.parameters());
  raw["vector_parameters"] = rowsOf(document.vectorParameters(), owner);
  return raw;
}

HeldDocument::HeldDocument(const py::dict& raw)
    : view_([&]() -> std::variant<InputView, OutputView> {
        if (raw["kind"].cast<std::string>() == "input") {
          return InputView(parts(raw));
        }
        return OutputView(parts(raw));
      }()) {}

const DocumentView& HeldDocument::view() const noexcept {
  return std::visit([](const auto& view) -> const DocumentView& { return view; }, view_);
}

std::string_view HeldDocument::keep(const py::handle& text) {
  return texts_.emplace_back(bytesOf(text));
}

template <class Value>
py::array_t<Value> HeldDocument::keepArray(const py::handle& array) {
  using Contiguous = py::array_t<Value, py::array::c_style>;
  if (!py::isinstance<Contiguous>(array) || (py::reinterpret_borrow<py::array>(array).flags() &
                                             py::detail::npy_api::NPY_ARRAY_ALIGNED_) == 0) {
    throw py::type_error("an array is not contiguous, not aligned or of another type");
  }
  auto held = py::reinterpret_borrow<py::array_t<Value>>(array);
  arrays_.push_back(held);
  return held;
}

NodesView HeldDocument::nodes(const py::dict& raw, int dimension) {
  const auto points = keepArray<double>(raw["points"]);
  const auto size = countOf(points.shape(0));
  if (size != 0 && points.shape(1) == 0) {
    return NodesView::withoutCoordinates(size, dimension);
  }
  return {spanOf(points), dimension, attributes(raw["attributes"]["nodes"])};
}

CellsView HeldDocument::cells(const py::dict& raw, const char* entity) {
  std::vector<CellGroup> groups;
  for (const py::handle row : raw[entity]) {
    const auto [shape, array] = row.cast<std::pair<int, py::object>>();
    const auto indices = keepArray<int>(array);
    const auto width = countOf(indices.shape(1));
    groups.push_back(
        width == 0 ? CellGroup::withoutNodes(static_cast<Shape>(shape), countOf(indices.shape(0)))
                   : CellGroup(static_cast<Shape>(shape), width, spanOf(indices)));
  }
  return CellsView(std::move(groups), attributes(raw["attributes"][entity]));
}

Attributes HeldDocument::attributes(const py::handle& rows) {
  std::vector<Attribute> all;
  for (const py::handle row : rows) {
    const auto [name, array, isMandatory] = row.cast<std::tuple<py::str, py::array, bool>>();
    if (py::isinstance<py::array_t<int>>(array)) {
      all.emplace_back(keep(name), spanOf(keepArray<int>(array)), isMandatory);
    } else {
      all.emplace_back(keep(name), spanOf(keepArray<double>(array)), isMandatory);
    }
  }
  return Attributes(std::move(all));
}

Parameters HeldDocument::parameters(const py::handle& rows) {
  std::vector<Parameter> all;
  for (const py::handle row : rows) {
    const auto [name, value] = row.cast<std::pair<py::str, double>>();
    all.emplace_back(keep(name), value);
  }
  return Parameters(std::move(all));
}

DocumentParts HeldDocument::parts(const py::dict& raw) {
  DocumentParts parts;
  parts.identification = {keep(raw["module"]), keep(raw["module_format_version"]),
                          keep(raw["creator"])};
  parts.dimension = raw["dimension"].cast<int>();
  parts.nodes = nodes(raw, parts.dimension);
  parts.edges = cells(raw, "edges");
  parts.faces = cells(raw, "faces");
  parts.elements = cells(raw, "elements");
  parts.parameters = parameters(raw["parameters"]);
  parts.vectorParameters = attributes(raw["vector_parameters"]);
  return parts;
}

}  // namespace orvml::python
