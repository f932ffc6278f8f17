#include "inputs/content.h"

#include "orvml_io.h"

#include <cstdio>
#include <numeric>
#include <random>

namespace orvml_io_bench {

namespace {

std::vector<double> randomDoubles(std::size_t count) {
  std::mt19937_64 engine(count);
  constexpr double kSpan = 2000.0;
  const double scale = kSpan / static_cast<double>(std::mt19937_64::max());
  std::vector<double> values(count);
  for (double& value : values) {
    value = static_cast<double>(engine()) * scale - kSpan / 2;
  }
  return values;
}

std::vector<int> randomInts(std::size_t count, int below) {
  std::mt19937 engine(static_cast<unsigned>(count));
  std::vector<int> values(count);
  for (int& value : values) {
    value = static_cast<int>(engine() % static_cast<unsigned>(below));
  }
  return values;
}

/// Names sort as their numbers do, and are as long as names of real parameters.
std::string numbered(const char* stem, int number) {
  char name[64];
  (void)std::snprintf(name, sizeof name, "%s_%06d", stem, number);
  return name;
}

Content mesh(int numberOfNodes, Cells cells) {
  Content content;
  content.scalars = {{"size", 1.0}};
  const auto nodes = static_cast<std::size_t>(numberOfNodes);
  content.coordinates = randomDoubles(nodes * Content::kDimension);
  content.nodeAttributes.push_back({"size", {}, randomDoubles(nodes)});
  content.cells = std::move(cells);
  std::size_t indices = 0;
  for (std::size_t group = 0; group < content.cells.shapes.size(); ++group) {
    indices += static_cast<std::size_t>(content.cells.cellsPerGroup[group]) *
               static_cast<std::size_t>(content.cells.nodesPerCell[group]);
  }
  content.cells.connectivities = randomInts(indices, numberOfNodes);
  content.cells.attributes.push_back(
      {"color", randomInts(static_cast<std::size_t>(content.cells.count()), 100), {}});
  return content;
}

Content oneNode() {
  Content content;
  content.coordinates = {0, 0, 0};
  content.scalars = {{"size", 1.0}};
  return content;
}

}  // namespace

int Cells::count() const { return std::accumulate(cellsPerGroup.begin(), cellsPerGroup.end(), 0); }

std::size_t Content::meshBytes() const {
  std::size_t bytes =
      coordinates.size() * sizeof(double) + cells.connectivities.size() * sizeof(int);
  for (const auto* attributes : {&nodeAttributes, &cells.attributes}) {
    for (const Vector& vector : *attributes) {
      bytes += vector.doubles.size() * sizeof(double) + vector.ints.size() * sizeof(int);
    }
  }
  return bytes;
}

Content tetrahedralMesh(int numberOfNodes) {
  constexpr int kElevenHalves[] = {11, 2};
  Cells cells;
  cells.shapes = {TETRAHEDRA};
  cells.nodesPerCell = {4};
  cells.cellsPerGroup = {numberOfNodes / kElevenHalves[1] * kElevenHalves[0]};
  return mesh(numberOfNodes, std::move(cells));
}

Content mixedSurface(int numberOfNodes) {
  Cells cells;
  cells.group = "Faces";
  cells.shapes = {TRIANGLE, QUADRILATERAL};
  cells.nodesPerCell = {3, 4};
  cells.cellsPerGroup = {numberOfNodes, numberOfNodes / 2};
  return mesh(numberOfNodes, std::move(cells));
}

Content smallDocument() {
  constexpr int kNodes = 200;
  constexpr int kScalars = 10;
  Content content = tetrahedralMesh(kNodes);
  content.scalars = scalarParameters(kScalars).scalars;
  content.vectors = vectorParameters(2).vectors;
  return content;
}

Content scalarParameters(int count) {
  Content content = oneNode();
  content.scalars.clear();
  for (int i = 0; i < count; ++i) {
    content.scalars.emplace_back(numbered("ORVML_MODULE_SIZE", i), 0.5 * i);
  }
  return content;
}

Content vectorParameters(int count) {
  Content content = oneNode();
  for (int i = 0; i < count; ++i) {
    content.vectors.push_back({numbered("ORVML_MODULE_SIZES", i), {}, {1.0 * i, 2.0, 3.0}});
  }
  return content;
}

Content nodeAttributes(int count, int valuesOfEach) {
  Content content = oneNode();
  content.coordinates = randomDoubles(static_cast<std::size_t>(valuesOfEach) * Content::kDimension);
  const std::vector<double> values = randomDoubles(static_cast<std::size_t>(valuesOfEach));
  for (int i = 0; i < count; ++i) {
    content.nodeAttributes.push_back({numbered("ORVML_MODULE_NODES_SIZES", i), {}, values});
  }
  return content;
}

Content transmittedAttributes(int count, int valuesOfEach) {
  Content content = nodeAttributes(count, valuesOfEach);
  for (Vector& attribute : content.nodeAttributes) {
    attribute.mustBeTransmitted = true;
  }
  return content;
}

}  // namespace orvml_io_bench
