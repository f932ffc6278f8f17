#include "cpp_files/sample.h"

#include <orvml/load.hpp>

#include <gtest/gtest.h>

#include <stdlib.h>  // mkdtemp is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <utility>

namespace orvml_io_tests {

namespace {

using orvml::Entity;
using orvml::Shape;
using orvml::Transmission;

void addAttributes(orvml::Input& input, Entity entity, int size) {
  const auto count = static_cast<std::size_t>(size);
  std::vector<int> ints(count);
  std::iota(ints.begin(), ints.end(), 10 * static_cast<int>(entity));
  std::vector<double> doubles(ints.begin(), ints.end());
  input.setAttribute(entity, "colour", std::vector<int>(ints));
  input.setAttribute(entity, "layer", std::move(ints), Transmission::mandatory);
  input.setAttribute(entity, "size", std::vector<double>(doubles));
  input.setAttribute(entity, "thickness", std::move(doubles), Transmission::mandatory);
}

}  // namespace

orvml::Input inputWithEverything(const std::string& tag) {
  orvml::Input input({"TETRAHEDRA", "2.1", tag}, 3);
  input.setNodes(std::vector<double>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, -0.0, 1e-310, 1e300});
  input.setCells(Entity::edges, {{Shape::line, 2, 2}, {Shape::line, 3, 1}},
                 std::vector<int>{0, 1, 1, 2, 2, 3, 4});
  input.setCells(Entity::faces, {{Shape::triangle, 3, 2}, {Shape::quadrilateral, 4, 1}},
                 std::vector<int>{0, 1, 2, 0, 2, 3, 0, 1, 2, 3});
  input.setCells(Entity::elements, {{Shape::tetrahedron, 4, 1}, {Shape::pyramid, 5, 1}},
                 std::vector<int>{0, 1, 2, 3, 0, 1, 2, 3, 4});
  addAttributes(input, Entity::nodes, 5);
  addAttributes(input, Entity::edges, 3);
  addAttributes(input, Entity::faces, 3);
  addAttributes(input, Entity::elements, 2);
  input.setParameter("edge length", 0.25);
  input.setParameter("growth", 1.5);
  input.setVectorParameter("axis", std::vector<double>{0.5, 0.5, 0});
  input.setVectorParameter("layers", std::vector<int>{3, 1, 2});
  return input;
}

orvml::Output smallOutput() {
  orvml::Output output({"TETRAHEDRA", "2.1", "old"}, 2);
  output.setNodes(std::vector<double>{0, 0, 1, 0, 0, 1});
  output.setCells(Entity::faces, Shape::triangle, 3, std::vector<int>{0, 1, 2});
  output.setParameter("seconds", 1.25);
  return output;
}

orvml::Input inputOfNodes(int nodes, const std::string& tag) {
  const auto count = static_cast<std::size_t>(nodes);
  orvml::Input input({"TETRAHEDRA", "2.1", tag}, 3);
  std::vector<double> coordinates(3 * count);
  std::iota(coordinates.begin(), coordinates.end(), 0.5);
  input.setNodes(std::move(coordinates));
  std::vector<int> indices(4 * count);
  for (std::size_t i = 0; i < indices.size(); ++i) {
    indices[i] = static_cast<int>(i * 7 % count);
  }
  input.setCells(Entity::elements, Shape::tetrahedron, 4, std::move(indices));
  input.setAttribute(Entity::nodes, "size", std::vector<double>(count, 0.125));
  input.setParameter("growth", 1.5);
  return input;
}

std::optional<orvml::Digest> digestAt(const std::filesystem::path& path) {
  try {
    return digestOf(orvml::loadInput(path));
  } catch (const orvml::Error& error) {
    ADD_FAILURE() << error.what();
    return std::nullopt;
  }
}

TempFolder::TempFolder() {
  std::string pattern = ::testing::TempDir() + "orvml_folder_XXXXXX";
  path_ = ::mkdtemp(pattern.data()) == nullptr ? "" : pattern;
  EXPECT_FALSE(path_.empty());
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> TempFolder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

}  // namespace orvml_io_tests
