// Positional layouts as other tools write them, in files of formats below 1.4.
#include "files/exchange_file_fixture.h"

namespace orvml_io_tests {
namespace {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

class ForeignPositions : public ExchangeFileTest {
 protected:
  /// Makes a positional group that covers one position.
  void addGroup(const std::string& path, int maxId = 1) {
    file_.group(path);
    file_.intAttributeValue(path, "MAX_ID", maxId);
  }
  void addInts(const std::string& path, const Extents& extents, const Ints& values) {
    file_.dataset(path, H5T_NATIVE_INT, extents, values.data());
  }
  void addDoubles(const std::string& path, const Extents& extents, const Doubles& values) {
    file_.dataset(path, H5T_NATIVE_DOUBLE, extents, values.data());
  }

  [[nodiscard]] RawFile& file() { return file_; }
  ReadDocument readFile() { return read(file_); }

 private:
  static RawFile withoutTable(RawFile file) {
    file.remove("/OrvInput/parameters");  // the named layout's
    return file;
  }

  RawFile file_ = withoutTable(smallInput("1.3"));
};

/// Extents of three values, and the result of reading them as a vector.
struct VectorRow {
  const char* name;
  Extents extents;
  int result;

  friend std::ostream& operator<<(std::ostream& stream, const VectorRow& row) {
    return stream << row.name;
  }
};

class ForeignPositionalVector : public ForeignPositions,
                                public ::testing::WithParamInterface<VectorRow> {};

TEST_P(ForeignPositionalVector, OfScalarsIsReadWhenItsRowsHoldOneValueEach) {
  addDoubles("/OrvInput/parameters", GetParam().extents, {0.5, 1.5, 2.5});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, GetParam().result);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), GetParam().result == 0 ? 3U : 0U);
  EXPECT_EQ(scalarOf(document.handle(), "ORVML_OCTREEMESHER_TOLERANCE_FOR_GAPS"),
            GetParam().result == 0 ? std::optional(2.5) : std::nullopt);
}

TEST_P(ForeignPositionalVector, OfIntsIsReadWhenItsRowsHoldOneValueEach) {
  addGroup("/OrvInput/GenericMarkers");
  addInts("/OrvInput/GenericMarkers/0", GetParam().extents, {4, 5, 6});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, GetParam().result);
  EXPECT_EQ(intParameterOf(document.handle(), "0"),
            GetParam().result == 0 ? std::optional(Ints{4, 5, 6}) : std::nullopt);
}

TEST_P(ForeignPositionalVector, OfDoublesIsReadWhenItsRowsHoldOneValueEach) {
  addGroup("/OrvInput/GenericAttributes", 2);
  addDoubles("/OrvInput/GenericAttributes/1", GetParam().extents, {0.5, 1.5, 2.5});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, GetParam().result);
  EXPECT_EQ(doubleParameterOf(document.handle(), "1"),
            GetParam().result == 0 ? std::optional(Doubles{0.5, 1.5, 2.5}) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Ranks, ForeignPositionalVector,
                         ::testing::Values(VectorRow{"Vector", {3}, 0},
                                           VectorRow{"Column", {3, 1}, 0},
                                           VectorRow{"ColumnOfRankThree", {3, 1, 1}, 0},
                                           VectorRow{"Row", {1, 3}, 1}),
                         RowName());

/// Extents of an attribute of three nodes, and what it is read as; none when it is refused.
struct AttributeRow {
  const char* name;
  Extents extents;
  std::optional<Ints> expected;

  friend std::ostream& operator<<(std::ostream& stream, const AttributeRow& row) {
    return stream << row.name;
  }
};

class ForeignPositionalAttribute : public ForeignPositions,
                                   public ::testing::WithParamInterface<AttributeRow> {
 protected:
  [[nodiscard]] static int expectedResult() { return GetParam().expected ? 0 : 1; }
};

