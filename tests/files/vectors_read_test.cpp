// Reading vector parameters and attributes, one dataset for each, of files that others made.
#include "files/exchange_file_fixture.h"
#include "hdf5/silence.h"
#include "hdf5/source_file.h"
#include "model/document.h"

#include <limits>

namespace orvml_io_tests {
namespace {

/// Where a document keeps vectors, and how they are asked for. Everything about members holds for
/// all of these groups alike.
struct VectorGroup {
  const char* name;
  const char* path;
  std::optional<std::vector<int>> (*ints)(void*, const std::string&);
  std::optional<std::vector<double>> (*doubles)(void*, const std::string&);

  friend std::ostream& operator<<(std::ostream& stream, const VectorGroup& group) {
    return stream << group.path;
  }
};

template <ORVML_TYPE_OF_ENTITY Entity>
std::optional<std::vector<int>> intsOf(void* document, const std::string& name) {
  return intAttributeOf(document, Entity, name);
}

template <ORVML_TYPE_OF_ENTITY Entity>
std::optional<std::vector<double>> doublesOf(void* document, const std::string& name) {
  return doubleAttributeOf(document, Entity, name);
}

class ReadVectors : public ExchangeFileTest, public ::testing::WithParamInterface<VectorGroup> {
 protected:
  ReadVectors() {
    file_.elements("/OrvInput/Edges", {1}, {LINEAR}, {2}, {0, 1});
    file_.elements("/OrvInput/Elements", {1}, {POINT}, {1}, {0});
    file_.group(GetParam().path);
    file_.intVector(member("first"), {1});
    file_.intVector(member("z_last"), {9});
  }

  [[nodiscard]] static std::string member(const std::string& name) {
    return std::string(GetParam().path) + "/" + name;
  }
  static std::optional<std::vector<int>> ints(const ReadDocument& document, const char* name) {
    return GetParam().ints(document.handle(), name);
  }
  static std::optional<std::vector<double>> doubles(const ReadDocument& document,
                                                    const char* name) {
    return GetParam().doubles(document.handle(), name);
  }

  /// Reads, and expects that the members around the one in question came through.
  ReadDocument readExpecting(int result) {
    ReadDocument document = read(file_);
    EXPECT_EQ(document.result, result);
    EXPECT_EQ(ints(document, "first"), std::vector<int>{1});
    EXPECT_EQ(ints(document, "z_last"), std::vector<int>{9});
    return document;
  }
  void expectSkipped(const char* name) {
    const ReadDocument document = readExpecting(0);
    EXPECT_EQ(ints(document, name), std::nullopt);
    EXPECT_EQ(doubles(document, name), std::nullopt);
  }
  void expectFailed(const char* name) {
    const ReadDocument document = readExpecting(1);
    EXPECT_EQ(ints(document, name), std::nullopt);
    EXPECT_EQ(doubles(document, name), std::nullopt);
  }

