// The table of scalar parameters as other tools make it: what counts is a text and a floating-point
// number in each record, in this order.
#include "files/exchange_file_fixture.h"
#include "files/parameter_tables.h"

#include <cstring>

namespace orvml_io_tests {
namespace {

hid_t bigEndianFloat() { return H5Tcopy(H5T_IEEE_F32BE); }
hid_t nativeInt() { return H5Tcopy(H5T_NATIVE_INT); }

/// The records of a table that another tool makes.
struct TableRow {
  const char* name;
  std::size_t nameBytes = 80;
  hid_t (*valueType)() = nativeDouble;
  const char* nameField = "name";
  const char* valueField = "value";
  H5T_str_t padding = H5T_STR_NULLTERM;
  H5T_cset_t characterSet = H5T_CSET_ASCII;
  Extents extents = {2};

  friend std::ostream& operator<<(std::ostream& stream, const TableRow& row) {
    return stream << row.name;
  }

  [[nodiscard]] hid_t makeNameType() const {
    const hid_t type = H5Tcopy(H5T_C_S1);
    H5Tset_size(type, nameBytes);
    H5Tset_strpad(type, padding);
    H5Tset_cset(type, characterSet);
    return type;
  }
  /// A record with values of a type; takes the type.
  [[nodiscard]] hid_t makeType(hid_t value) const {
    const hid_t text = makeNameType();
    const hid_t type = H5Tcreate(H5T_COMPOUND, nameBytes + H5Tget_size(value));
    H5Tinsert(type, nameField, 0, text);
    H5Tinsert(type, valueField, nameBytes, value);
    H5Tclose(text);
    H5Tclose(value);
    return type;
  }
};

using NamedValue = std::pair<std::string, double>;

/// The bytes of records whose values are native doubles.
std::vector<char> bytesOfRecords(const TableRow& row, const std::vector<NamedValue>& records) {
  const char fill = row.padding == H5T_STR_SPACEPAD ? ' ' : '\0';
  std::vector<char> bytes;
  for (const auto& [name, value] : records) {
    std::string text = name;
    text.resize(row.nameBytes, fill);
    bytes.insert(bytes.end(), text.begin(), text.end());
    const char* raw = reinterpret_cast<const char*>(&value);
    bytes.insert(bytes.end(), raw, raw + sizeof value);
  }
  return bytes;
}

class ForeignTables : public ExchangeFileTest {
 protected:
  void replaceTable(const TableRow& row, const std::vector<NamedValue>& records) {
    const hid_t inFile = row.makeType(row.valueType());
    const hid_t inMemory = row.makeType(nativeDouble());
    replaceDataset(file_, kTable, inFile, row.extents, nullptr);
    const hid_t table = H5Dopen2(file_.id(), kTable, H5P_DEFAULT);
    ASSERT_GE(H5Dwrite(table, inMemory, H5S_ALL, H5S_ALL, H5P_DEFAULT,
                       bytesOfRecords(row, records).data()),
              0);
    H5Dclose(table);
    H5Tclose(inMemory);
    H5Tclose(inFile);
  }
  void replaceTable(hid_t type, const Extents& extents, const void* records) {
    replaceDataset(file_, kTable, type, extents, records);
    H5Tclose(type);
  }
  ReadDocument readFile() { return read(file_); }

  void expectRefused() {
    const ReadDocument document = readFile();
    EXPECT_EQ(document.result, 1);
    EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), 0U);
    EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 3) << "the rest is read";
  }

 private:
  RawFile file_ = smallInput();
};

class ForeignTable : public ForeignTables, public ::testing::WithParamInterface<TableRow> {};

TEST_P(ForeignTable, OfATextAndANumberIsRead) {
  replaceTable(GetParam(), {{"size", 1.5}, {"gap", -0.25}});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), 2U);
  EXPECT_EQ(scalarOf(document.handle(), "size"), 1.5);
  EXPECT_EQ(scalarOf(document.handle(), "gap"), -0.25);
}