TEST_P(ForeignPositionalAttribute, OfIntsIsFilledUpWithZerosAndNeverCut) {
  addGroup("/OrvInput/Nodes/UserMarkers", 6);
  addInts("/OrvInput/Nodes/UserMarkers/5", GetParam().extents, {7, 8, 9, 10});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, expectedResult());
  EXPECT_EQ(intAttributeOf(document.handle(), ORVML_NODES, "user-marker-5"), GetParam().expected);
}

TEST_P(ForeignPositionalAttribute, OfDoublesIsFilledUpWithZerosAndNeverCut) {
  addGroup("/OrvInput/Nodes/UserAttributes", 6);
  addDoubles("/OrvInput/Nodes/UserAttributes/5", GetParam().extents, {7, 8, 9, 10});
  std::optional<Doubles> expected;
  if (GetParam().expected) {
    expected.emplace(GetParam().expected->begin(), GetParam().expected->end());
  }

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, expectedResult());
  EXPECT_EQ(doubleAttributeOf(document.handle(), ORVML_NODES, "user-attribute-5"), expected);
}

INSTANTIATE_TEST_SUITE_P(Extents, ForeignPositionalAttribute,
                         ::testing::Values(AttributeRow{"AsMany", {3}, Ints{7, 8, 9}},
                                           AttributeRow{"Column", {3, 1}, Ints{7, 8, 9}},
                                           AttributeRow{"Fewer", {2}, Ints{7, 8, 0}},
                                           AttributeRow{"NoExtents", {}, Ints{7, 0, 0}},
                                           AttributeRow{"None", {0}, Ints{0, 0, 0}},
                                           AttributeRow{"More", {4}, std::nullopt},
                                           AttributeRow{"MoreInATable", {2, 2}, std::nullopt}),
                         RowName());

/// A type that a count may be stored in, and a number of positions in it.
struct MaxIdRow {
  const char* name;
  hid_t (*type)();
  double value;
  std::vector<bool> areRead;  // the positions 0, 1 and 2

  friend std::ostream& operator<<(std::ostream& stream, const MaxIdRow& row) {
    return stream << row.name;
  }
};

class ForeignMaxId : public ForeignPositions, public ::testing::WithParamInterface<MaxIdRow> {};

TEST_P(ForeignMaxId, MayBeOfAnyTypeOfNumbersWhoseFractionIsCut) {
  double value = GetParam().value;
  const hid_t type = GetParam().type();
  ASSERT_GE(H5Tconvert(H5T_NATIVE_DOUBLE, type, 1, &value, nullptr, H5P_DEFAULT), 0);
  file().group("/OrvInput/GenericMarkers");
  file().attribute("/OrvInput/GenericMarkers", "MAX_ID", type, {1}, &value);
  for (const char* position : {"0", "1", "2"}) {
    addInts(std::string("/OrvInput/GenericMarkers/") + position, {1}, {1});
  }

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  std::vector<bool> areRead;
  for (const char* position : {"0", "1", "2"}) {
    areRead.push_back(intParameterOf(document.handle(), position).has_value());
  }
  EXPECT_EQ(areRead, GetParam().areRead);
}

INSTANTIATE_TEST_SUITE_P(
    Types, ForeignMaxId,
    ::testing::Values(
        MaxIdRow{"Float", [] { return H5T_NATIVE_FLOAT; }, 2.7, {true, true, false}},
        MaxIdRow{"Double", [] { return H5T_NATIVE_DOUBLE; }, 2.7, {true, true, false}},
        MaxIdRow{"WholeDouble", [] { return H5T_NATIVE_DOUBLE; }, 3, {true, true, true}},
        MaxIdRow{"BigEndianDouble", [] { return H5T_IEEE_F64BE; }, 1.5, {true, false, false}},
        MaxIdRow{"BigEndianInt", [] { return H5T_STD_I32BE; }, 2, {true, true, false}}),
    RowName());

}  // namespace
}  // namespace orvml_io_tests