  RawFile file_ = smallInput();
};

INSTANTIATE_TEST_SUITE_P(
    Each, ReadVectors,
    ::testing::Values(VectorGroup{"VectorParameters", "/OrvInput/ParametersVector", intParameterOf,
                                  doubleParameterOf},
                      VectorGroup{"NodeAttributes", "/OrvInput/Nodes/Attributes",
                                  intsOf<ORVML_NODES>, doublesOf<ORVML_NODES>},
                      VectorGroup{"EdgeAttributes", "/OrvInput/Edges/Attributes",
                                  intsOf<ORVML_EDGES>, doublesOf<ORVML_EDGES>},
                      VectorGroup{"FaceAttributes", "/OrvInput/Faces/Attributes",
                                  intsOf<ORVML_FACES>, doublesOf<ORVML_FACES>},
                      VectorGroup{"VolumeElementAttributes", "/OrvInput/Elements/Attributes",
                                  intsOf<ORVML_ELEMENTS>, doublesOf<ORVML_ELEMENTS>}),
    RowName());

TEST_P(ReadVectors, IntegersBecomeInts) {
  file_.intVector(member("i"), {3, -2, 1});

  EXPECT_EQ(ints(readExpecting(0), "i"), (std::vector<int>{3, -2, 1}));
}

TEST_P(ReadVectors, FloatsBecomeDoubles) {
  file_.doubleVector(member("d"), {0.5, -0.25});

  EXPECT_EQ(doubles(readExpecting(0), "d"), (std::vector<double>{0.5, -0.25}));
}

TEST_P(ReadVectors, IntegersOfAnyWidthAndOrderAreConverted) {
  file_.dataset(member("i16"), H5T_STD_I16BE, {2}, "\xff\xfe\0\2");
  file_.dataset(member("u8"), H5T_STD_U8LE, {2}, "\xff\1");
  const long long wide[] = {-5, 7};
  file_.dataset(member("i64"), H5T_NATIVE_LLONG, {2}, wide);

  const ReadDocument document = readExpecting(0);

  EXPECT_EQ(ints(document, "i16"), (std::vector<int>{-2, 2}));
  EXPECT_EQ(ints(document, "u8"), (std::vector<int>{255, 1}));
  EXPECT_EQ(ints(document, "i64"), (std::vector<int>{-5, 7}));
}

TEST_P(ReadVectors, IntegersBeyond32BitsAreClamped) {
  const long long wide[] = {1LL << 40U, -(1LL << 40U)};
  file_.dataset(member("i64"), H5T_NATIVE_LLONG, {2}, wide);

  EXPECT_EQ(ints(readExpecting(0), "i64"),
            (std::vector<int>{std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}));
}

TEST_P(ReadVectors, FloatsOfAnyPrecisionAndOrderAreConverted) {
  const float single[] = {0.5F, -1.25F};
  file_.dataset(member("f32"), H5T_NATIVE_FLOAT, {2}, single);
  file_.dataset(member("f64be"), H5T_IEEE_F64BE, {1}, "\x3f\xf8\0\0\0\0\0\0");

  const ReadDocument document = readExpecting(0);

  EXPECT_EQ(doubles(document, "f32"), (std::vector<double>{0.5, -1.25}));
  EXPECT_EQ(doubles(document, "f64be"), std::vector<double>{1.5});
}

TEST_P(ReadVectors, EmptyOnesAreThere) {
  file_.intVector(member("i"), {});
  file_.doubleVector(member("d"), {});

  const ReadDocument document = readExpecting(0);

  EXPECT_EQ(ints(document, "i"), std::vector<int>{});
  EXPECT_EQ(doubles(document, "d"), std::vector<double>{});
}

// Only older formats compare the number of values with the number of entities.
TEST_P(ReadVectors, LengthIsTheDatasets) {
  file_.intVector(member("long"), std::vector<int>(100, 5));

  EXPECT_EQ(ints(readExpecting(0), "long"), std::vector<int>(100, 5));
}

TEST_P(ReadVectors, SubgroupIsSkipped) {
  file_.group(member("group"));
  file_.intVector(member("group/inside"), {1});

  expectSkipped("group");
}

TEST_P(ReadVectors, NamedTypeIsSkipped) {
  const hid_t type = H5Tcopy(H5T_NATIVE_INT);
  H5Tcommit2(file_.id(), member("type").c_str(), type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  H5Tclose(type);

  expectSkipped("type");
}

TEST_P(ReadVectors, LinkToNothingIsSkipped) {
  H5Lcreate_soft("/no/such/object", file_.id(), member("link").c_str(), H5P_DEFAULT, H5P_DEFAULT);

  expectSkipped("link");
}

TEST_P(ReadVectors, LinkToADatasetIsReadUnderTheNameOfTheLink) {
  file_.intVector("/elsewhere", {5, 6});
  H5Lcreate_soft("/elsewhere", file_.id(), member("link").c_str(), H5P_DEFAULT, H5P_DEFAULT);

  EXPECT_EQ(ints(readExpecting(0), "link"), (std::vector<int>{5, 6}));
}

TEST_P(ReadVectors, TextIsSkipped) {
  file_.dataset(member("text"), H5T_C_S1, {3}, "abc");

  expectSkipped("text");
}

TEST_P(ReadVectors, CompoundIsSkipped) {
  file_.parameterTable(member("table"), {{"a", 1}});

  expectSkipped("table");
}

TEST_P(ReadVectors, EnumerationIsSkipped) {
  const hid_t type = H5Tenum_create(H5T_NATIVE_INT);
  const int one = 1;
  H5Tenum_insert(type, "ONE", &one);
  file_.dataset(member("enumeration"), type, {1}, &one);
  H5Tclose(type);

  expectSkipped("enumeration");
}

TEST_P(ReadVectors, BitFieldIsSkipped) {
  file_.dataset(member("bits"), H5T_STD_B8LE, {1}, "\7");

  expectSkipped("bits");
}

TEST_P(ReadVectors, OtherTypeWithoutExtentsIsSkippedToo) {
  file_.dataset(member("text"), H5T_C_S1, {}, "a");

  expectSkipped("text");
}

TEST_P(ReadVectors, UnreadableIntegersGiveOne) {
  unreadableDataset(file_, member("i"), H5T_NATIVE_INT, {3});

  expectFailed("i");
}

TEST_P(ReadVectors, UnreadableFloatsGiveOne) {
  unreadableDataset(file_, member("d"), H5T_NATIVE_DOUBLE, {3});

  expectFailed("d");
}

TEST_P(ReadVectors, DatasetWithoutExtentsGivesOne) {
  const int value = 5;
  file_.dataset(member("scalar"), H5T_NATIVE_INT, {}, &value);

  expectFailed("scalar");
}

TEST_P(ReadVectors, MoreValuesThanTheFirstExtentGiveOne) {
  const double values[] = {1, 2, 3, 4};
  file_.dataset(member("table"), H5T_NATIVE_DOUBLE, {2, 2}, values);

  expectFailed("table");
}

TEST_P(ReadVectors, ColumnOfATableIsRead) {
  const double values[] = {1, 2, 3};
  file_.dataset(member("column"), H5T_NATIVE_DOUBLE, {3, 1}, values);

  EXPECT_EQ(doubles(readExpecting(0), "column"), (std::vector<double>{1, 2, 3}));
}

TEST_P(ReadVectors, LinkToAFileThatDoesNotExistIsSkipped) {
  H5Lcreate_external("no_such_file.h5", "/v", file_.id(), member("link").c_str(), H5P_DEFAULT,
                     H5P_DEFAULT);

  expectSkipped("link");
}

TEST_P(ReadVectors, ClaimOfMoreValuesThanAVectorHoldsGivesOne) {
  file_.dataset(member("huge"), H5T_NATIVE_INT, {hsize_t{1} << 33U}, nullptr);

  expectFailed("huge");
}

TEST_P(ReadVectors, NamesLongerThanWritersTakeAreReadWhole) {
  const std::string longName(500, 'n');
  file_.intVector(member(longName), {5});

  EXPECT_EQ(ints(readExpecting(0), longName.c_str()), std::vector<int>{5});
}

TEST_P(ReadVectors, LongestPathOfAMemberIsRead) {
  const std::string name(1023 - member("").size(), 'n');
  file_.intVector(member(name), {5});

  EXPECT_EQ(ints(readExpecting(0), name.c_str()), std::vector<int>{5});
}

TEST_P(ReadVectors, PathOfAMemberWithOneByteMoreGivesOne) {
  const std::string name(1024 - member("").size(), 'n');
  file_.intVector(member(name), {5});

  expectFailed(name.c_str());
}

TEST_P(ReadVectors, MissingGroupIsNoFailure) {
  file_.remove(GetParam().path);

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(ints(document, "first"), std::nullopt);
}

TEST_P(ReadVectors, EmptyGroupIsNoFailure) {
  file_.remove(member("first"));
  file_.remove(member("z_last"));

  EXPECT_EQ(read(file_).result, 0);
}

TEST_P(ReadVectors, DatasetAtThePlaceOfTheGroupIsNoFailure) {
  replaceInts(file_, GetParam().path, {1});

  EXPECT_EQ(read(file_).result, 0);
}

TEST_P(ReadVectors, LinkToNothingAtThePlaceOfTheGroupIsNoFailure) {
  file_.remove(GetParam().path);
  H5Lcreate_soft("/no/such/group", file_.id(), GetParam().path, H5P_DEFAULT, H5P_DEFAULT);

  EXPECT_EQ(read(file_).result, 0);
}

class VectorStore : public ExchangeFileTest {};

TEST_F(VectorStore, KeepsItsOtherEntriesWhenAGroupIsRead) {
  RawFile file = RawFile::create(path());
  file.group("/A");
  file.intVector("/A/both", {1});
  file.intVector("/A/new", {2});
  orvml_io::OML_AttributesVector store;
  const double old = 0.5;
  store.Set("both", &old, 1, true);
  store.Set("kept", &old, 1, true);
  // The block of a replaced entry stays allocated for whoever holds it.
  const orvml_io::MallocBlock replaced(store.find("both")->data);
  orvml_io::SourceFile source(file.id());

  EXPECT_EQ(store.HDF5Read(source, source.root(), "/A"), 0);

  EXPECT_EQ(store.count(), 3U);
  EXPECT_EQ(store.find("both")->code, 'i');
  EXPECT_FALSE(store.find("both")->mustBeTransmitted);
  EXPECT_TRUE(store.find("kept")->mustBeTransmitted);
  EXPECT_EQ(*static_cast<int*>(store.find("new")->data), 2);
  store.DeleteAll();
}

TEST_F(VectorStore, TakesNothingFromAFileThatIsNone) {
  const orvml_io::Silence silence;
  orvml_io::OML_AttributesVector store;
  orvml_io::SourceFile none(-1);

  EXPECT_EQ(store.HDF5Read(none, none.root(), "/A"), 0);

  EXPECT_EQ(store.count(), 0U);
}

}  // namespace
}  // namespace orvml_io_tests
