// Reading the table of scalar parameters of files that others made.
#include "files/exchange_file_fixture.h"
#include "files/parameter_tables.h"
#include "hdf5/source_file.h"
#include "model/document.h"
#include "support/group_at.h"

#include <cmath>
#include <cstring>

namespace orvml_io_tests {
namespace {

/// One field of a table that is made by hand.
struct Field {
  const char* name;
  std::size_t offset;
  hid_t (*makeType)();
};

hid_t textOf80() {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, 80);
  return type;
}
hid_t textOf40() {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, 40);
  return type;
}
hid_t textOf120() {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, 120);
  return type;
}
hid_t utf8TextOf80() {
  const hid_t type = textOf80();
  H5Tset_cset(type, H5T_CSET_UTF8);
  return type;
}
hid_t variableText() {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, H5T_VARIABLE);
  return type;
}
hid_t longInteger() { return H5Tcopy(H5T_STD_I64LE); }

hid_t recordType(std::size_t bytes, const std::vector<Field>& fields) {
  const hid_t type = H5Tcreate(H5T_COMPOUND, bytes);
  for (const Field& field : fields) {
    const hid_t fieldType = field.makeType();
    EXPECT_GE(H5Tinsert(type, field.name, field.offset, fieldType), 0) << field.name;
    H5Tclose(fieldType);
  }
  return type;
}

class ReadParameters : public ExchangeFileTest {
 protected:
  ReadParameters() {
    file_.group("/OrvInput/ParametersVector");
    file_.intVector("/OrvInput/ParametersVector/v", {4});
  }

  void replaceTable(std::size_t recordBytes, const std::vector<Field>& fields,
                    const Extents& extents, const void* records) {
    const hid_t type = recordType(recordBytes, fields);
    replaceDataset(file_, kTable, type, extents, records);
    H5Tclose(type);
  }

  void expectFailureWithoutParameters() {
    const ReadDocument document = read(file_);
    EXPECT_EQ(document.result, 1);
    EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), 0U);
    EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 3) << "what came before is kept";
    EXPECT_EQ(intParameterOf(document.handle(), "v"), std::vector<int>{4}) << "the rest is read";
  }

  RawFile file_ = smallInput();
};

const std::vector<Field> kFields = {{"name", 0, textOf80}, {"value", 80, nativeDouble}};

TEST_F(ReadParameters, EveryRecordBecomesAParameter) {
  file_.remove(kTable);
  file_.parameterTable(kTable, {{"b", 2}, {"a", 1}, {"", -0.5}});

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), 3U);
  EXPECT_EQ(scalarOf(document.handle(), "a"), 1.0);
  EXPECT_EQ(scalarOf(document.handle(), "b"), 2.0);
  EXPECT_EQ(scalarOf(document.handle(), ""), -0.5);
}

TEST_F(ReadParameters, LastRecordOfANameWins) {
  file_.remove(kTable);
  file_.parameterTable(kTable, {{"a", 1}, {"b", 2}, {"a", 3}});

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), 2U);
  EXPECT_EQ(scalarOf(document.handle(), "a"), 3.0);
}

TEST_F(ReadParameters, EmptyTableIsNoFailure) {
  file_.remove(kTable);
  file_.parameterTable(kTable, {});

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), 0U);
}

TEST_F(ReadParameters, RecordsAreAddedToTheParametersOfTheDocument) {
  const BuiltDocument built = BuiltDocument::input(3);
  OrvML_IO_SetParameter(built.handle(), "size", 9.0);
  OrvML_IO_SetParameter(built.handle(), "kept", 8.0);
  orvml_io::OrvInputAndOrvOutput& document = *orvml_io::documentOf(built.handle());
  std::strcpy(document.fileFormatVersion, "1.4");
  orvml_io::SourceFile source(file_.id());

  EXPECT_EQ(document.ReadParametersScalar(source, GroupAt(file_.id(), "/OrvInput")), 0);

  EXPECT_EQ(scalarOf(built.handle(), "size"), 0.5);
  EXPECT_EQ(scalarOf(built.handle(), "kept"), 8.0);
}

TEST_F(ReadParameters, ValuesOfAnyKindAreKept) {
  file_.remove(kTable);
  file_.parameterTable(kTable, {{"nan", std::nan("")}, {"zero", -0.0}, {"inf", HUGE_VAL}});

  const ReadDocument document = read(file_);

  EXPECT_TRUE(std::isnan(scalarOf(document.handle(), "nan").value()));
  EXPECT_TRUE(std::signbit(scalarOf(document.handle(), "zero").value()));
  EXPECT_EQ(scalarOf(document.handle(), "inf"), HUGE_VAL);
}

