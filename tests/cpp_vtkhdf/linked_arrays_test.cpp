// The group that linkVtk() adds, by raw HDF5 calls: which arrays are those of the document, which
// are joined, copied, padded and left out, and what the report says of each.
#include "cpp_vtkhdf/linked_file.h"
#include "files/exchange_file_fixture.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orvml_io_tests {
namespace {

using orvml::Entity;
using orvml::Shape;

/// An output in a file that is linked.
class LinkedArrays : public ::testing::Test {
 protected:
  orvml::VtkLinkReport link(const orvml::Output& output,
                            const orvml::VtkLinkOptions& options = {}) {
    orvml::save(temp_.path(), output);
    return orvml::linkVtk(temp_.path(), options);
  }
  orvml::VtkLinkReport link(const TestMesh& mesh, const orvml::VtkLinkOptions& options = {}) {
    orvml::save(temp_.path(), mesh.outputView());
    return orvml::linkVtk(temp_.path(), options);
  }
  [[nodiscard]] RawFile file() const { return RawFile::open(temp_.path()); }
  [[nodiscard]] const char* path() const { return temp_.path(); }

 private:
  TempFile temp_;
};

TEST_F(LinkedArrays, HeaderIsThatOfVersion1InTheFormThatParaViewTakes) {
  const auto report = link(outputOfAllKinds());

  const RawFile linked = file();
  EXPECT_EQ(linked.attributeBytes("/VTKHDF", "Type"), "UnstructuredGrid");
  EXPECT_EQ(linked.attributeShape("/VTKHDF", "Type").typeBytes, 16U);
  EXPECT_EQ(linked.attributeShape("/VTKHDF", "Type").extents, Extents());
  EXPECT_EQ(linked.attributeShape("/VTKHDF", "Version").extents, Extents{2});
  EXPECT_EQ(linked.attributeBytes("/VTKHDF", "ORVML_DOCUMENT"), "/OrvOutput");
  EXPECT_EQ(linked.ints("/VTKHDF/NumberOfPoints"), std::vector<int>{5});
  EXPECT_EQ(linked.ints("/VTKHDF/NumberOfCells"), std::vector<int>{8});
  EXPECT_EQ(linked.ints("/VTKHDF/NumberOfConnectivityIds"), std::vector<int>{24});
  EXPECT_EQ(report.points, 5);
  EXPECT_EQ(report.cells, 8);
  EXPECT_EQ(report.document, orvml::Kind::output);
}

TEST_F(LinkedArrays, ArraysOfOneKindOfCellsAreThoseOfTheDocument) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 4), 2);
  mesh.faces.clear();
  mesh.attributes[0] = {{"size", std::vector<double>(27, 0.5), false}};
  mesh.attributes[3] = {
      {"quality", std::vector<double>(mesh.elements[0].indices.size() / 4), true}};
  mesh.vectors = {{"layers", {1, 2}, false}};
  const auto report = link(mesh);

  const RawFile linked = file();
  EXPECT_TRUE(areOneObject(linked, "/VTKHDF/Points", "/OrvOutput/Nodes/coordinates"));
  EXPECT_TRUE(areOneObject(linked, "/VTKHDF/Connectivity", "/OrvOutput/Elements/connectivities"));
  EXPECT_TRUE(areOneObject(linked, "/VTKHDF/PointData/size", "/OrvOutput/Nodes/Attributes/size"));
  EXPECT_TRUE(
      areOneObject(linked, "/VTKHDF/CellData/quality", "/OrvOutput/Elements/Attributes/quality"));
  EXPECT_TRUE(
      areOneObject(linked, "/VTKHDF/FieldData/layers", "/OrvOutput/ParametersVector/layers"));
  EXPECT_EQ(toldOf(report),
            "linked /OrvOutput/Nodes/coordinates is /VTKHDF/Points\n"
            "linked /OrvOutput/Elements/connectivities is /VTKHDF/Connectivity\n"
            "linked /OrvOutput/Nodes/Attributes/size is /VTKHDF/PointData/size\n"
            "linked /OrvOutput/Elements/Attributes/quality is /VTKHDF/CellData/quality\n"
            "linked /OrvOutput/ParametersVector/layers is /VTKHDF/FieldData/layers\n");
}

