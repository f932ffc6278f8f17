#include <orvml/cell_faces.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace orvml {

namespace {

using Places = std::vector<std::uint8_t>;

struct SolidShape {
  Shape shape;
  std::vector<Places> faces;  // their corners
  std::vector<Places> edges;  // in the order of the nodes in their middle
};

const std::vector<SolidShape>& solidShapes() {
  static const std::vector<SolidShape> kShapes = {
      {Shape::tetrahedron,
       {{0, 1, 3}, {1, 2, 3}, {2, 0, 3}, {0, 2, 1}},
       {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}}},
      {Shape::hexahedron,
       {{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {3, 7, 6, 2}, {0, 3, 2, 1}, {4, 5, 6, 7}},
       {{0, 1},
        {1, 2},
        {2, 3},
        {3, 0},
        {4, 5},
        {5, 6},
        {6, 7},
        {7, 4},
        {0, 4},
        {1, 5},
        {2, 6},
        {3, 7}}},
      {Shape::prism,
       {{0, 2, 1}, {3, 4, 5}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}},
       {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}, {0, 3}, {1, 4}, {2, 5}}},
      {Shape::pyramid,
       {{0, 3, 2, 1}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}},
       {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 4}, {1, 4}, {2, 4}, {3, 4}}}};
  return kShapes;
}

/// What a form has beside its corners.
struct SolidForm {
  CellForm form;
  std::size_t corners;
  std::size_t middles;  // of the first edges
  Places centres;       // of each face; 0 for those without
};

const std::vector<SolidForm>& solidForms() {
  static const std::vector<SolidForm> kForms = {
      {{Shape::tetrahedron, 4}, 4, 0, {}},
      {{Shape::tetrahedron, 10}, 4, 6, {}},
      {{Shape::hexahedron, 8}, 8, 0, {}},
      {{Shape::hexahedron, 20}, 8, 12, {}},
      {{Shape::hexahedron, 24}, 8, 12, {20, 21, 22, 23, 0, 0}},
      {{Shape::hexahedron, 27}, 8, 12, {20, 21, 22, 23, 24, 25}},
      {{Shape::prism, 6}, 6, 0, {}},
      {{Shape::prism, 12}, 6, 6, {}},
      {{Shape::prism, 15}, 6, 9, {}},
      {{Shape::prism, 18}, 6, 9, {0, 0, 15, 16, 17}},
      {{Shape::pyramid, 5}, 5, 0, {}},
      {{Shape::pyramid, 13}, 5, 8, {}},
      {{Shape::pyramid, 19}, 5, 8, {13, 14, 15, 16, 17}}};
  return kForms;
}

/// The nodes in the middle of the edges of a face that have one. Faces of prisms without nodes in
/// the middle of their upright edges begin with an edge that has one, as the form of a
/// quadrilateral with two such nodes does.
void addMiddles(CellFace& face, const SolidForm& solid, const std::vector<Places>& edges) {
  for (std::size_t i = 0; i < face.corners; ++i) {
    const std::uint8_t from = face.nodes[i];
    const std::uint8_t to = face.nodes[(i + 1) % face.corners];
    const auto found = std::find_if(edges.begin(), edges.end(), [&](const Places& edge) {
      return (edge[0] == from && edge[1] == to) || (edge[0] == to && edge[1] == from);
    });
    const auto edge = static_cast<std::size_t>(found - edges.begin());
    if (edge < solid.middles) {
      face.nodes.push_back(static_cast<std::uint8_t>(solid.corners + edge));
    }
  }
}

}  // namespace

std::vector<CellFace> facesOf(CellForm form) {
  const auto& forms = solidForms();
  const auto solid = std::find_if(forms.begin(), forms.end(),
                                  [&](const SolidForm& known) { return known.form == form; });
  std::vector<CellFace> faces;
  if (solid == forms.end()) {
    return faces;
  }
  const auto shape =
      std::find_if(solidShapes().begin(), solidShapes().end(),
                   [&](const SolidShape& known) { return known.shape == form.shape; });
  for (std::size_t i = 0; i < shape->faces.size(); ++i) {
    CellFace face = {{}, shape->faces[i].size(), shape->faces[i]};
    addMiddles(face, *solid, shape->edges);
    if (!solid->centres.empty() && solid->centres[i] != 0) {
      face.nodes.push_back(solid->centres[i]);
    }
    face.form = {face.corners == 3 ? Shape::triangle : Shape::quadrilateral,
                 static_cast<int>(face.nodes.size())};
    faces.push_back(std::move(face));
  }
  return faces;
}

const std::vector<Places>& linearPartsOf(CellForm form) {
  static const std::vector<std::pair<CellForm, std::vector<Places>>> kParts = {
      {{Shape::triangle, 3}, {{0, 1, 2}}},
      {{Shape::triangle, 6}, {{0, 3, 5}, {3, 1, 4}, {5, 4, 2}, {3, 4, 5}}},
      {{Shape::triangle, 7}, {{0, 3, 6}, {3, 1, 6}, {1, 4, 6}, {4, 2, 6}, {2, 5, 6}, {5, 0, 6}}},
      {{Shape::quadrilateral, 4}, {{0, 1, 2, 3}}},
      {{Shape::quadrilateral, 6}, {{0, 4, 5, 3}, {4, 1, 2, 5}}},
      {{Shape::quadrilateral, 8}, {{0, 4, 7}, {1, 5, 4}, {2, 6, 5}, {3, 7, 6}, {4, 5, 6, 7}}},
      {{Shape::quadrilateral, 9}, {{0, 4, 8, 7}, {4, 1, 5, 8}, {8, 5, 2, 6}, {7, 8, 6, 3}}}};
  static const std::vector<Places> kNone;
  const auto found = std::find_if(kParts.begin(), kParts.end(),
                                  [&](const auto& part) { return part.first == form; });
  return found == kParts.end() ? kNone : found->second;
}

}  // namespace orvml
