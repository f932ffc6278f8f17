#include "hdf5/parameter_table.h"

#include "hdf5/datasets.h"
#include "hdf5/extents.h"
#include "hdf5/layout.h"
#include "hdf5/status.h"
#include "model/limits.h"

#include <algorithm>
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

constexpr int kNumberOfFields = 2;
constexpr std::size_t kFieldOffsets[kNumberOfFields] = {offsetof(ParameterRecord, name),
                                                        offsetof(ParameterRecord, value)};

DatatypeId makeNameType(H5T_cset_t characterSet) {
  DatatypeId type(H5Tcopy(H5T_C_S1));
  if (!type.valid() || H5Tset_size(type.get(), kNameBytes) < 0 ||
      H5Tset_cset(type.get(), characterSet) < 0) {
    return DatatypeId();
  }
  return type;
}

/// The character set of the names in a table. HDF5 converts no text from one set to another, so the
/// type in memory has to have the file's.
H5T_cset_t nameCharacterSet(hid_t fileRecordType) {
  const DatatypeId type(H5Tget_member_type(fileRecordType, 0));
  return type.valid() ? H5Tget_cset(type.get()) : H5T_CSET_ERROR;
}

/// The compound type of a record in memory.
DatatypeId makeRecordType(H5T_cset_t characterSet) {
  const DatatypeId nameType = makeNameType(characterSet);
  DatatypeId type(H5Tcreate(H5T_COMPOUND, sizeof(ParameterRecord)));
  if (!nameType.valid() || !type.valid() ||
      H5Tinsert(type.get(), layout::kParameterNameField, kFieldOffsets[0], nameType.get()) < 0 ||
      H5Tinsert(type.get(), layout::kParameterValueField, kFieldOffsets[1], H5T_NATIVE_DOUBLE) <
          0) {
    return DatatypeId();
  }
  return type;
}

bool isField(hid_t recordType, unsigned index, const char* name, H5T_class_t typeClass,
             std::size_t bytes) {
  char* fieldName = H5Tget_member_name(recordType, index);
  const bool nameMatches = fieldName != nullptr && std::strcmp(fieldName, name) == 0;
  if (fieldName != nullptr) {
    (void)H5free_memory(fieldName);
  }
  const DatatypeId type(H5Tget_member_type(recordType, index));
  return nameMatches && type.valid() && H5Tget_class(type.get()) == typeClass &&
         H5Tget_size(type.get()) == bytes && H5Tis_variable_str(type.get()) <= 0;
}

/// Tells whether the records of a table have exactly the two fields of a parameter.
bool isParameterRecord(hid_t type) {
  return H5Tget_class(type) == H5T_COMPOUND && H5Tget_nmembers(type) == kNumberOfFields &&
         isField(type, 0, layout::kParameterNameField, H5T_STRING, kNameBytes) &&
         isField(type, 1, layout::kParameterValueField, H5T_FLOAT, sizeof(double));
}

/// Records that pass at once: whole chunks, some hundred kilobytes.
constexpr std::size_t kBlockLength = std::size_t{400} * layout::kParametersChunk;

using Records = std::vector<ParameterRecord>;

/// Moves one block of records between memory and file. `Transfer` is H5Dread or H5Dwrite.
template <class Transfer, class Record>
int transferBlock(Transfer transfer, hid_t dataset, hid_t recordType, hsize_t start, hsize_t count,
                  Record* records) {
  const DataspaceId inFile(H5Dget_space(dataset));
  const DataspaceId inMemory(H5Screate_simple(1, &count, nullptr));
  const bool isSelected =
      inFile.valid() && inMemory.valid() &&
      H5Sselect_hyperslab(inFile.get(), H5S_SELECT_SET, &start, nullptr, &count, nullptr) >= 0;
  return isSelected && transfer(dataset, recordType, inMemory.get(), inFile.get(), H5P_DEFAULT,
                                records) >= 0
             ? kOk
             : kFailed;
}

/// Makes the empty table: chunked and extensible, as the Table interface makes it.
DatasetId createTable(hid_t location, const Path& path, hid_t recordType, hsize_t length) {
  const hsize_t chunk = layout::kParametersChunk;
  const hsize_t unlimited = H5S_UNLIMITED;
  const DataspaceId space(H5Screate_simple(1, &length, &unlimited));
  const PropertyListId creation(H5Pcreate(H5P_DATASET_CREATE));
  if (!space.valid() || !creation.valid() || H5Pset_chunk(creation.get(), 1, &chunk) < 0) {
    return DatasetId();
  }
  return DatasetId(H5Dcreate2(location, path.c_str(), recordType, space.get(), H5P_DEFAULT,
                              creation.get(), H5P_DEFAULT));
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
  records.reserve(std::min(parameters.count(), kBlockLength));
  hsize_t written = 0;
  auto next = parameters.begin();
  while (next != parameters.end()) {
    records.clear();
    for (; next != parameters.end() && records.size() < kBlockLength; ++next) {
      records.push_back(toRecord(next->first, next->second));
    }
    if (transferBlock(H5Dwrite, dataset, recordType, written, records.size(), records.data()) !=
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

/// The type in memory of the records of a table; no answer when it is no table of parameters.
DatatypeId recordTypeOf(hid_t dataset) {
  const DatatypeId fileType(H5Dget_type(dataset));
  if (!fileType.valid() || !isParameterRecord(fileType.get())) {
    return DatatypeId();
  }
  return makeRecordType(nameCharacterSet(fileType.get()));
}

}  // namespace

bool fitsRecord(const std::string& name) noexcept { return name.size() < kNameBytes; }

int writeParameterTable(hid_t location, const Path& path,
                        const OML_AttributesScalar<double>& parameters) {
  const bool allFit = std::all_of(parameters.begin(), parameters.end(),
                                  [](const auto& named) { return fitsRecord(named.first); });
  const DatatypeId recordType = makeRecordType(H5T_CSET_ASCII);
  if (!allFit || !recordType.valid()) {
    return kFailed;
  }
  DatasetId table = createTable(location, path, recordType.get(), parameters.count());
  if (!table.valid() || writeRecords(table.get(), recordType.get(), parameters) != kOk ||
      describeTable(table.get()) != kOk) {
    return kFailed;
  }
  return table.close() < 0 ? kFailed : kOk;  // chunks that were kept back are written only now
}

int readParameterTable(hid_t dataset, OML_AttributesScalar<double>& parameters) {
  const std::optional<int> length = vectorLength(dataset, sizeof(ParameterRecord));
  const DatatypeId recordType = recordTypeOf(dataset);
  if (!length || !recordType.valid()) {
    return kFailed;
  }
  const auto count = static_cast<std::size_t>(*length);
  OML_AttributesScalar<double> found;
  for (std::size_t start = 0; start < count; start += kBlockLength) {
    Records records(std::min(count - start, kBlockLength));
    if (transferBlock(H5Dread, dataset, recordType.get(), start, records.size(), records.data()) !=
        kOk) {
      return kFailed;
    }
    for (ParameterRecord& record : records) {
      record.name[kNameBytes - 1] = '\0';  // other tools may fill the field to its last byte
      found.Set(record.name, record.value);
    }
  }
  parameters.SetAll(std::move(found));
  return kOk;
}

}  // namespace orvml_io