TEST_F(LinkedArrays, OffsetsHaveTheTypeOfTheConnectivityAndOneMoreThanThereAreCells) {
  link(outputOfAllKinds());

  const RawFile linked = file();
  EXPECT_EQ(linked.ints("/VTKHDF/Offsets"), (std::vector<int>{0, 2, 4, 7, 10, 13, 16, 20, 24}));
  EXPECT_TRUE(isStoredAs(linked, "/VTKHDF/Offsets", H5T_NATIVE_INT32));
  EXPECT_TRUE(isStoredAs(linked, "/VTKHDF/Connectivity", H5T_NATIVE_INT32));
  EXPECT_TRUE(isStoredAs(linked, "/VTKHDF/Types", H5T_NATIVE_UINT8));
  EXPECT_EQ(linked.ints("/VTKHDF/Types"), (std::vector<int>{3, 3, 5, 5, 5, 5, 10, 10}));
}

TEST_F(LinkedArrays, KindsOfCellsAreJoinedWithoutACopy) {
  link(outputOfAllKinds());

  const RawFile linked = file();
  EXPECT_TRUE(isVirtual(linked, "/VTKHDF/Connectivity"));
  EXPECT_EQ(
      linked.ints("/VTKHDF/Connectivity"),
      (std::vector<int>{0, 1, 1, 2, 0, 2, 1, 0, 1, 3, 1, 4, 3, 2, 3, 4, 0, 1, 2, 3, 1, 4, 2, 3}));
  EXPECT_TRUE(isVirtual(linked, "/VTKHDF/CellData/colour"));
  EXPECT_EQ(linked.ints("/VTKHDF/CellData/colour"),
            (std::vector<int>{11, 12, 21, 22, 23, 24, 31, 32}));
  EXPECT_EQ(linked.ints("/VTKHDF/CellData/orvml.container"),
            (std::vector<int>{1, 1, 2, 2, 2, 2, 3, 3}));
}

TEST_F(LinkedArrays, AttributesThatSomeKindsLackArePaddedAndThatIsSaid) {
  const auto report = link(outputOfAllKinds());

  const RawFile linked = file();
  EXPECT_EQ(linked.ints("/VTKHDF/CellData/50%b"), (std::vector<int>{-1, -1, 1, 2, 3, 4, -1, -1}));
  const std::vector<double> mixed = linked.doubles("/VTKHDF/CellData/mixed");
  ASSERT_EQ(mixed.size(), 8U);
  EXPECT_TRUE(std::isnan(mixed[0]) && std::isnan(mixed[1]));
  EXPECT_EQ(std::vector<double>(mixed.begin() + 2, mixed.end()),
            (std::vector<double>{0.5, 1.5, 2.5, 3.5, 7, 8}));
  const std::string told = toldOf(report);
  EXPECT_NE(told.find("padded /OrvOutput/Faces/Attributes/50%b is padded with -1 for edges and "
                      "elements\n"),
            std::string::npos)
      << told;
  EXPECT_NE(told.find("padded /OrvOutput/Faces/Attributes/mixed is padded with nan for edges\n"),
            std::string::npos)
      << told;
  EXPECT_NE(told.find("linked /OrvOutput/Elements/Attributes/mixed is part of "
                      "/VTKHDF/CellData/mixed, as doubles\n"),
            std::string::npos)
      << told;
}

