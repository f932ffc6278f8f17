// Links that leave the file, and coordinates that are there but cannot be read. A link that leads
// nowhere is as good as none; one that leads into another file that exists is refused, and the
// result says so.
#include "files/exchange_file_fixture.h"

namespace orvml_io_tests {
namespace {

/// A place of a document that other tools may put a link at. Without anything there a document
/// reads with 0.
struct LinkRow {
  const char* name;
  const char* path;

  friend std::ostream& operator<<(std::ostream& stream, const LinkRow& row) {
    return stream << row.name;
  }
};

class ForeignLink : public ExchangeFileTest, public ::testing::WithParamInterface<LinkRow> {
 protected:
  ForeignLink() {
    for (const char* document : {"/OrvInput", "/OrvOutput"}) {
      addFullDocument(file_, document);
    }
  }

  /// A document with something at each of the places.
  static void addFullDocument(RawFile& file, const std::string& group) {
    addSmallDocument(file, group);
    file.group(group + "/Nodes/Attributes");
    file.intVector(group + "/Nodes/Attributes/a", {1, 2, 3});
    file.group(group + "/ParametersVector");
    file.intVector(group + "/ParametersVector/v", {1});
  }

  void linkTo(const char* fileName) {
    file_.remove(GetParam().path);
    ASSERT_GE(H5Lcreate_external(fileName, GetParam().path, file_.id(), GetParam().path,
                                 H5P_DEFAULT, H5P_DEFAULT),
              0);
  }
  void linkSoftly() {
    file_.remove(GetParam().path);
    ASSERT_GE(
        H5Lcreate_soft("/no/such/object", file_.id(), GetParam().path, H5P_DEFAULT, H5P_DEFAULT),
        0);
  }

  /// Reads the document that the place belongs to.
  ReadDocument readFile() {
    const bool isOfInput = std::string(GetParam().path).rfind("/OrvInput", 0) == 0;
    return isOfInput ? read(file_) : readAsOutput(file_);
  }

 private:
  RawFile file_ = RawFile::createMarked(path());
};

TEST_P(ForeignLink, ToAFileThatDoesNotExistIsSkipped) {
  linkTo("no_such_file.h5");

  EXPECT_EQ(readFile().result, 0);
}

TEST_P(ForeignLink, ToNothingInItsOwnFileIsSkipped) {
  linkSoftly();

  EXPECT_EQ(readFile().result, 0);
}

TEST_P(ForeignLink, ToAFileThatExistsGivesOne) {
  const TempFile other;
  {
    RawFile made = RawFile::createMarked(other.path());
    addFullDocument(made, "/OrvInput");
    addFullDocument(made, "/OrvOutput");
  }
  linkTo(other.path());

  EXPECT_EQ(readFile().result, 1);
}

// Whether the other file has the object is not looked at: it is not opened.
TEST_P(ForeignLink, ToAFileThatLacksTheObjectGivesOne) {
  const TempFile other;
  { const RawFile made = RawFile::create(other.path()); }
  linkTo(other.path());

  EXPECT_EQ(readFile().result, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Places, ForeignLink,
    ::testing::Values(LinkRow{"Parameter", "/OrvInput/ParametersVector/v"},
                      LinkRow{"Attribute", "/OrvInput/Nodes/Attributes/a"},
                      LinkRow{"Coordinates", "/OrvInput/Nodes/coordinates"},
                      LinkRow{"Shapes", "/OrvInput/Faces/element_types"},
                      LinkRow{"GroupOfParameters", "/OrvInput/ParametersVector"},
                      LinkRow{"GroupOfAttributes", "/OrvInput/Nodes/Attributes"},
                      LinkRow{"Container", "/OrvInput/Faces"},
                      LinkRow{"ShapesOfTheOutput", "/OrvOutput/Faces/element_types"},
                      LinkRow{"OutputDocument", "/OrvOutput"}),
    RowName());

class ForeignLinks : public ExchangeFileTest {};

TEST_F(ForeignLinks, ThatAreSkippedLeaveTheOtherMembers) {
  RawFile file = smallInput();
  file.group("/OrvInput/ParametersVector");
  file.intVector("/OrvInput/ParametersVector/a", {1});
  H5Lcreate_external("no_such_file.h5", "/x", file.id(), "/OrvInput/ParametersVector/b",
                     H5P_DEFAULT, H5P_DEFAULT);
  file.intVector("/OrvInput/ParametersVector/c", {3});

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document.handle()), 2U);
  EXPECT_EQ(intParameterOf(document.handle(), "a"), std::vector<int>{1});
  EXPECT_EQ(intParameterOf(document.handle(), "c"), std::vector<int>{3});
}

/// Coordinates of five nodes that are there and cannot be read.
struct UnreadCoordinatesRow {
  const char* name;
  void (*make)(RawFile& file, const std::string& path);

  friend std::ostream& operator<<(std::ostream& stream, const UnreadCoordinatesRow& row) {
    return stream << row.name;
  }
};

class UnreadCoordinates : public ExchangeFileTest,
                          public ::testing::WithParamInterface<UnreadCoordinatesRow> {};

TEST_P(UnreadCoordinates, KeepTheirCountAndGiveOne) {
  RawFile file = smallInput();
  file.remove("/OrvInput/Nodes/coordinates");
  GetParam().make(file, "/OrvInput/Nodes/coordinates");

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 5);
  double* coordinates = nullptr;
  EXPECT_EQ(OrvML_IO_GetNodesCoords(document.handle(), coordinates), 0);
  EXPECT_EQ(coordinates, nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document.handle()), 1) << "the rest is read";
}

/// Coordinates whose values would lie in a file of another name, which need not exist.
void externalCoordinates(RawFile& file, const std::string& path) {
  const hsize_t extents[] = {5, 3};
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_external(properties, "no_such_file.raw", 0, H5F_UNLIMITED);
  const hid_t space = H5Screate_simple(2, extents, nullptr);
  const hid_t dataset = H5Dcreate2(file.id(), path.c_str(), H5T_NATIVE_DOUBLE, space, H5P_DEFAULT,
                                   properties, H5P_DEFAULT);
  ASSERT_GE(dataset, 0);
  H5Dclose(dataset);
  H5Sclose(space);
  H5Pclose(properties);
}

const UnreadCoordinatesRow kUnreadCoordinates[] = {
    {"Texts",
     [](RawFile& file, const std::string& path) {
       file.dataset(path, H5T_C_S1, {5, 3}, std::string(15, 'x').data());
     }},
    {"MoreValuesThan32BitsCount",
     [](RawFile& file, const std::string& path) {
       file.dataset(path, H5T_NATIVE_DOUBLE, {5, hsize_t{1} << 30U}, nullptr);
     }},
    {"OutOfProportionToTheFile",
     [](RawFile& file, const std::string& path) {
       file.dataset(path, H5T_NATIVE_DOUBLE, {5, hsize_t{1} << 22U}, nullptr);
     }},
    {"InAnotherFile", externalCoordinates},
    {"LostFilter", [](RawFile& file, const std::string& path) {
       unreadableDataset(file, path, H5T_NATIVE_DOUBLE, {5, 3});
     }}};

INSTANTIATE_TEST_SUITE_P(Reasons, UnreadCoordinates, ::testing::ValuesIn(kUnreadCoordinates),
                         RowName());

}  // namespace
}  // namespace orvml_io_tests
