#pragma once

#include <orvml/orvml.hpp>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace orvml_io_tests {

/// Cells of one shape, with what they consist of.
struct TestCells {
  orvml::Shape shape = orvml::Shape::none;
  int nodes = 0;
  std::vector<int> indices;
};

struct TestAttribute {
  std::string name;
  std::vector<double> values;
  bool mustBeTransmitted = false;
};

/// A document that tests change as they like. What is shown of it is valid as long as it stays.
struct TestMesh {
  int dimension = 3;
  int coordinatesPerNode = 3;
  std::vector<double> x;
  std::vector<TestCells> edges;
  std::vector<TestCells> faces;
  std::vector<TestCells> elements;
  std::array<std::vector<TestAttribute>, 4> attributes;  // by Entity
  std::vector<std::pair<std::string, double>> parameters;
  std::vector<TestAttribute> vectors;
  std::string creator = "tests";
  bool hasCoordinates = true;

  [[nodiscard]] int nodes() const { return static_cast<int>(x.size()) / coordinatesPerNode; }
  [[nodiscard]] orvml::DocumentParts parts() const;
  [[nodiscard]] orvml::InputView view() const { return orvml::InputView(parts()); }
  [[nodiscard]] orvml::OutputView outputView() const { return orvml::OutputView(parts()); }
  [[nodiscard]] orvml::CheckReport checked(const orvml::CheckOptions& options = {}) const {
    return check(view(), options);
  }
};

/// The edges, faces and middle nodes of a form of a shape, as lists of corners.
struct FormOfShape {
  const char* name;
  orvml::Shape shape;
  int nodes;
  std::vector<std::string> faces;    // outward; of volume elements
  std::vector<std::string> middles;  // of what each node after the corners is the middle

  [[nodiscard]] int corners() const { return nodes - static_cast<int>(middles.size()); }
};

/// Every form that has an order of nodes and whose nodes are all looked at.
const std::vector<FormOfShape>& formsOfShapes();
const FormOfShape& formOf(orvml::Shape shape, int nodes);

/// A block of n x n x n cubes of edge 1, cut into cells of one form, with its boundary faces. In
/// the plane the cells are the faces.
TestMesh blockOf(const FormOfShape& form, int n);

/// The surface of the block alone.
TestMesh surfaceOf(const TestMesh& block);

/// One cell of a form in its ideal place: parts of the unit cube, pyramids with the apex above.
TestMesh cellOf(const FormOfShape& form);

/// Moves every node by a smooth map of space that keeps orientation.
void warp(TestMesh& mesh);

/// Gives the nodes and the cells other numbers, at random.
void renumber(TestMesh& mesh, unsigned seed);

/// The codes of findings, one a line, in order.
std::vector<std::string> codesOf(const orvml::CheckReport& report);

/// What was found, for people.
std::string toldOf(const orvml::CheckReport& report);

}  // namespace orvml_io_tests
