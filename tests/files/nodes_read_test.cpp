// Reading the nodes of files that others made.
#include "files/exchange_file_fixture.h"
#include "hdf5/source_file.h"
#include "model/document.h"
#include "support/group_at.h"

namespace orvml_io_tests {
namespace {

constexpr char kNodes[] = "/OrvInput/Nodes";
constexpr char kCoordinates[] = "/OrvInput/Nodes/coordinates";

class ReadNodes : public ExchangeFileTest {
 protected:
  void expectNoNodes(const ReadDocument& document, int result) {
    EXPECT_EQ(document.result, result);
    ASSERT_NE(document.handle(), nullptr);
    EXPECT_EQ(orvml_io::documentOf(document.handle())->nodes, nullptr);
    EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document.handle()), 1) << "what follows is read";
    EXPECT_EQ(scalarOf(document.handle(), "size"), 0.5) << "what follows is read";
  }

  void expectNumberWithoutAnArray(const ReadDocument& document, int number) {
    EXPECT_EQ(document.result, 1);
    EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), number);
    EXPECT_EQ(orvml_io::documentOf(document.handle())->nodes->coords, nullptr);
    EXPECT_EQ(intAttributeOf(document.handle(), ORVML_NODES, "a"), std::nullopt);
    EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document.handle()), 1) << "what follows is read";
  }

  /// Reads the small document with a node attribute and other coordinates.
  ReadDocument readWithCoordinates(hid_t type, const Extents& extents, const void* values) {
    RawFile file = smallInput();
    replaceDataset(file, kCoordinates, type, extents, values);
    file.group("/OrvInput/Nodes/Attributes");
    file.intVector("/OrvInput/Nodes/Attributes/a", {7});
    return read(file);
  }
  ReadDocument readWithDoubles(const Extents& extents, const std::vector<double>& values) {
    return readWithCoordinates(H5T_NATIVE_DOUBLE, extents, values.data());
  }
};

TEST_F(ReadNodes, RowsAreNodesAndColumnsTheirCoordinates) {
  const ReadDocument document = readWithDoubles({2, 3}, {0, 1, 2, 3, 4, 5});

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 2);
  EXPECT_EQ(coordinatesOf(document.handle()), (std::vector<double>{0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(intAttributeOf(document.handle(), ORVML_NODES, "a"), std::vector<int>{7});
}

TEST_F(ReadNodes, MissingGroupGivesOneAndNoNodes) {
  RawFile file = smallInput();
  file.remove(kNodes);

  expectNoNodes(read(file), 1);
}

TEST_F(ReadNodes, DatasetAtThePlaceOfTheGroupGivesOneAndNoNodes) {
  RawFile file = smallInput();
  replaceInts(file, kNodes, {1});

  expectNoNodes(read(file), 1);
}

TEST_F(ReadNodes, MissingCoordinatesGiveNoNodesAndNoFailure) {
  RawFile file = smallInput();
  file.remove(kCoordinates);

  expectNoNodes(read(file), 0);
}

TEST_F(ReadNodes, GroupAtThePlaceOfTheCoordinatesGivesNoNodesAndNoFailure) {
  RawFile file = smallInput();
  file.remove(kCoordinates);
  file.group(kCoordinates);

  expectNoNodes(read(file), 0);
}

TEST_F(ReadNodes, ZeroRowsGiveNoNodesAndNoFailure) {
  expectNoNodes(readWithDoubles({0, 3}, {}), 0);
}

TEST_F(ReadNodes, CoordinatesWithoutExtentsGiveOneAndNoNodes) {
  expectNoNodes(readWithDoubles({}, {1.5}), 1);
}

TEST_F(ReadNodes, NullSpaceGivesOneAndNoNodes) {
  RawFile file = smallInput();
  file.remove(kCoordinates);
  const hid_t space = H5Screate(H5S_NULL);
  H5Dclose(H5Dcreate2(file.id(), kCoordinates, H5T_NATIVE_DOUBLE, space, H5P_DEFAULT, H5P_DEFAULT,
                      H5P_DEFAULT));
  H5Sclose(space);

  expectNoNodes(read(file), 1);
}

// 65536 x 65536 values are a product of 0 in 32 bits.
TEST_F(ReadNodes, MoreValuesThanThe32BitCountGiveOneAndKeepTheNumberWithoutAnArray) {
  expectNumberWithoutAnArray(readWithCoordinates(H5T_NATIVE_DOUBLE, {65536, 65536}, nullptr),
                             65536);
}

// What is not stored would take more than a read may fill.
TEST_F(ReadNodes, CoordinatesOutOfProportionToTheFileGiveOneAndKeepTheNumberWithoutAnArray) {
  expectNumberWithoutAnArray(readWithCoordinates(H5T_NATIVE_DOUBLE, {10000000, 3}, nullptr),
                             10000000);
}

TEST_F(ReadNodes, CoordinatesInAnotherFileGiveOneAndKeepTheNumberWithoutAnArray) {
  RawFile file = smallInput();
  file.remove(kCoordinates);
  const hsize_t extents[] = {4, 3};
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_external(properties, "coordinates.bin", 0, H5F_UNLIMITED);
  const hid_t space = H5Screate_simple(2, extents, nullptr);
  H5Dclose(H5Dcreate2(file.id(), kCoordinates, H5T_NATIVE_DOUBLE, space, H5P_DEFAULT, properties,
                      H5P_DEFAULT));
  H5Sclose(space);
  H5Pclose(properties);

  expectNumberWithoutAnArray(read(file), 4);
}

TEST_F(ReadNodes, MoreRowsThanThe32BitCountGiveOneAndNoNodes) {
  RawFile file = smallInput();
  replaceDataset(file, kCoordinates, H5T_NATIVE_DOUBLE, {hsize_t{1} << 32U, 1}, nullptr);

  expectNoNodes(read(file), 1);
}

// Later steps know from the count that there should have been nodes.
TEST_F(ReadNodes, UnreadableCoordinatesGiveOneAndKeepTheirNumberWithoutAnArray) {
  RawFile file = smallInput();
  replaceByUnreadable(file, kCoordinates, H5T_NATIVE_DOUBLE, {4, 3});
  file.group("/OrvInput/Nodes/Attributes");
  file.intVector("/OrvInput/Nodes/Attributes/a", {7});

  expectNumberWithoutAnArray(read(file), 4);
}

TEST_F(ReadNodes, CoordinatesOfTextGiveOneAndKeepTheirNumberWithoutAnArray) {
  const ReadDocument document = readWithCoordinates(H5T_C_S1, {2, 3}, "abcdef");

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 2);
  EXPECT_EQ(coordinatesOf(document.handle()), std::vector<double>{});
}

TEST_F(ReadNodes, FewerColumnsThanTheDimensionAreFollowedByZeros) {
  const ReadDocument document = readWithDoubles({4, 2}, {1, 2, 3, 4, 5, 6, 7, 8});

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 4);
  EXPECT_EQ(coordinatesOf(document.handle()),
            (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0}));
}