TEST_F(LinkedArrays, CoordinatesOfThePlaneAreCopiedWithAThirdOne) {
  const auto report = link(blockOf(formOf(Shape::triangle, 3), 2));

  const RawFile linked = file();
  EXPECT_EQ(linked.shape("/VTKHDF/Points").extents, (Extents{9, 3}));
  const std::vector<double> flat = linked.doubles("/OrvOutput/Nodes/coordinates");
  const std::vector<double> points = linked.doubles("/VTKHDF/Points");
  for (std::size_t node = 0; node < 9; ++node) {
    EXPECT_EQ(points[3 * node], flat[2 * node]);
    EXPECT_EQ(points[3 * node + 1], flat[2 * node + 1]);
    EXPECT_EQ(points[3 * node + 2], 0.0);
  }
  EXPECT_EQ(toldOf(report).find("copied /OrvOutput/Nodes/coordinates is copied to /VTKHDF/Points, "
                                "with a third coordinate of 0\n"),
            0U);
}

TEST_F(LinkedArrays, CellsWithoutATypeAreLeftOutAndTheOthersJoinedWithoutACopy) {
  TestMesh mesh = blockOf(formOf(Shape::tetrahedron, 4), 1);
  const std::vector<int> tetrahedra = mesh.elements[0].indices;
  mesh.faces.clear();
  mesh.elements.insert(mesh.elements.begin(), {Shape::sphere, 1, {0, 1}});
  mesh.elements.push_back({Shape::pyramid, 14, std::vector<int>(14, 0)});
  mesh.elements.push_back({Shape::sphere, 1, {2}});
  const std::size_t cells = tetrahedra.size() / 4 + 4;
  std::vector<double> quality(cells);
  for (std::size_t i = 0; i < cells; ++i) {
    quality[i] = static_cast<double>(i);
  }
  mesh.attributes[3] = {{"quality", quality, false}};

  const auto report = link(mesh);

  const RawFile linked = file();
  EXPECT_EQ(linked.ints("/VTKHDF/Connectivity"), tetrahedra);
  EXPECT_TRUE(isVirtual(linked, "/VTKHDF/Connectivity"));
  EXPECT_EQ(linked.doubles("/VTKHDF/CellData/quality"),
            std::vector<double>(quality.begin() + 2, quality.end() - 2));
  EXPECT_EQ(toldOf(report).find(
                "dropped /OrvOutput/Elements has 1 cell of shape pyramid with 14 nodes each, "
                "which VTK has no type for and does not see\n"
                "dropped /OrvOutput/Elements has 3 cells of shape sphere with 1 node each, "
                "which VTK has no type for and does not see\n"),
            0U)
      << toldOf(report);
}

TEST_F(LinkedArrays, AttributesOfAnotherLengthAreLeftOutAndThatIsSaid) {
  orvml::Output output = outputOfAllKinds();
  orvml::save(path(), output);
  {
    RawFile changed = RawFile::openForWriting(path());
    changed.intVector("/OrvOutput/Nodes/Attributes/short", {1, 2});
    changed.intVector("/OrvOutput/Faces/Attributes/long", {1, 2, 3, 4, 5});
  }

  const auto report = orvml::linkVtk(path());

  EXPECT_FALSE(file().has("/VTKHDF/PointData/short"));
  EXPECT_FALSE(file().has("/VTKHDF/CellData/long"));
  const std::string told = toldOf(report);
  EXPECT_NE(told.find("dropped /OrvOutput/Nodes/Attributes/short has 2 values for 5 nodes"),
            std::string::npos);
  EXPECT_NE(told.find("dropped /OrvOutput/Faces/Attributes/long has 5 values for 4 faces"),
            std::string::npos);
}

