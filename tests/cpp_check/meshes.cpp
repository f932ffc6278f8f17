#include "cpp_check/meshes.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <random>
#include <stdexcept>

namespace orvml_io_tests {

using orvml::Shape;

namespace {

orvml::CellsView viewOf(const std::vector<TestCells>& cells, orvml::Attributes attributes) {
  std::vector<orvml::CellGroup> groups;
  for (const TestCells& group : cells) {
    const std::span<const int> indices(group.indices);
    groups.emplace_back(group.shape, group.nodes, indices);
  }
  return orvml::CellsView(std::move(groups), std::move(attributes));
}

orvml::Attributes viewOf(const std::vector<TestAttribute>& attributes) {
  std::vector<orvml::Attribute> views;
  for (const TestAttribute& attribute : attributes) {
    const std::span<const double> values(attribute.values);
    views.emplace_back(std::string_view(attribute.name), values, attribute.mustBeTransmitted);
  }
  return orvml::Attributes(std::move(views));
}

using Faces = std::vector<std::string>;
const Faces kTetrahedron = {"013", "123", "203", "021"};
const Faces kHexahedron = {"0473", "1265", "0154", "3762", "0321", "4567"};
const Faces kPrism = {"021", "345", "0143", "1254", "2035"};
const Faces kPyramid = {"0321", "014", "124", "234", "304"};
const Faces kHexahedronEdges = {"01", "12", "23", "30", "45", "56",
                                "67", "74", "04", "15", "26", "37"};

Faces operator+(Faces a, const Faces& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

/// A mesh while it is made: nodes are found again by where they are.
class Builder {
 public:
  explicit Builder(int dimension) {
    mesh_.dimension = dimension;
    mesh_.coordinatesPerNode = dimension;
  }

  int node(const std::array<double, 3>& at) {
    std::array<long long, 3> key{};
    std::transform(at.begin(), at.end(), key.begin(),
                   [](double value) { return std::llround(value * 720720); });
    const auto [found, isNew] = nodes_.try_emplace(key, mesh_.nodes());
    if (isNew) {
      mesh_.x.insert(mesh_.x.end(), at.begin(), at.begin() + mesh_.coordinatesPerNode);
    }
    return found->second;
  }

  [[nodiscard]] std::array<double, 3> place(int node) const {
    std::array<double, 3> at = {0, 0, 0};
    const auto width = static_cast<std::size_t>(mesh_.coordinatesPerNode);
    std::copy_n(mesh_.x.begin() + static_cast<std::ptrdiff_t>(width) * node, width, at.begin());
    return at;
  }

  int middle(const std::vector<int>& corners) {
    std::array<double, 3> sum = {0, 0, 0};
    for (const int corner : corners) {
      const auto at = place(corner);
      for (std::size_t i = 0; i < 3; ++i) {
        sum[i] += at[i] / static_cast<double>(corners.size());
      }
    }
    return node(sum);
  }

  void add(const FormOfShape& form, std::vector<int> corners) {
    auto& cells = mesh_.dimension == 3 && !form.faces.empty() ? mesh_.elements : mesh_.faces;
    addTo(cells, form, corners);
  }

  void addTo(std::vector<TestCells>& groups, const FormOfShape& form, std::vector<int> cell) {
    const std::vector<int> corners = cell;
    for (const std::string& of : form.middles) {
      std::vector<int> parents;
      for (const char digit : of) {
        parents.push_back(corners[static_cast<std::size_t>(digit - '0')]);
      }
      cell.push_back(middle(parents));
    }
    auto found = std::find_if(groups.begin(), groups.end(), [&](const TestCells& group) {
      return group.shape == form.shape && group.nodes == form.nodes;
    });
    if (found == groups.end()) {
      found = groups.insert(groups.end(), {form.shape, form.nodes, {}});
    }
    found->indices.insert(found->indices.end(), cell.begin(), cell.end());
  }

  /// Makes faces of all that bound one element only.
  void addBoundary() {
    std::map<std::vector<int>, std::pair<int, std::vector<int>>> sides;
    bool isQuadratic = false;
    for (const TestCells& group : mesh_.elements) {
      const FormOfShape& form = formOf(group.shape, group.nodes);
      isQuadratic = !form.middles.empty();
      for (std::size_t at = 0; at < group.indices.size();
           at += static_cast<std::size_t>(group.nodes)) {
        for (const std::string& face : form.faces) {
          std::vector<int> corners;
          for (const char digit : face) {
            corners.push_back(group.indices[at + static_cast<std::size_t>(digit - '0')]);
          }
          std::vector<int> sorted = corners;
          std::sort(sorted.begin(), sorted.end());
          auto& side = sides[sorted];
          ++side.first;
          side.second = corners;
        }
      }
    }
    for (const auto& [sorted, side] : sides) {
      if (side.first == 1) {
        const bool isTriangle = side.second.size() == 3;
        addTo(mesh_.faces,
              formOf(isTriangle ? Shape::triangle : Shape::quadrilateral,
                     (isTriangle ? 3 : 4) * (isQuadratic ? 2 : 1)),
              side.second);
      }
    }
  }

  TestMesh take() { return std::move(mesh_); }

 private:
  TestMesh mesh_;
  std::map<std::array<long long, 3>, int> nodes_;
};

/// How a cube is cut into cells of a shape: node 8 is its centre.
const std::vector<std::vector<int>>& cutsOf(Shape shape) {
  static const std::vector<std::vector<int>> kCube = {{0, 1, 2, 3, 4, 5, 6, 7}};
  static const std::vector<std::vector<int>> kSix = {{0, 1, 2, 6}, {0, 2, 3, 6}, {0, 3, 7, 6},
                                                     {0, 7, 4, 6}, {0, 4, 5, 6}, {0, 5, 1, 6}};
  static const std::vector<std::vector<int>> kHalves = {{0, 1, 2, 4, 5, 6}, {0, 2, 3, 4, 6, 7}};
  static const std::vector<std::vector<int>> kToCentre = {{0, 3, 7, 4, 8}, {1, 5, 6, 2, 8},
                                                          {0, 4, 5, 1, 8}, {3, 2, 6, 7, 8},
                                                          {0, 1, 2, 3, 8}, {4, 7, 6, 5, 8}};
  static const std::vector<std::vector<int>> kSquare = {{0, 1, 2, 3}};
  static const std::vector<std::vector<int>> kTriangles = {{0, 1, 2}, {0, 2, 3}};
  switch (shape) {
    case Shape::triangle:
      return kTriangles;
    case Shape::quadrilateral:
      return kSquare;
    case Shape::tetrahedron:
      return kSix;
    case Shape::hexahedron:
      return kCube;
    case Shape::prism:
      return kHalves;
    default:
      return kToCentre;
  }
}

}  // namespace

orvml::DocumentParts TestMesh::parts() const {
  const auto of = [&](orvml::Entity entity) {
    return viewOf(attributes[static_cast<std::size_t>(entity)]);
  };
  const std::span<const double> coordinates(x);
  orvml::DocumentParts parts;
  parts.identification = {"TESTS", "1.0", creator};
  parts.dimension = dimension;
  parts.nodes = hasCoordinates
                    ? orvml::NodesView(coordinates, coordinatesPerNode, of(orvml::Entity::nodes))
                    : orvml::NodesView::withoutCoordinates(nodes(), dimension);
  parts.edges = viewOf(edges, of(orvml::Entity::edges));
  parts.faces = viewOf(faces, of(orvml::Entity::faces));
  parts.elements = viewOf(elements, of(orvml::Entity::elements));
  std::vector<orvml::Parameter> numbers;
  for (const auto& [name, value] : parameters) {
    numbers.emplace_back(std::string_view(name), value);
  }
  parts.parameters = orvml::Parameters(std::move(numbers));
  parts.vectorParameters = viewOf(vectors);
  return parts;
}

const std::vector<FormOfShape>& formsOfShapes() {
  static const std::vector<FormOfShape> kForms = {
      {"Triangle3", Shape::triangle, 3, {}, {}},
      {"Triangle6", Shape::triangle, 6, {}, {"01", "12", "20"}},
      {"Quadrilateral4", Shape::quadrilateral, 4, {}, {}},
      {"Quadrilateral6", Shape::quadrilateral, 6, {}, {"01", "23"}},
      {"Quadrilateral8", Shape::quadrilateral, 8, {}, {"01", "12", "23", "30"}},
      {"Quadrilateral9", Shape::quadrilateral, 9, {}, {"01", "12", "23", "30", "0123"}},
      {"Tetrahedron4", Shape::tetrahedron, 4, kTetrahedron, {}},
      {"Tetrahedron10", Shape::tetrahedron, 10, kTetrahedron, {"01", "12", "20", "03", "13", "23"}},
      {"Hexahedron8", Shape::hexahedron, 8, kHexahedron, {}},
      {"Hexahedron20", Shape::hexahedron, 20, kHexahedron, kHexahedronEdges},
      {"Hexahedron24", Shape::hexahedron, 24, kHexahedron,
       kHexahedronEdges + Faces{"0473", "1265", "0154", "3762"}},
      {"Hexahedron27", Shape::hexahedron, 27, kHexahedron,
       kHexahedronEdges + Faces{"0473", "1265", "0154", "3762", "0321", "4567", "01234567"}},
      {"Prism6", Shape::prism, 6, kPrism, {}},
      {"Prism12", Shape::prism, 12, kPrism, {"01", "12", "20", "34", "45", "53"}},
      {"Prism15", Shape::prism, 15, kPrism, {"01", "12", "20", "34", "45", "53", "03", "14", "25"}},
      {"Prism18",
       Shape::prism,
       18,
       kPrism,
       {"01", "12", "20", "34", "45", "53", "03", "14", "25", "0143", "1254", "2035"}},
      {"Pyramid5", Shape::pyramid, 5, kPyramid, {}},
      {"Pyramid13",
       Shape::pyramid,
       13,
       kPyramid,
       {"01", "12", "23", "30", "04", "14", "24", "34"}}};
  return kForms;
}

const FormOfShape& formOf(Shape shape, int nodes) {
  for (const FormOfShape& form : formsOfShapes()) {
    if (form.shape == shape && form.nodes == nodes) {
      return form;
    }
  }
  throw std::logic_error("no such form of a shape");
}

TestMesh blockOf(const FormOfShape& form, int n) {
  const bool isFlat = form.faces.empty();
  Builder builder(isFlat ? 2 : 3);
  for (int z = 0; z < (isFlat ? 1 : n); ++z) {
    for (int y = 0; y < n; ++y) {
      for (int x = 0; x < n; ++x) {
        const auto at = [&](double dx, double dy, double dz) {
          return std::array<double, 3>{x + dx, y + dy, isFlat ? 0 : z + dz};
        };
        const std::vector<std::array<double, 3>> corners = {
            at(0, 0, 0), at(1, 0, 0), at(1, 1, 0), at(0, 1, 0),      at(0, 0, 1),
            at(1, 0, 1), at(1, 1, 1), at(0, 1, 1), at(0.5, 0.5, 0.5)};
        for (const std::vector<int>& cut : cutsOf(form.shape)) {
          std::vector<int> nodes;
          for (const int corner : cut) {
            nodes.push_back(builder.node(corners[static_cast<std::size_t>(corner)]));
          }
          builder.add(form, nodes);
        }
      }
    }
  }
  if (!isFlat) {
    builder.addBoundary();
  }
  return builder.take();
}

TestMesh surfaceOf(const TestMesh& block) {
  TestMesh surface = block;
  surface.elements.clear();
  surface.x.clear();
  std::map<int, int> numbers;
  for (TestCells& group : surface.faces) {
    for (int& node : group.indices) {
      const auto [found, isNew] = numbers.try_emplace(node, surface.nodes());
      if (isNew) {
        const auto from = block.x.begin() + 3 * static_cast<std::ptrdiff_t>(node);
        surface.x.insert(surface.x.end(), from, from + 3);
      }
      node = found->second;
    }
  }
  return surface;
}

TestMesh cellOf(const FormOfShape& form) {
  static const std::vector<std::array<double, 3>> kCube = {
      {0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
  static const std::map<Shape, std::vector<std::array<double, 3>>> kOthers = {
      {Shape::triangle, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}},
      {Shape::tetrahedron, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
      {Shape::prism, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}}},
      {Shape::pyramid, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}}}};
  const auto other = kOthers.find(form.shape);
  const auto& places = other == kOthers.end() ? kCube : other->second;
  Builder builder(form.faces.empty() ? 2 : 3);
  std::vector<int> nodes;
  for (int corner = 0; corner < form.corners(); ++corner) {
    nodes.push_back(builder.node(places[static_cast<std::size_t>(corner)]));
  }
  builder.add(form, nodes);
  return builder.take();
}

