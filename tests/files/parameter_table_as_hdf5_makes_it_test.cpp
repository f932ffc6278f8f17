// The parameter table against the one that HDF5's own Table interface makes of the same records:
// programs that read tables through that interface, or look at their attributes, must find no
// difference.
#include "files/exchange_file_fixture.h"
#include "files/parameter_tables.h"

#include <hdf5_hl.h>

#include <cstring>

namespace orvml_io_tests {

// Its suite and the one of the bytes of the table are called alike, and so are their classes.
namespace made_by_hdf5 {

namespace {

constexpr char kOwnTable[] = "/parameters";

using NamedValues = std::vector<std::pair<std::string, double>>;

/// Everything of a table but its address: what two of them have in common when they are made alike.
struct TableDescription {
  std::vector<std::string> lines;

  template <class... Values>
  void add(const char* what, const Values&... values) {
    std::string line = what;
    ((line += " " + text(values)), ...);
    lines.push_back(line);
  }

  static std::string text(const std::string& value) { return value; }
  template <class Number>
  static std::string text(Number value) {
    return std::to_string(value);
  }
};

/// The encoded form of a type: class, size, order, padding, character set, fields and offsets.
std::string encoded(hid_t type) {
  std::size_t bytes = 0;
  EXPECT_GE(H5Tencode(type, nullptr, &bytes), 0);
  std::string code(bytes, '\0');
  EXPECT_GE(H5Tencode(type, code.data(), &bytes), 0);
  return code;
}

void describeType(hid_t type, const std::string& where, TableDescription& table) {
  table.add("type", where, static_cast<int>(H5Tget_class(type)), H5Tget_size(type));
  if (H5Tget_class(type) == H5T_STRING) {
    table.add("text", where, static_cast<int>(H5Tget_strpad(type)),
              static_cast<int>(H5Tget_cset(type)), H5Tis_variable_str(type));
  }
  if (H5Tget_class(type) != H5T_COMPOUND) {
    return;
  }
  for (unsigned i = 0; i < static_cast<unsigned>(H5Tget_nmembers(type)); ++i) {
    char* const name = H5Tget_member_name(type, i);
    const hid_t member = H5Tget_member_type(type, i);
    table.add("field", std::string(name), H5Tget_member_offset(type, i));
    describeType(member, name, table);
    H5Tclose(member);
    H5free_memory(name);
  }
}

void describeSpace(hid_t space, const std::string& where, TableDescription& table) {
  hsize_t extents[H5S_MAX_RANK] = {};
  hsize_t most[H5S_MAX_RANK] = {};
  const int rank = H5Sget_simple_extent_dims(space, extents, most);
  table.add("space", where, static_cast<int>(H5Sget_simple_extent_type(space)), rank);
  for (int i = 0; i < rank; ++i) {
    table.add("extent", where, extents[i], most[i]);
  }
}

void describeCreation(hid_t properties, TableDescription& table) {
  table.add("layout", static_cast<int>(H5Pget_layout(properties)));
  if (H5Pget_layout(properties) == H5D_CHUNKED) {
    hsize_t chunk[H5S_MAX_RANK] = {};
    table.add("chunk", H5Pget_chunk(properties, H5S_MAX_RANK, chunk), chunk[0]);
  }
  table.add("filters", H5Pget_nfilters(properties));
  H5D_fill_value_t fill = H5D_FILL_VALUE_ERROR;
  H5D_fill_time_t fillTime = H5D_FILL_TIME_ERROR;
  H5D_alloc_time_t allocationTime = H5D_ALLOC_TIME_ERROR;
  unsigned attributeOrder = 0;
  H5Pfill_value_defined(properties, &fill);
  H5Pget_fill_time(properties, &fillTime);
  H5Pget_alloc_time(properties, &allocationTime);
  H5Pget_attr_creation_order(properties, &attributeOrder);
  table.add("fill", static_cast<int>(fill), static_cast<int>(fillTime),
            static_cast<int>(allocationTime));
  table.add("order of attributes", attributeOrder);
}

herr_t describeAttribute(hid_t table, const char* name, const H5A_info_t* /*info*/, void* data) {
  auto& description = *static_cast<TableDescription*>(data);
  const hid_t attribute = H5Aopen(table, name, H5P_DEFAULT);
  const hid_t type = H5Aget_type(attribute);
  const hid_t space = H5Aget_space(attribute);
  std::string value(static_cast<std::size_t>(H5Aget_storage_size(attribute)), '\0');
  H5Aread(attribute, type, value.data());
  description.add("attribute", std::string(name), value);
  describeType(type, name, description);
  describeSpace(space, name, description);
  H5Sclose(space);
  H5Tclose(type);
  H5Aclose(attribute);
  return 0;
}

TableDescription descriptionOf(const RawFile& file, const char* path) {
  TableDescription description;
  const hid_t table = H5Dopen2(file.id(), path, H5P_DEFAULT);
  EXPECT_GE(table, 0) << path;
  const hid_t type = H5Dget_type(table);
  const hid_t space = H5Dget_space(table);
  const hid_t creation = H5Dget_create_plist(table);
  describeType(type, "table", description);
  description.add("encoded", encoded(type));
  describeSpace(space, "table", description);
  describeCreation(creation, description);
  hsize_t position = 0;
  H5Aiterate2(table, H5_INDEX_NAME, H5_ITER_INC, &position, describeAttribute, &description);
  H5Pclose(creation);
  H5Sclose(space);
  H5Tclose(type);
  H5Dclose(table);
  return description;
}

/// The records of a table, names up to their terminators.
NamedValues recordsOf(const RawFile& file, const char* path, std::size_t count) {
  const std::size_t offsets[] = {offsetof(ParameterRecord, name), offsetof(ParameterRecord, value)};
  const std::size_t sizes[] = {sizeof(ParameterRecord::name), sizeof(ParameterRecord::value)};
  std::vector<ParameterRecord> records(count);
  EXPECT_GE(
      H5TBread_table(file.id(), path, sizeof(ParameterRecord), offsets, sizes, records.data()), 0);
  NamedValues values;
  for (const ParameterRecord& record : records) {
    values.emplace_back(record.name, record.value);
  }
  return values;
}

/// Makes the table with HDF5's Table interface. Names must be shorter than their field.
void makeOwnTable(RawFile& file, const NamedValues& parameters) {
  std::vector<ParameterRecord> records(parameters.size());
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    std::strcpy(records[i].name, parameters[i].first.c_str());
    records[i].value = parameters[i].second;
  }
  const hid_t text = H5Tcopy(H5T_C_S1);
  H5Tset_size(text, sizeof(ParameterRecord::name));
  const char* fieldNames[] = {"name", "value"};
  const std::size_t offsets[] = {offsetof(ParameterRecord, name), offsetof(ParameterRecord, value)};
  const hid_t fieldTypes[] = {text, H5T_NATIVE_DOUBLE};
  ASSERT_GE(
      H5TBmake_table("parameters", file.id(), kOwnTable, 2, records.size(), sizeof(ParameterRecord),
                     fieldNames, offsets, fieldTypes, 10, nullptr, 0, records.data()),
      0);
  H5Tclose(text);
}

/// Parameters in the order of their names, by how many there are.
class ParameterTable : public ExchangeFileTest, public ::testing::WithParamInterface<int> {
 protected:
  ParameterTable() {
    for (int i = 0; i < GetParam(); ++i) {
      const std::string number = std::to_string(100000 + i);
      parameters_.emplace_back("p" + number + std::string(static_cast<std::size_t>(i % 60), 'x'),
                               i * 0.5);
    }
  }