TEST_F(ReadNodes, MoreColumnsThanTheDimensionAreAllInTheArray) {
  const ReadDocument document = readWithDoubles({2, 4}, {1, 2, 3, 4, 5, 6, 7, 8});

  EXPECT_EQ(document.result, 0);
  double* coords = nullptr;
  ASSERT_EQ(OrvML_IO_GetNodesCoords(document.handle(), coords), 0);
  EXPECT_EQ(std::vector<double>(coords, coords + 8), (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(ReadNodes, RowsWithoutColumnsAreNodesAtTheOrigin) {
  const ReadDocument document = readWithDoubles({2, 0}, {});

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(coordinatesOf(document.handle()), std::vector<double>(6, 0.0));
}

TEST_F(ReadNodes, IntegersAreConverted) {
  const int values[] = {0, -1, 2};

  EXPECT_EQ(coordinatesOf(readWithCoordinates(H5T_NATIVE_INT, {1, 3}, values).handle()),
            (std::vector<double>{0, -1, 2}));
}

TEST_F(ReadNodes, SinglePrecisionIsConverted) {
  const float values[] = {0.5F, -1.25F, 2.0F};

  EXPECT_EQ(coordinatesOf(readWithCoordinates(H5T_NATIVE_FLOAT, {1, 3}, values).handle()),
            (std::vector<double>{0.5, -1.25, 2}));
}

TEST_F(ReadNodes, OtherByteOrderIsConverted) {
  const unsigned char values[] = {0x3f, 0xf8, 0, 0, 0, 0, 0, 0,   // 1.5
                                  0xc0, 0x00, 0, 0, 0, 0, 0, 0,   // -2
                                  0x00, 0x00, 0, 0, 0, 0, 0, 0};  // 0

  EXPECT_EQ(coordinatesOf(readWithCoordinates(H5T_IEEE_F64BE, {1, 3}, values).handle()),
            (std::vector<double>{1.5, -2, 0}));
}

TEST_F(ReadNodes, DatasetThatWasNeverWrittenReadsAsZeros) {
  EXPECT_EQ(coordinatesOf(readWithCoordinates(H5T_NATIVE_DOUBLE, {1, 3}, nullptr).handle()),
            std::vector<double>(3, 0.0));
}

TEST_F(ReadNodes, UnreadableAttributeGivesOneAndKeepsTheNodes) {
  RawFile file = smallInput();
  file.group("/OrvInput/Nodes/Attributes");
  unreadableDataset(file, "/OrvInput/Nodes/Attributes/a", H5T_NATIVE_INT, {3});

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 3);
  EXPECT_EQ(coordinatesOf(document.handle()), (std::vector<double>{0, 0, 0, 1, 0, 0, 0, 1, 0}));
}

TEST_F(ReadNodes, NegativeFileGivesOne) {
  orvml_io::Nodes nodes;
  orvml_io::SourceFile none(-1);

  EXPECT_EQ(nodes.Read(none, none.root(), "1.4"), 1);
  EXPECT_EQ(nodes.ReadAttributes(none, none.root(), 1, "1.4"), 1);
}

TEST_F(ReadNodes, PathThatIsTooLongGivesOne) {
  RawFile file = RawFile::create(path());
  const BuiltDocument built = BuiltDocument::input(3);
  const std::string group = "/" + std::string(2000, 'g');
  file.group(group);
  file.group(group + "/Nodes");
  orvml_io::SourceFile source(file.id());

  EXPECT_EQ(orvml_io::documentOf(built.handle())->ReadNodes(source, GroupAt(file.id(), group)), 1);
}

}  // namespace
}  // namespace orvml_io_tests
