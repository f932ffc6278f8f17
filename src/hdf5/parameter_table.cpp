#include "hdf5/parameter_table.h"

#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/layout.h"
#include "hdf5/status.h"
#include "model/limits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace orvml_io {

namespace {

/// One record of the parameter table. Size and offsets are part of the file format.
struct ParameterRecord {
  char name[kNameBytes];
  double value;
};
static_assert(sizeof(ParameterRecord) == 88 && offsetof(ParameterRecord, value) == 80,
              "the parameter table has records of 88 bytes");

constexpr unsigned kNameField = 0;
constexpr unsigned kValueField = 1;
constexpr int kNumberOfFields = 2;

DatatypeId makeNameType(H5T_cset_t characterSet) {
  DatatypeId type(H5Tcopy(H5T_C_S1));
  if (!type.valid() || H5Tset_size(type.get(), kNameBytes) < 0 ||
      H5Tset_cset(type.get(), characterSet) < 0) {
    return DatatypeId();
  }
  return type;
}

/// The compound type of a record in memory, with the field names of the file: HDF5 matches fields
/// by them.
DatatypeId makeRecordType(const char* nameField, const char* valueField, H5T_cset_t characterSet) {
  const DatatypeId nameType = makeNameType(characterSet);
  DatatypeId type(H5Tcreate(H5T_COMPOUND, sizeof(ParameterRecord)));
  if (!nameType.valid() || !type.valid() ||
      H5Tinsert(type.get(), nameField, offsetof(ParameterRecord, name), nameType.get()) < 0 ||
      H5Tinsert(type.get(), valueField, offsetof(ParameterRecord, value), H5T_NATIVE_DOUBLE) < 0) {
    return DatatypeId();
  }
  return type;
}

/// The name of a field, released with HDF5's own memory function.
class FieldName {
 public:
  FieldName(hid_t recordType, unsigned index) : text_(H5Tget_member_name(recordType, index)) {}
  FieldName(const FieldName&) = delete;
  FieldName& operator=(const FieldName&) = delete;
  FieldName(FieldName&&) = delete;
  FieldName& operator=(FieldName&&) = delete;
  ~FieldName() {
    if (text_ != nullptr) {
      (void)H5free_memory(text_);
    }
  }
  [[nodiscard]] const char* text() const noexcept { return text_ == nullptr ? "" : text_; }