  /// Writes the document with the library and puts the table of HDF5 beside its own.
  RawFile writtenWithBothTables() {
    const BuiltDocument document = BuiltDocument::input(3);
    for (const auto& [name, value] : parameters_) {
      OrvML_IO_SetParameter(document.handle(), name.c_str(), value);
    }
    written(document).close();
    RawFile file = RawFile::openForWriting(path());
    makeOwnTable(file, parameters_);
    return file;
  }

  [[nodiscard]] const NamedValues& parameters() const { return parameters_; }

 private:
  NamedValues parameters_;
};

TEST_P(ParameterTable, IsDescribedAsHdf5DescribesItsOwn) {
  const RawFile file = writtenWithBothTables();

  EXPECT_EQ(descriptionOf(file, kTable).lines, descriptionOf(file, kOwnTable).lines);
}

TEST_P(ParameterTable, IsReadByHdf5AsItsOwn) {
  const RawFile file = writtenWithBothTables();

  EXPECT_EQ(recordsOf(file, kOwnTable, parameters().size()), parameters());
  EXPECT_EQ(recordsOf(file, kTable, parameters().size()), parameters());
}

TEST_P(ParameterTable, TakesTheSpaceInTheFileThatHdf5sOwnTakes) {
  const RawFile file = writtenWithBothTables();

  const hid_t table = H5Dopen2(file.id(), kTable, H5P_DEFAULT);
  const hid_t own = H5Dopen2(file.id(), kOwnTable, H5P_DEFAULT);
  EXPECT_EQ(H5Dget_storage_size(table), H5Dget_storage_size(own));
  H5Dclose(own);
  H5Dclose(table);
}

// One record, a chunk, a chunk and one more, and more than pass at once.
INSTANTIATE_TEST_SUITE_P(Lengths, ParameterTable, ::testing::Values(1, 10, 11, 4001));

/// The description of a table is what the tests above compare: it has to tell tables apart.
class TableDescriptions : public ExchangeFileTest {};

TEST_F(TableDescriptions, DifferBetweenTheTableInterfaceAndAPlainDataset) {
  RawFile file = RawFile::create(path());
  makeOwnTable(file, {{"size", 0.5}});
  file.parameterTable("/plain", {{"size", 0.5}});

  EXPECT_NE(descriptionOf(file, "/plain").lines, descriptionOf(file, kOwnTable).lines);
}

}  // namespace

}  // namespace made_by_hdf5

}  // namespace orvml_io_tests