TEST_F(ReadParameters, NameThatFillsItsFieldIsCutAtItsLastByte) {
  file_.remove(kTable);
  file_.parameterTable(kTable, {{std::string(80, 'n'), 1}, {std::string(79, 'm'), 2}});

  const ReadDocument document = read(file_);

  EXPECT_EQ(scalarOf(document.handle(), std::string(79, 'n')), 1.0);
  EXPECT_EQ(scalarOf(document.handle(), std::string(79, 'm')), 2.0);
}

TEST_F(ReadParameters, BytesBehindTheTerminatorDoNotCount) {
  ParameterRecord record = {"name", 1.5};
  std::memcpy(record.name + 5, "garbage", 7);
  replaceTable(sizeof(ParameterRecord), kFields, {1}, &record);

  EXPECT_EQ(scalarOf(read(file_).handle(), "name"), 1.5);
}

TEST_F(ReadParameters, MissingTableGivesOne) {
  file_.remove(kTable);

  expectFailureWithoutParameters();
}

TEST_F(ReadParameters, GroupAtThePlaceOfTheTableGivesOne) {
  file_.remove(kTable);
  file_.group(kTable);

  expectFailureWithoutParameters();
}

TEST_F(ReadParameters, VectorOfNumbersAtThePlaceOfTheTableGivesOne) {
  file_.remove(kTable);
  file_.doubleVector(kTable, {0.5, 1.5});

  expectFailureWithoutParameters();
}

TEST_F(ReadParameters, UnreadableTableGivesOne) {
  const hid_t type = recordType(sizeof(ParameterRecord), kFields);
  replaceByUnreadable(file_, kTable, type, {2});
  H5Tclose(type);

  expectFailureWithoutParameters();
}

TEST_F(ReadParameters, TableWithoutExtentsGivesOne) {
  const ParameterRecord record = {"name", 1.5};
  replaceTable(sizeof(ParameterRecord), kFields, {}, &record);

  expectFailureWithoutParameters();
}

TEST_F(ReadParameters, MoreRecordsThanTheirFirstExtentGiveOne) {
  const ParameterRecord records[] = {{"a", 1}, {"b", 2}};
  replaceTable(sizeof(ParameterRecord), kFields, {1, 2}, records);

  expectFailureWithoutParameters();
}

TEST_F(ReadParameters, ClaimOfMoreRecordsThanMemoryHoldsGivesOne) {
  replaceTable(sizeof(ParameterRecord), kFields, {hsize_t{1} << 40U}, nullptr);

  expectFailureWithoutParameters();
}

TEST_F(ReadParameters, GapsBetweenFieldsDoNotMatter) {
  std::vector<char> record(120, '\x55');
  std::strcpy(&record[8], "gap");
  const double value = 2.5;
  std::memcpy(&record[104], &value, sizeof(value));
  replaceTable(record.size(), {{"name", 8, textOf80}, {"value", 104, nativeDouble}}, {1},
               record.data());

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "gap"), 2.5);
}

TEST_F(ReadParameters, OtherByteOrderIsConverted) {
  std::vector<char> record(88, '\0');
  std::strcpy(record.data(), "big");
  std::memcpy(&record[80], "\x3f\xf8", 2);  // 1.5
  replaceTable(record.size(), {{"name", 0, textOf80}, {"value", 80, bigEndianDouble}}, {1},
               record.data());

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "big"), 1.5);
}

TEST_F(ReadParameters, FieldsCountByTheirPositionsWhateverTheirNames) {
  const ParameterRecord record = {"size", 1.5};
  replaceTable(sizeof(ParameterRecord), {{"value", 0, textOf80}, {"name", 80, nativeDouble}}, {1},
               &record);

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "size"), 1.5);
}

TEST_F(ReadParameters, SinglePrecisionIsConverted) {
  std::vector<char> record(84, '\0');
  std::strcpy(record.data(), "single");
  const float value = 0.25F;
  std::memcpy(&record[80], &value, sizeof(value));
  replaceTable(record.size(), {{"name", 0, textOf80}, {"value", 80, nativeFloat}}, {1},
               record.data());

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "single"), 0.25);
}

/// The bytes of the field of names, and the letters in it.
struct NameField {
  const char* name;
  hid_t (*makeType)();
  std::size_t bytes;
  std::size_t letters;
  std::size_t lettersRead;

  friend std::ostream& operator<<(std::ostream& stream, const NameField& field) {
    return stream << field.name;
  }
};

class NameFieldTest : public ReadParameters, public ::testing::WithParamInterface<NameField> {};