TEST_F(LinkedArrays, TakenNamesAreReplacedAndThatIsSaid) {
  orvml::Output output = outputOfAllKinds();
  output.setAttribute(Entity::elements, "orvml.container", std::vector<int>{5, 6});
  output.setVectorParameter("growth", std::vector<double>{0.5});

  const auto report = link(output, {.edges = false, .faces = false});

  const RawFile linked = file();
  EXPECT_EQ(linked.ints("/VTKHDF/CellData/orvml.container"), (std::vector<int>{3, 3}));
  EXPECT_EQ(linked.ints("/VTKHDF/CellData/orvml.container.2"), (std::vector<int>{5, 6}));
  EXPECT_EQ(linked.doubles("/VTKHDF/FieldData/growth"), std::vector<double>{1.5});
  EXPECT_EQ(linked.doubles("/VTKHDF/FieldData/growth.2"), std::vector<double>{0.5});
  const std::string told = toldOf(report);
  EXPECT_NE(told.find("renamed /OrvOutput/ParametersVector/growth is called growth.2"),
            std::string::npos)
      << told;
}

TEST_F(LinkedArrays, NamesOfParametersThatAreNoNamesOfArraysAreReplaced) {
  orvml::save(path(), outputOfAllKinds());
  {
    RawFile changed = RawFile::openForWriting(path());
    changed.remove("/OrvOutput/parameters");
    changed.parameterTable("/OrvOutput/parameters", {{"a/b", 1.0}, {"a_b", 2.0}, {".", 3.0}});
  }

  const auto report = orvml::linkVtk(path());

  EXPECT_EQ(file().members("/VTKHDF/FieldData"), (Names{"a_b", "a_b.2", "layers", "unnamed"}));
  EXPECT_NE(toldOf(report).find("renamed /OrvOutput/parameters/a/b is called a_b"),
            std::string::npos)
      << toldOf(report);
}

TEST_F(LinkedArrays, ChosenKindsOfCellsAloneAreShown) {
  const auto report = link(outputOfAllKinds(), {.edges = false, .elements = false});

  EXPECT_EQ(report.cells, 4);
  EXPECT_TRUE(areOneObject(file(), "/VTKHDF/Connectivity", "/OrvOutput/Faces/connectivities"));
  EXPECT_EQ(toldOf(report).find("padded"), std::string::npos);
}

