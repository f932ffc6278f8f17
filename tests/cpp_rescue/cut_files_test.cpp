// Files whose end is missing, which HDF5 refuses to open: what lies before the end is kept.
#include "cpp_check/meshes.h"
#include "cpp_rescue/small_file.h"
#include "files/exchange_file_fixture.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

using orvml::Code;

/// Where the values of a dataset lie in a file that is written in one go.
std::size_t offsetOf(const char* path, const char* dataset) {
  const RawFile file = RawFile::open(path);
  const hid_t id = H5Dopen2(file.id(), dataset, H5P_DEFAULT);
  const haddr_t offset = H5Dget_offset(id);
  H5Dclose(id);
  return static_cast<std::size_t>(offset);
}

/// A block of 512 hexahedra without its faces, in a file that ends somewhere in an array.
class CutFiles : public ::testing::Test {
 protected:
  CutFiles() {
    TestMesh mesh = blockOf(formOf(orvml::Shape::hexahedron, 8), 8);
    mesh.faces.clear();
    std::vector<double> size(static_cast<std::size_t>(mesh.nodes()));
    for (std::size_t i = 0; i < size.size(); ++i) {
      size[i] = static_cast<double>(i) + 0.5;
    }
    mesh.attributes[0] = {{"size", size, false}};
    mesh.attributes[3] = {{"quality", std::vector<double>(512, 0.75), false}};
    orvml::save(whole_.path(), mesh.view());
  }

  orvml::RescueReport rescueUpTo(std::size_t end) const {
    writeBytes(cut_.path(), bytesOf(whole_.path()).substr(0, end));
    return orvml::rescue(cut_.path(), sound_.path());
  }
  orvml::RescueReport rescueWithin(const char* dataset, std::size_t bytes) const {
    return rescueUpTo(offsetOf(whole_.path(), dataset) + bytes);
  }
  [[nodiscard]] orvml::Input original() const { return orvml::loadInput(whole_.path()); }
  [[nodiscard]] orvml::Input rescued() const { return orvml::loadInput(sound_.path()); }

  TempFile whole_;
  TempFile cut_;
  TempFile sound_;
};

TEST_F(CutFiles, KeepTheCellsBeforeTheEnd) {
  const orvml::RescueReport report = rescueWithin("/OrvInput/Elements/connectivities", 300 * 32);

  EXPECT_NE(toldOf(report).find("orvml.file.cut-off: / is a file whose end is missing\n"),
            std::string::npos);
  EXPECT_NE(toldOf(report).find(
                "orvml.object.unreadable: /OrvInput/Elements has 512 elements, of which the first "
                "300 can be read (212: element 300 element 301 element 302 element 303 element 304 "
                "element 305 element 306 element 307 element 308 element 309)\n"),
            std::string::npos)
      << toldOf(report);
  EXPECT_EQ(errorsOf(sound_.path()), "");
  const orvml::Input document = rescued();
  ASSERT_EQ(document.elements().size(), 300);
  EXPECT_EQ(document.nodes().size(), countOf(whole_.path(), orvml::Entity::nodes));
  const auto kept = document.elements().groups()[0].nodeIndices();
  const orvml::Input whole = original();
  EXPECT_TRUE(
      std::equal(kept.begin(), kept.end(), whole.elements().groups()[0].nodeIndices().begin()));
}

TEST_F(CutFiles, LoseTheCellThatTheEndGoesThrough) {
  (void)rescueWithin("/OrvInput/Elements/connectivities", 300 * 32 + 20);

  EXPECT_EQ(countOf(sound_.path(), orvml::Entity::elements), 300);
}

TEST_F(CutFiles, KeepTheNodesBeforeTheEnd) {
  const orvml::RescueReport report = rescueWithin("/OrvInput/Nodes/coordinates", 700 * 24 + 8);

  EXPECT_NE(
      toldOf(report).find("/OrvInput/Nodes has 729 nodes, of which the first 700 can be read"),
      std::string::npos)
      << toldOf(report);
  EXPECT_EQ(errorsOf(sound_.path()), "");
  const orvml::Input document = rescued();
  ASSERT_EQ(document.nodes().size(), 700);
  const orvml::Input whole = original();
  EXPECT_TRUE(std::equal(document.nodes().coordinates().begin(),
                         document.nodes().coordinates().end(),
                         whole.nodes().coordinates().begin()));
}

TEST_F(CutFiles, LoseAnAttributeThatTheEndGoesThrough) {
  const orvml::RescueReport report = rescueWithin("/OrvInput/Nodes/Attributes/size", 8 * 400);

  EXPECT_NE(toldOf(report).find(
                "orvml.object.unreadable: /OrvInput/Nodes/Attributes/size cannot be read\n"),
            std::string::npos)
      << toldOf(report);
  EXPECT_EQ(countOf(sound_.path(), orvml::Entity::nodes), 729);
  const orvml::Input document = rescued();
  EXPECT_EQ(document.nodes().attributes().find("size"), nullptr);
}

TEST_F(CutFiles, AreRescuedWholeWhereNothingButTheirLengthIsMissing) {
  const orvml::RescueReport report = rescueUpTo(bytesOf(whole_.path()).size() - 1);

  EXPECT_EQ(errorsOf(sound_.path()), "");
  EXPECT_EQ(report.lost[0].code, text(Code::fileCutOff));
  EXPECT_EQ(countOf(sound_.path(), orvml::Entity::nodes), 729);
}

TEST_F(CutFiles, LeaveNothingOpenInHdf5) {
  const OpenIds ids;

  (void)orvml::rescue(whole_.path(), sound_.path(), {.inOwnProcess = false});
  writeBytes(cut_.path(), bytesOf(whole_.path()).substr(0, bytesOf(whole_.path()).size() - 9));
  (void)orvml::rescue(cut_.path(), sound_.path(), {.inOwnProcess = false});

  EXPECT_EQ(ids.opened(), IdCounts());
}

}  // namespace
}  // namespace orvml_io_tests