 private:
  char* text_;
};

/// The type in memory of the records of a table; invalid when they are none of a parameter.
DatatypeId memoryTypeOf(hid_t recordType) {
  if (H5Tget_class(recordType) != H5T_COMPOUND || H5Tget_nmembers(recordType) != kNumberOfFields) {
    return DatatypeId();
  }
  const DatatypeId name(H5Tget_member_type(recordType, kNameField));
  const DatatypeId value(H5Tget_member_type(recordType, kValueField));
  if (H5Tget_class(name.get()) != H5T_STRING || H5Tis_variable_str(name.get()) != 0 ||
      H5Tget_class(value.get()) != H5T_FLOAT) {
    return DatatypeId();
  }
  // HDF5 converts no text from one character set to another, so memory takes the file's.
  return makeRecordType(FieldName(recordType, kNameField).text(),
                        FieldName(recordType, kValueField).text(), H5Tget_cset(name.get()));
}

/// Records that pass at once: whole chunks, some hundred kilobytes.
constexpr std::size_t kRecordsPerBlock = std::size_t{400} * layout::kParametersChunk;

using Records = std::vector<ParameterRecord>;

/// Moves one block of records between memory and file. `Transfer` is H5Dread or H5Dwrite.
///
/// @param rank  of the table, whose further extents are 1
template <class Transfer, class Record>
int transferBlock(Transfer transfer, hid_t dataset, hid_t recordType, int rank, hsize_t start,
                  hsize_t count, Record* records) {
  std::array<hsize_t, H5S_MAX_RANK> starts = {};
  std::array<hsize_t, H5S_MAX_RANK> counts = {};
  std::fill_n(counts.begin(), rank, hsize_t{1});
  starts[0] = start;
  counts[0] = count;
  const DataspaceId inFile(H5Dget_space(dataset));
  const DataspaceId inMemory(H5Screate_simple(1, &count, nullptr));
  const bool isSelected = inFile.valid() && inMemory.valid() &&
                          H5Sselect_hyperslab(inFile.get(), H5S_SELECT_SET, starts.data(), nullptr,
                                              counts.data(), nullptr) >= 0;
  return isSelected && transfer(dataset, recordType, inMemory.get(), inFile.get(), H5P_DEFAULT,
                                records) >= 0
             ? kOk
             : kFailed;
}

/// Makes the empty table: chunked and extensible, as the Table interface makes it.
DatasetId createTable(const OpenGroup& document, hid_t recordType, hsize_t length) {
  const hsize_t chunk = layout::kParametersChunk;
  const hsize_t unlimited = H5S_UNLIMITED;
  const DataspaceId space(H5Screate_simple(1, &length, &unlimited));
  const PropertyListId creation(H5Pcreate(H5P_DATASET_CREATE));
  if (!space.valid() || !creation.valid() || H5Pset_chunk(creation.get(), 1, &chunk) < 0) {
    return DatasetId();
  }
  return DatasetId(H5Dcreate2(document.id(), relativeName(layout::kParameters), recordType,
                              space.get(), H5P_DEFAULT, creation.get(), H5P_DEFAULT));
}

/// The bytes behind a name are zeros, so that no stray memory reaches a file.
ParameterRecord toRecord(const std::string& name, double value) noexcept {
  ParameterRecord record = {};
  std::memcpy(record.name, name.data(), name.size());
  record.value = value;
  return record;
}

int writeRecords(hid_t dataset, hid_t recordType, const OML_AttributesScalar<double>& parameters) {
  Records records;
  records.reserve(std::min(parameters.count(), kRecordsPerBlock));
  hsize_t written = 0;
  auto next = parameters.begin();
  while (next != parameters.end()) {
    records.clear();
    for (; next != parameters.end() && records.size() < kRecordsPerBlock; ++next) {
      records.push_back(toRecord(next->first, next->second));
    }
    if (transferBlock(H5Dwrite, dataset, recordType, 1, written, records.size(), records.data()) !=
        kOk) {
      return kFailed;
    }
    written += records.size();
  }
  return kOk;
}

/// Writes what tells other programs that the dataset is a table.
int describeTable(hid_t dataset) {
  const std::pair<const char*, const char*> texts[] = {
      {layout::kTableClass, layout::kTableClassName},
      {layout::kTableVersion, layout::kTableVersionText},
      {layout::kTableTitle, layout::kParametersTableTitle},
      {layout::kTableFirstField, layout::kParameterNameField},
      {layout::kTableSecondField, layout::kParameterValueField}};
  const bool areSet = std::all_of(std::begin(texts), std::end(texts), [dataset](const auto& text) {
    return setText(dataset, text.first, text.second) == kOk;
  });
  return areSet ? kOk : kFailed;
}

/// Reads a whole table, block by block.
int readRecords(hid_t dataset, hid_t recordType, const Extent& extent,
                OML_AttributesScalar<double>& found) {
  const hsize_t count = extent.first;
  for (hsize_t start = 0; start < count; start += kRecordsPerBlock) {
    Records records(std::min<hsize_t>(count - start, kRecordsPerBlock));
    if (transferBlock(H5Dread, dataset, recordType, extent.rank, start, records.size(),
                      records.data()) != kOk) {
      return kFailed;
    }
    for (ParameterRecord& record : records) {
      record.name[kNameBytes - 1] = '\0';  // other tools may fill the field to its last byte
      found.Set(record.name, record.value);
    }
  }
  return kOk;
}

}  // namespace

bool fitsRecord(const std::string& name) noexcept { return name.size() < kNameBytes; }

int writeParameterTable(const OpenGroup& document, const OML_AttributesScalar<double>& parameters) {
  const bool allFit = std::all_of(parameters.begin(), parameters.end(),
                                  [](const auto& named) { return fitsRecord(named.first); });
  const DatatypeId recordType =
      makeRecordType(layout::kParameterNameField, layout::kParameterValueField, H5T_CSET_ASCII);
  if (!allFit || !recordType.valid() || !document.fits(layout::kParameters)) {
    return kFailed;
  }
  DatasetId table = createTable(document, recordType.get(), parameters.count());
  if (!table.valid() || writeRecords(table.get(), recordType.get(), parameters) != kOk ||
      describeTable(table.get()) != kOk) {
    return kFailed;
  }
  return table.close() < 0 ? kFailed : kOk;  // chunks that were kept back are written only now
}

int readParameterTable(SourceFile& file, const OpenGroup& document, hid_t dataset,
                       OML_AttributesScalar<double>& parameters) {
  const DatatypeId fileType(H5Dget_type(dataset));
  const DatatypeId recordType = memoryTypeOf(fileType.get());
  const std::optional<Extent> extent = extentOf(dataset);
  const std::optional<int> length = extent ? vectorLength(*extent) : std::nullopt;
  if (!recordType.valid() || !length) {
    file.report(recordType.valid() ? Trouble::wrongShape : Trouble::wrongType, document,
                layout::kParameters, [] { return "is no table of names and values"; });
    return kFailed;
  }
  OML_AttributesScalar<double> found;
  if (!file.affords(document, layout::kParameters,
                    readCostOf(dataset, *extent, *length, sizeof(ParameterRecord)))) {
    return kFailed;
  }
  if (readRecords(dataset, recordType.get(), *extent, found) != kOk) {
    file.report(Trouble::unreadable, document, layout::kParameters,
                [] { return "cannot be read"; });
    return kFailed;
  }
  parameters.SetAll(std::move(found));
  return kOk;
}

}  // namespace orvml_io