TEST_F(LinkedArrays, PrismsStandAsTheyAreStoredUnlessTheyAreTurned) {
  TestMesh mesh = cellOf(formOf(Shape::prism, 15));
  mesh.elements.push_back({Shape::tetrahedron, 4, {0, 1, 2, 3}});
  const std::vector<int> stored = mesh.elements[0].indices;
  link(mesh);
  std::vector<int> shown = file().ints("/VTKHDF/Connectivity");
  EXPECT_EQ(std::vector<int>(shown.end() - 19, shown.end() - 4), stored);

  const auto report = orvml::linkVtk(path(), {.turnsPrisms = true});

  shown = file().ints("/VTKHDF/Connectivity");
  std::vector<int> turned;
  for (const std::size_t node : {0U, 2U, 1U, 3U, 5U, 4U, 8U, 7U, 6U, 11U, 10U, 9U, 12U, 14U, 13U}) {
    turned.push_back(stored[node]);
  }
  EXPECT_EQ(std::vector<int>(shown.end() - 19, shown.end() - 4), turned);
  EXPECT_EQ(std::vector<int>(shown.end() - 4, shown.end()), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_NE(toldOf(report).find("copied /OrvOutput/Elements/connectivities has 1 prism, copied in "
                                "the order of VTK before 9.7\n"),
            std::string::npos);
  EXPECT_EQ(file().ints("/OrvOutput/Elements/connectivities"), [&] {
    auto all = stored;
    all.insert(all.end(), {0, 1, 2, 3});
    return all;
  }());
}

TEST_F(LinkedArrays, TurnedPrismsStandWhereTheyStoodAmongOtherCells) {
  TestMesh mesh = cellOf(formOf(Shape::prism, 6));
  mesh.faces.clear();
  mesh.elements = {{Shape::prism, 6, {0, 1, 2, 3, 4, 5}},
                   {Shape::tetrahedron, 4, {0, 1, 2, 3}},
                   {Shape::prism, 6, {3, 4, 5, 0, 1, 2}}};

  link(mesh, {.turnsPrisms = true});

  EXPECT_EQ(file().ints("/VTKHDF/Connectivity"),
            (std::vector<int>{0, 2, 1, 3, 5, 4, 0, 1, 2, 3, 3, 5, 4, 0, 2, 1}));
}

TEST_F(LinkedArrays, OutputIsShownWhereThereAreBothUnlessTheInputIsAskedFor) {
  const orvml::Output output = outputOfAllKinds();
  const TestMesh input = blockOf(formOf(Shape::triangle, 3), 1);
  orvml::save(path(), input.view(), output.view());

  EXPECT_EQ(orvml::linkVtk(path()).document, orvml::Kind::output);
  const auto report = orvml::linkVtk(path(), {.document = orvml::Kind::input});

  EXPECT_EQ(report.document, orvml::Kind::input);
  EXPECT_EQ(file().attributeBytes("/VTKHDF", "ORVML_DOCUMENT"), "/OrvInput");
  EXPECT_EQ(file().ints("/VTKHDF/NumberOfPoints"), std::vector<int>{4});
}

TEST_F(LinkedArrays, DocumentsWithoutCellsShowTheirNodes) {
  TestMesh cloud;
  cloud.x = {0, 0, 0, 1, 1, 1};
  link(cloud);

  EXPECT_EQ(file().ints("/VTKHDF/Offsets"), std::vector<int>{0});
  EXPECT_EQ(file().shape("/VTKHDF/Types").extents, Extents{0});
}

/// A way to store something that VTK does not read, or reads as something else.
struct StorageRow {
  const char* name;
  void (*change)(RawFile& file);
  const char* object;
  const char* shown;

  friend std::ostream& operator<<(std::ostream& stream, const StorageRow& row) {
    return stream << row.name;
  }
};

const StorageRow kStorages[] = {
    {"RankTwoAttribute",
     [](RawFile& file) {
       const std::vector<double> values = {5, 6, 7, 8, 9};
       replaceDataset(file, "/OrvOutput/Nodes/Attributes/size", H5T_NATIVE_DOUBLE, {5, 1},
                      values.data());
     },
     "/OrvOutput/Nodes/Attributes/size", "/VTKHDF/PointData/size"},
    {"LongDoubleAttribute",
     [](RawFile& file) {
       const std::vector<long double> values = {5, 6, 7, 8, 9};
       replaceDataset(file, "/OrvOutput/Nodes/Attributes/size", H5T_NATIVE_LDOUBLE, {5},
                      values.data());
     },
     "/OrvOutput/Nodes/Attributes/size", "/VTKHDF/PointData/size"},
    {"AttributeBehindAnotherFilter",
     [](RawFile& file) {
       const std::vector<int> values = {5, 6, 7, 8, 9};
       const hsize_t extent = values.size();
       const hid_t space = H5Screate_simple(1, &extent, nullptr);
       const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
       ASSERT_GE(H5Pset_chunk(creation, 1, &extent), 0);
       ASSERT_GE(H5Pset_scaleoffset(creation, H5Z_SO_INT, H5Z_SO_INT_MINBITS_DEFAULT), 0);
       file.remove("/OrvOutput/Nodes/Attributes/size");
       const hid_t dataset = H5Dcreate2(file.id(), "/OrvOutput/Nodes/Attributes/size",
                                        H5T_NATIVE_INT, space, H5P_DEFAULT, creation, H5P_DEFAULT);
       ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()),
                 0);
       ASSERT_GE(H5Dclose(dataset), 0);
       ASSERT_GE(H5Pclose(creation), 0);
       ASSERT_GE(H5Sclose(space), 0);
     },
     "/OrvOutput/Nodes/Attributes/size", "/VTKHDF/PointData/size"},
    {"UnsignedNodeIndices",
     [](RawFile& file) {
       const std::vector<unsigned> values = {0, 1, 2, 3, 1, 4, 2, 3};
       replaceDataset(file, "/OrvOutput/Elements/connectivities", H5T_NATIVE_UINT, {8},
                      values.data());
     },
     "/OrvOutput/Elements/connectivities", "/VTKHDF/Connectivity"},
    {"RankTwoNodeIndices",
     [](RawFile& file) {
       const std::vector<int> values = {0, 1, 2, 3, 1, 4, 2, 3};
       replaceDataset(file, "/OrvOutput/Elements/connectivities", H5T_NATIVE_INT, {8, 1},
                      values.data());
     },
     "/OrvOutput/Elements/connectivities", "/VTKHDF/Connectivity"}};