TableRow namesOf(const char* name, std::size_t bytes) {
  TableRow row{name};
  row.nameBytes = bytes;
  return row;
}
TableRow valuesOf(const char* name, hid_t (*type)()) {
  TableRow row{name};
  row.valueType = type;
  return row;
}
TableRow fieldsOf(const char* name, const char* nameField, const char* valueField) {
  TableRow row{name};
  row.nameField = nameField;
  row.valueField = valueField;
  return row;
}
TableRow textsOf(const char* name, H5T_str_t padding, H5T_cset_t characterSet) {
  TableRow row{name};
  row.padding = padding;
  row.characterSet = characterSet;
  return row;
}
TableRow extentsOf(const char* name, Extents extents) {
  TableRow row{name};
  row.extents = std::move(extents);
  return row;
}

INSTANTIATE_TEST_SUITE_P(
    Each, ForeignTable,
    ::testing::Values(namesOf("NamesOf8Bytes", 8), namesOf("NamesOf40Bytes", 40),
                      namesOf("NamesOf120Bytes", 120), valuesOf("SinglePrecision", nativeFloat),
                      valuesOf("BigEndian", bigEndianDouble),
                      valuesOf("BigEndianSinglePrecision", bigEndianFloat),
                      fieldsOf("OtherFieldNames", "parameter", "x"),
                      fieldsOf("FieldNamesTheOtherWayRound", "value", "name"),
                      textsOf("NamesPaddedWithSpaces", H5T_STR_SPACEPAD, H5T_CSET_ASCII),
                      textsOf("NamesPaddedWithZeros", H5T_STR_NULLPAD, H5T_CSET_ASCII),
                      textsOf("NamesInUnicode", H5T_STR_NULLTERM, H5T_CSET_UTF8),
                      extentsOf("Column", {2, 1}), extentsOf("ColumnOfRankThree", {2, 1, 1})),
    RowName());

TEST_F(ForeignTables, KeepNamesThatFillTheirField) {
  replaceTable(namesOf("Short", 8), {{"12345678", 1}, {"1234567", 2}});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "12345678"), 1.0);
  EXPECT_EQ(scalarOf(document.handle(), "1234567"), 2.0);
}

TEST_F(ForeignTables, LoseWhatANameHasBehind79Bytes) {
  replaceTable(namesOf("Long", 120), {{std::string(119, 'n'), 1}, {std::string(79, 'm'), 2}});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), std::string(79, 'n')), 1.0);
  EXPECT_EQ(scalarOf(document.handle(), std::string(79, 'm')), 2.0);
}

TEST_F(ForeignTables, OfIntegersAreRefused) {
  replaceTable(valuesOf("Integers", nativeInt), {{"a", 1}, {"b", 2}});

  expectRefused();
}

TEST_F(ForeignTables, InARowAreRefused) {
  replaceTable(extentsOf("Row", {1, 2}), {{"a", 1}, {"b", 2}});

  expectRefused();
}

TEST_F(ForeignTables, WithAThirdFieldAreRefused) {
  const hid_t text = TableRow{"Any"}.makeNameType();
  const hid_t type = H5Tcreate(H5T_COMPOUND, 96);
  H5Tinsert(type, "name", 0, text);
  H5Tinsert(type, "value", 80, H5T_NATIVE_DOUBLE);
  H5Tinsert(type, "unit", 88, H5T_NATIVE_DOUBLE);
  H5Tclose(text);
  const std::vector<char> record(96, '\0');
  replaceTable(type, {1}, record.data());

  expectRefused();
}

TEST_F(ForeignTables, WithTheNumberFirstAreRefused) {
  const hid_t text = TableRow{"Any"}.makeNameType();
  const hid_t type = H5Tcreate(H5T_COMPOUND, 88);
  H5Tinsert(type, "value", 0, H5T_NATIVE_DOUBLE);
  H5Tinsert(type, "name", 8, text);
  H5Tclose(text);
  const std::vector<char> record(88, '\0');
  replaceTable(type, {1}, record.data());

  expectRefused();
}

TEST_F(ForeignTables, WithNamesOfVariableLengthAreRefused) {
  struct Record {
    const char* name;
    double value;
  };
  const hid_t text = H5Tcopy(H5T_C_S1);
  H5Tset_size(text, H5T_VARIABLE);
  const hid_t type = H5Tcreate(H5T_COMPOUND, sizeof(Record));
  H5Tinsert(type, "name", offsetof(Record, name), text);
  H5Tinsert(type, "value", offsetof(Record, value), H5T_NATIVE_DOUBLE);
  H5Tclose(text);
  const Record record = {"size", 1.5};
  replaceTable(type, {1}, &record);

  expectRefused();
}

}  // namespace
}  // namespace orvml_io_tests