TEST_P(NameFieldTest, GivesNamesOfUpTo79Bytes) {
  std::vector<char> record(GetParam().bytes + sizeof(double), '\0');
  std::memset(record.data(), 'n', GetParam().letters);
  const double value = 1.5;
  std::memcpy(&record[GetParam().bytes], &value, sizeof(value));
  replaceTable(record.size(),
               {{"name", 0, GetParam().makeType}, {"value", GetParam().bytes, nativeDouble}}, {1},
               record.data());

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), 1U);
  EXPECT_EQ(scalarOf(document.handle(), std::string(GetParam().lettersRead, 'n')), 1.5);
}

INSTANTIATE_TEST_SUITE_P(Each, NameFieldTest,
                         ::testing::Values(NameField{"Shorter", textOf40, 40, 39, 39},
                                           NameField{"ShorterAndFull", textOf40, 40, 40, 40},
                                           NameField{"Longer", textOf120, 120, 79, 79},
                                           NameField{"LongerWithALongerName", textOf120, 120, 100,
                                                     79}),
                         RowName());

TEST_F(ReadParameters, NamesInUtf8AreReadByteByByte) {
  const ParameterRecord record = {
      "gr\xC3\xB6\xC3\x9F"
      "e",
      1.5};
  replaceTable(sizeof(ParameterRecord), {{"name", 0, utf8TextOf80}, {"value", 80, nativeDouble}},
               {1}, &record);

  EXPECT_EQ(scalarOf(read(file_).handle(), record.name), 1.5);
}

TEST_F(ReadParameters, TableAsAColumnIsRead) {
  const ParameterRecord records[] = {{"a", 1}, {"b", 2}};
  replaceTable(sizeof(ParameterRecord), kFields, {2, 1}, records);

  const ReadDocument document = read(file_);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "b"), 2.0);
}

/// Tables that are none of parameters.
struct OtherTable {
  const char* name;
  std::vector<Field> fields;
  std::size_t recordBytes;

  friend std::ostream& operator<<(std::ostream& stream, const OtherTable& table) {
    return stream << table.name;
  }
};

class OtherTableTest : public ReadParameters, public ::testing::WithParamInterface<OtherTable> {};

TEST_P(OtherTableTest, GivesOne) {
  replaceTable(GetParam().recordBytes, GetParam().fields, {1}, nullptr);

  expectFailureWithoutParameters();
}

INSTANTIATE_TEST_SUITE_P(
    Each, OtherTableTest,
    ::testing::Values(
        OtherTable{
            "FieldsTheOtherWayRound", {{"value", 0, nativeDouble}, {"name", 8, textOf80}}, 88},
        OtherTable{"NameAlone", {{"name", 0, textOf80}}, 80},
        OtherTable{"ValueAlone", {{"value", 0, nativeDouble}}, 8},
        OtherTable{"ThirdField",
                   {{"name", 0, textOf80}, {"value", 80, nativeDouble}, {"unit", 88, nativeDouble}},
                   96},
        OtherTable{"TwoTexts", {{"name", 0, textOf80}, {"value", 80, textOf80}}, 160},
        OtherTable{"TwoNumbers", {{"name", 0, nativeDouble}, {"value", 8, nativeDouble}}, 16},
        OtherTable{"IntegerValues", {{"name", 0, textOf80}, {"value", 80, longInteger}}, 88},
        OtherTable{
            "NamesOfVariableLength", {{"name", 0, variableText}, {"value", 8, nativeDouble}}, 16}),
    RowName());

TEST_F(ReadParameters, NegativeFileGivesOne) {
  const BuiltDocument built = BuiltDocument::input(3);
  orvml_io::OrvInputAndOrvOutput& document = *orvml_io::documentOf(built.handle());
  std::strcpy(document.fileFormatVersion, "1.4");
  orvml_io::SourceFile none(-1);

  EXPECT_EQ(document.ReadParametersScalar(none, none.root()), 1);
  EXPECT_EQ(document.ReadParametersVector(none, none.root()), 1);
}

// The objects are there under a path that is too long: they must not be read by a shorter one.
TEST_F(ReadParameters, PathThatIsTooLongGivesOne) {
  const BuiltDocument built = BuiltDocument::input(3);
  orvml_io::OrvInputAndOrvOutput& document = *orvml_io::documentOf(built.handle());
  std::strcpy(document.fileFormatVersion, "1.4");
  orvml_io::SourceFile source(file_.id());
  const GroupAt group(file_.id(), std::string(1013, '/') + "OrvInput");

  EXPECT_EQ(document.ReadParametersScalar(source, group), 1);
  EXPECT_EQ(document.ReadParametersVector(source, group), 1);

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(built.handle()), 0U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(built.handle()), 0U);
}

}  // namespace
}  // namespace orvml_io_tests