class OddStorages : public ::testing::TestWithParam<StorageRow> {};

TEST_P(OddStorages, AreShownInAFormThatVtkReads) {
  const TempFile temp;
  orvml::save(temp.path(), outputOfAllKinds());
  {
    RawFile changed = RawFile::openForWriting(temp.path());
    GetParam().change(changed);
  }

  const auto report = orvml::linkVtk(temp.path(), {.edges = false, .faces = false});

  const RawFile linked = RawFile::open(temp.path());
  EXPECT_FALSE(areOneObject(linked, GetParam().object, GetParam().shown)) << toldOf(report);
  EXPECT_EQ(linked.shape(GetParam().shown).extents.size(), 1U);
  EXPECT_EQ(linked.doubles(GetParam().shown), linked.doubles(GetParam().object));
  EXPECT_TRUE(isStoredAs(linked, GetParam().shown, H5T_NATIVE_INT32) ||
              isStoredAs(linked, GetParam().shown, H5T_NATIVE_DOUBLE));
}

INSTANTIATE_TEST_SUITE_P(Arrays, OddStorages, ::testing::ValuesIn(kStorages), RowName());

TEST_F(LinkedArrays, WideNodeIndicesAreLinkedAndTheOffsetsAreAsWide) {
  orvml::save(path(), outputOfAllKinds());
  {
    RawFile changed = RawFile::openForWriting(path());
    const std::vector<std::int64_t> values = {0, 1, 2, 3, 1, 4, 2, 3};
    replaceDataset(changed, "/OrvOutput/Elements/connectivities", H5T_NATIVE_INT64, {8},
                   values.data());
  }

  orvml::linkVtk(path(), {.edges = false, .faces = false});

  EXPECT_TRUE(areOneObject(file(), "/VTKHDF/Connectivity", "/OrvOutput/Elements/connectivities"));
  EXPECT_TRUE(isStoredAs(file(), "/VTKHDF/Offsets", H5T_NATIVE_INT64));
}

// So many parts would be slow to read as a joined array.
TEST_F(LinkedArrays, ManyScatteredGroupsAreCopied) {
  TestMesh mesh;
  mesh.x = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  for (int i = 0; i < 600; ++i) {
    mesh.elements.push_back({Shape::tetrahedron, 4, {0, 1, 2, 3}});
    mesh.elements.push_back({Shape::sphere, 1, {i % 4}});
  }
  std::vector<double> quality(1200);
  for (std::size_t i = 0; i < quality.size(); ++i) {
    quality[i] = static_cast<double>(i);
  }
  mesh.attributes[3] = {{"quality", quality, false}};

  const auto report = link(mesh);

  EXPECT_FALSE(isVirtual(file(), "/VTKHDF/Connectivity"));
  EXPECT_EQ(file().ints("/VTKHDF/Connectivity").size(), 2400U);
  const std::vector<double> shown = file().doubles("/VTKHDF/CellData/quality");
  ASSERT_EQ(shown.size(), 600U);
  EXPECT_EQ(shown[599], 1198.0);
  EXPECT_NE(toldOf(report).find("copied /OrvOutput/Elements/connectivities is copied to"),
            std::string::npos);
}

}  // namespace
}  // namespace orvml_io_tests
