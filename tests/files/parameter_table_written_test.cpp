// The table of scalar parameters in a written file, down to its bytes.
#include "files/exchange_file_fixture.h"
#include "files/parameter_tables.h"
#include "hdf5/id.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace orvml_io_tests {
namespace {

using orvml_io::DatasetId;
using orvml_io::DatatypeId;
using PropertiesId = orvml_io::OwnedId<H5Pclose>;

constexpr std::size_t kRecordBytes = 88;
constexpr std::size_t kNameBytes = 80;

class ParameterTable : public ExchangeFileTest {
 protected:
  BuiltDocument document_ = BuiltDocument::input(3);
};

/// The records of the table as they lie in the file. The buffer is filled beforehand, so that a
/// byte that HDF5 did not write shows.
std::vector<std::string> records(const RawFile& file) {
  const DatasetId dataset(H5Dopen2(file.id(), kTable, H5P_DEFAULT));
  const DatatypeId type(H5Dget_type(dataset.get()));
  const std::size_t count = file.shape(kTable).extents.at(0);
  std::string bytes(count * kRecordBytes, '\xaa');
  EXPECT_GE(H5Dread(dataset.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()), 0);
  std::vector<std::string> list;
  for (std::size_t i = 0; i < count; ++i) {
    list.push_back(bytes.substr(i * kRecordBytes, kRecordBytes));
  }
  return list;
}

std::string recordOf(const std::string& name, double value) {
  std::string record = name;
  record.resize(kRecordBytes, '\0');
  std::memcpy(&record[kNameBytes], &value, sizeof(value));
  return record;
}

TEST_F(ParameterTable, IsAVectorOfRecordsOf88Bytes) {
  document_.scalar("b", 2).scalar("a", 1);

  const RawShape shape = written(document_).shape(kTable);

  EXPECT_EQ(shape.extents, Extents{2});
  EXPECT_EQ(shape.typeClass, H5T_COMPOUND);
  EXPECT_EQ(shape.typeBytes, kRecordBytes);
}

TEST_F(ParameterTable, HasTheFieldsNameAndValueInThatOrder) {
  const RawFile file = written(document_.scalar("a", 1));
  const DatasetId dataset(H5Dopen2(file.id(), kTable, H5P_DEFAULT));
  const DatatypeId type(H5Dget_type(dataset.get()));

  ASSERT_EQ(H5Tget_nmembers(type.get()), 2);
  EXPECT_EQ(H5Tget_member_index(type.get(), "name"), 0);
  EXPECT_EQ(H5Tget_member_index(type.get(), "value"), 1);
  EXPECT_EQ(H5Tget_member_offset(type.get(), 0), 0U);
  EXPECT_EQ(H5Tget_member_offset(type.get(), 1), 80U);
}

TEST_F(ParameterTable, NamesAreFixedCStringsOf80BytesAndValuesNativeDoubles) {
  const RawFile file = written(document_.scalar("a", 1));
  const DatasetId dataset(H5Dopen2(file.id(), kTable, H5P_DEFAULT));
  const DatatypeId type(H5Dget_type(dataset.get()));
  const DatatypeId nameType(H5Tget_member_type(type.get(), 0));
  const DatatypeId valueType(H5Tget_member_type(type.get(), 1));
  const DatatypeId expectedNameType(H5Tcopy(H5T_C_S1));
  H5Tset_size(expectedNameType.get(), kNameBytes);

  EXPECT_GT(H5Tequal(nameType.get(), expectedNameType.get()), 0);
  EXPECT_GT(H5Tequal(valueType.get(), H5T_NATIVE_DOUBLE), 0);
}

TEST_F(ParameterTable, IsChunkedByTenRecordsWithoutCompression) {
  const RawFile file = written(document_.scalar("a", 1));
  const DatasetId dataset(H5Dopen2(file.id(), kTable, H5P_DEFAULT));
  const PropertiesId properties(H5Dget_create_plist(dataset.get()));
  hsize_t chunk = 0;

  EXPECT_EQ(H5Pget_layout(properties.get()), H5D_CHUNKED);
  EXPECT_EQ(H5Pget_chunk(properties.get(), 1, &chunk), 1);
  EXPECT_EQ(chunk, 10U);
  EXPECT_EQ(H5Pget_nfilters(properties.get()), 0);
}

TEST_F(ParameterTable, CarriesTheAttributesOfTheTableInterface) {
  const RawFile file = written(document_.scalar("a", 1));

  EXPECT_EQ(
      file.attributes(kTable),
      (std::vector<std::string>{"CLASS", "FIELD_0_NAME", "FIELD_1_NAME", "TITLE", "VERSION"}));
  EXPECT_STREQ(file.attributeBytes(kTable, "CLASS").c_str(), "TABLE");
  EXPECT_STREQ(file.attributeBytes(kTable, "TITLE").c_str(), "parameters");
  EXPECT_STREQ(file.attributeBytes(kTable, "FIELD_0_NAME").c_str(), "name");
  EXPECT_STREQ(file.attributeBytes(kTable, "FIELD_1_NAME").c_str(), "value");
}

TEST_F(ParameterTable, RecordsLieInAscendingByteOrderOfTheNames) {
  document_.scalar("b", 1).scalar("B", 2).scalar("a", 3).scalar("AB", 4).scalar("A", 5).scalar(
      "\xc3\xa9", 6);

  EXPECT_EQ(
      records(written(document_)),
      (std::vector<std::string>{recordOf("A", 5), recordOf("AB", 4), recordOf("B", 2),
                                recordOf("a", 3), recordOf("b", 1), recordOf("\xc3\xa9", 6)}));
}

// Whatever lay in memory before must not reach a file that goes to somebody else.
TEST_F(ParameterTable, BytesBehindANameAreZeros) {
  document_.scalar(std::string(79, 'a').c_str(), 1).scalar("b", 2);

  EXPECT_EQ(records(written(document_)),
            (std::vector<std::string>{recordOf(std::string(79, 'a'), 1), recordOf("b", 2)}));
}

TEST_F(ParameterTable, EmptyNameIsAName) {
  EXPECT_EQ(records(written(document_.scalar("", 1.5))),
            std::vector<std::string>{recordOf("", 1.5)});
}

TEST_F(ParameterTable, NamesMayHoldAnyByte) {
  document_.scalar("a/b", 1).scalar("two words\n", 2);

  EXPECT_EQ(records(written(document_)),
            (std::vector<std::string>{recordOf("a/b", 1), recordOf("two words\n", 2)}));
}

TEST_F(ParameterTable, MoreRecordsThanAChunkAreAllWritten) {
  for (int i = 0; i < 25; ++i) {
    document_.scalar(std::string(static_cast<std::size_t>(i) + 1, 'n').c_str(), i);
  }

  const std::vector<std::string> list = records(written(document_));

  ASSERT_EQ(list.size(), 25U);
  EXPECT_EQ(list.at(10), recordOf(std::string(11, 'n'), 10));
  EXPECT_EQ(list.at(24), recordOf(std::string(25, 'n'), 24));
}

TEST_F(ParameterTable, IntegersAreDoublesOfTheSameValue) {
  OrvML_IO_SetParameter(document_.handle(), "n", 7);

  EXPECT_EQ(records(written(document_)), std::vector<std::string>{recordOf("n", 7.0)});
}

TEST_F(ParameterTable, EveryBitOfAValueIsKept) {
  std::uint64_t bits = 0x7ff8000000001234U;
  double notANumber = 0;
  std::memcpy(&notANumber, &bits, sizeof(bits));
  document_.scalar("a", notANumber)
      .scalar("b", -0.0)
      .scalar("c", std::numeric_limits<double>::denorm_min())
      .scalar("d", -std::numeric_limits<double>::infinity());

  EXPECT_EQ(records(written(document_)),
            (std::vector<std::string>{recordOf("a", notANumber), recordOf("b", -0.0),
                                      recordOf("c", std::numeric_limits<double>::denorm_min()),
                                      recordOf("d", -HUGE_VAL)}));
}

}  // namespace
}  // namespace orvml_io_tests