void warp(TestMesh& mesh) {
  const auto width = static_cast<std::size_t>(mesh.coordinatesPerNode);
  for (std::size_t node = 0; node < mesh.x.size(); node += width) {
    double* at = mesh.x.data() + node;
    const double x = at[0];
    const double y = at[1];
    const double z = width == 3 ? at[2] : 0;
    at[0] = 2 * x + 0.1 * std::sin(y + z);
    at[1] = y + 0.1 * std::sin(x - z);
    if (width == 3) {
      at[2] = 0.5 * z + 0.1 * std::sin(x + y);
    }
  }
}

void renumber(TestMesh& mesh, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<int> to(static_cast<std::size_t>(mesh.nodes()));
  std::iota(to.begin(), to.end(), 0);
  std::shuffle(to.begin(), to.end(), random);
  const auto width = static_cast<std::size_t>(mesh.coordinatesPerNode);
  std::vector<double> moved(mesh.x.size());
  for (std::size_t node = 0; node < to.size(); ++node) {
    std::copy_n(mesh.x.begin() + static_cast<std::ptrdiff_t>(node * width), width,
                moved.begin() + static_cast<std::ptrdiff_t>(width) * to[node]);
  }
  mesh.x = std::move(moved);
  for (auto* kind : {&mesh.edges, &mesh.faces, &mesh.elements}) {
    for (TestCells& group : *kind) {
      for (int& node : group.indices) {
        node = to[static_cast<std::size_t>(node)];
      }
    }
  }
}

std::vector<std::string> codesOf(const orvml::CheckReport& report) {
  std::vector<std::string> codes;
  for (const orvml::CheckFinding& finding : report.findings) {
    codes.emplace_back(finding.code);
  }
  return codes;
}

std::string toldOf(const orvml::CheckReport& report) {
  std::string told;
  for (const orvml::CheckFinding& finding : report.findings) {
    told += std::string(finding.code) + ": " + finding.sentence + "\n";
  }
  return told;
}

}  // namespace orvml_io_tests
