#include "cpp_vtkhdf/linked_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace orvml_io_tests {

using orvml::Entity;
using orvml::Shape;

orvml::Output outputOfAllKinds() {
  orvml::Output output({"TETRAHEDRA", "2.1", "tests"}, 3);
  output.setNodes(std::vector<double>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1});
  output.setCells(Entity::edges, Shape::line, 2, std::vector<int>{0, 1, 1, 2});
  output.setCells(Entity::faces, Shape::triangle, 3,
                  std::vector<int>{0, 2, 1, 0, 1, 3, 1, 4, 3, 2, 3, 4});
  output.setCells(Entity::elements, Shape::tetrahedron, 4,
                  std::vector<int>{0, 1, 2, 3, 1, 4, 2, 3});
  output.setAttribute(Entity::nodes, "size", std::vector<double>{1, 2, 3, 4, 5});
  output.setAttribute(Entity::edges, "colour", std::vector<int>{11, 12});
  output.setAttribute(Entity::faces, "colour", std::vector<int>{21, 22, 23, 24});
  output.setAttribute(Entity::elements, "colour", std::vector<int>{31, 32});
  output.setAttribute(Entity::faces, "50%b", std::vector<int>{1, 2, 3, 4});
  output.setAttribute(Entity::elements, "mixed", std::vector<int>{7, 8});
  output.setAttribute(Entity::faces, "mixed", std::vector<double>{0.5, 1.5, 2.5, 3.5});
  output.setParameter("growth", 1.5);
  output.setVectorParameter("layers", std::vector<int>{3, 1, 2});
  return output;
}

std::string toldOf(const orvml::VtkLinkReport& report) {
  std::string text;
  for (const orvml::ConversionNote& note : report.notes) {
    EXPECT_EQ(note.sentence.rfind(note.object, 0), 0U) << note.sentence;
    text += std::string(name(note.fate)) + " " + note.sentence + "\n";
  }
  return text;
}

bool areOneObject(const RawFile& file, const std::string& first, const std::string& second) {
  H5G_stat_t a = {};
  H5G_stat_t b = {};
  EXPECT_GE(H5Gget_objinfo(file.id(), first.c_str(), true, &a), 0) << first;
  EXPECT_GE(H5Gget_objinfo(file.id(), second.c_str(), true, &b), 0) << second;
  return std::equal(std::begin(a.objno), std::end(a.objno), std::begin(b.objno)) &&
         std::equal(std::begin(a.fileno), std::end(a.fileno), std::begin(b.fileno));
}

bool isVirtual(const RawFile& file, const std::string& dataset) {
  const hid_t id = H5Dopen2(file.id(), dataset.c_str(), H5P_DEFAULT);
  const hid_t creation = H5Dget_create_plist(id);
  const H5D_layout_t layout = H5Pget_layout(creation);
  EXPECT_GE(H5Pclose(creation), 0);
  EXPECT_GE(H5Dclose(id), 0);
  return layout == H5D_VIRTUAL;
}

std::string codeOfLink(const std::filesystem::path& path, const orvml::VtkLinkOptions& options) {
  try {
    (void)orvml::linkVtk(path, options);
    return "";
  } catch (const orvml::Error& error) {
    EXPECT_NE(error.sentence(), "");
    EXPECT_TRUE(error.file() == path) << error.what();
    return std::string(text(error.code()));
  }
}

}  // namespace orvml_io_tests
