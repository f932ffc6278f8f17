#include "cpp/sample_documents.h"

#include <vector>

namespace orvml_io_tests {

using orvml::Entity;
using orvml::Shape;
using orvml::Transmission;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

orvml::Input fullInput() {
  orvml::Input input({"ORVML_OCTREE_MESHER", "2.1", "tests"}, 3);
  input.setNodes(Doubles{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1});
  input.setCells(Entity::edges, Shape::line, 2, Ints{0, 1, 1, 2, 2, 0});
  input.setCells(Entity::faces, Shape::triangle, 3, Ints{0, 1, 2, 0, 1, 3, 1, 2, 3, 0, 2, 3});
  input.setCells(Entity::elements, Shape::tetrahedron, 4, Ints{0, 1, 2, 3, 1, 2, 3, 4});
  input.setParameter("size", 0.25);
  input.setParameter("angle", 40.0);
  input.setVectorParameter("layers", Ints{3, 2, 1});
  input.setVectorParameter("volumes_sizes", Doubles{0.5, 0.25});
  input.setAttribute(Entity::nodes, "size", Doubles{1, 2, 3, 4, 5}, Transmission::mandatory);
  input.setAttribute(Entity::nodes, "forced", Ints{0, 1, 0, 1, 0});
  input.setAttribute(Entity::edges, "line", Ints{7, 8, 9}, Transmission::mandatory);
  input.setAttribute(Entity::faces, "surface", Ints{1, 2, 3, 4}, Transmission::mandatory);
  input.setAttribute(Entity::elements, "quality", Doubles{0.5, 0.75});
  return input;
}

orvml::Output mixedOutput() {
  orvml::Output output({"m", "1", "c"}, 2);
  output.setNodes(Doubles{0, 0, 1, 0, 2, 0, 0, 1, 1, 1, 2, 1, 1, 2});
  output.setCells(Entity::faces, {{Shape::triangle, 3, 3}, {Shape::quadrilateral, 4, 2}},
                  Ints{0, 1, 3, 1, 4, 3, 3, 4, 6, 1, 2, 5, 4, 0, 1, 4, 3});
  output.setParameter("size", 1.0);
  return output;
}

}  // namespace orvml_io_tests
