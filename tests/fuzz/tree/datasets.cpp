#include "fuzz/tree/datasets.h"

#include "fuzz/tree/datatypes.h"
#include "fuzz/tree/values.h"

#include <algorithm>

namespace orvml_io_tests {

namespace {

using orvml_io::DatasetId;
using orvml_io::DataspaceId;
using orvml_io::DatatypeId;

Lengths firstChunkOf(Lengths lengths) {
  constexpr hsize_t kLongest = 1024;
  for (hsize_t& length : lengths) {
    length = std::min(length, kLongest);
  }
  return lengths;
}

Selection selectionOf(const Storage& storage, const std::optional<Lengths>& lengths) {
  Selection selection;
  if (storage.written == Written::nothing || !lengths) {
    return selection;
  }
  const bool isPart = storage.written == Written::firstChunk && !lengths->empty();
  const Lengths written = isPart ? firstChunkOf(*lengths) : *lengths;
  const hsize_t count = numberOfValues(written).value_or(kMostValuesWritten + 1);
  if (count > kMostValuesWritten) {
    return selection;
  }
  if (isPart) {
    const Lengths start(lengths->size(), 0);
    selection.inFile = dataspaceOf(lengths, storage.isExtendible);
    H5Sselect_hyperslab(selection.inFile.get(), H5S_SELECT_SET, start.data(), nullptr,
                        written.data(), nullptr);
    selection.inMemory = DataspaceId(H5Screate_simple(1, &count, nullptr));
  }
  selection.count = static_cast<std::size_t>(count);
  return selection;
}

/// Most datasets have no list: HDF5 copies a list for each, its own default it only counts.
hid_t creationOf(const Storage& storage) {
  return storage.creation.valid() ? storage.creation.get() : H5P_DEFAULT;
}

/// Values that need converting go through a buffer that HDF5 clears for each dataset: a mebibyte by
/// default, for a few values here.
hid_t transferWithSmallBuffer() {
  constexpr std::size_t kBufferBytes = std::size_t{16} << 10;
  static const hid_t transfer = [] {
    const hid_t list = H5Pcreate(H5P_DATASET_XFER);
    H5Pset_buffer(list, kBufferBytes, nullptr, nullptr);
    return list;
  }();
  return transfer;
}

bool isMadeOfPlainBytes(hid_t type) {
  return H5Tdetect_class(type, H5T_VLEN) <= 0 && H5Tdetect_class(type, H5T_STRING) <= 0 &&
         H5Tdetect_class(type, H5T_REFERENCE) <= 0;
}

/// Writes numbers as numbers, and bytes where a type is no number. Texts and what is a pointer in
/// memory are left unwritten.
void writeValues(hid_t dataset, const Selection& selection, unsigned choice,
                 const std::vector<double>& normal) {
  constexpr std::size_t kMostValuesOfBytes = 4096;
  const DatatypeId type(H5Dget_type(dataset));
  switch (H5Tget_class(type.get())) {
    case H5T_INTEGER:
      writeSelection(dataset, selection, H5T_NATIVE_LLONG,
                     integersOf(choice, normal, selection.count).data());
      break;
    case H5T_FLOAT:
      writeSelection(dataset, selection, H5T_NATIVE_DOUBLE,
                     doublesOf(choice, normal, selection.count).data());
      break;
    default:
      if (isMadeOfPlainBytes(type.get()) && selection.count <= kMostValuesOfBytes) {
        const std::vector<char> bytes(selection.count * H5Tget_size(type.get()), 'A');
        writeSelection(dataset, selection, type.get(), bytes.data());
      }
  }
}

/// Numbers that the processor does not know are converted bit by bit: with a hundred thousand of
/// them one dataset takes as long as ten trees, and a few show as much. Many are of the usual type.
bool convertsSlowly(hid_t type, const std::optional<Lengths>& lengths) {
  constexpr hsize_t kFew = 4096;
  const H5T_class_t kind = H5Tget_class(type);
  if (numberOfValues(lengths).value_or(0) <= kFew || (kind != H5T_INTEGER && kind != H5T_FLOAT)) {
    return false;
  }
  const DatatypeId native(H5Tget_native_type(type, H5T_DIR_ASCEND));
  return H5Tequal(type, native.get()) <= 0;
}

}  // namespace

DatasetChoices datasetChoicesFrom(ByteSource& bytes) {
  DatasetChoices choices = {};
  choices.place = bytes.next();
  choices.type = bytes.next();
  choices.extents = bytes.next();
  choices.storage = bytes.next();
  choices.values = bytes.next();
  return choices;
}

void writeSelection(hid_t dataset, const Selection& selection, hid_t type, const void* values) {
  if (selection.count > 0) {
    const bool isPart = selection.inFile.valid();
    H5Dwrite(dataset, type, isPart ? selection.inMemory.get() : H5S_ALL,
             isPart ? selection.inFile.get() : H5S_ALL, transferWithSmallBuffer(), values);
  }
}

void makeChosenDataset(Tree& tree, hid_t parent, const std::string& name,
                       const DatasetChoices& choices, hid_t type, const Lengths& normalLengths,
                       const Fill& fill) {
  const std::optional<Lengths> lengths = lengthsOf(choices.extents, normalLengths);
  const Storage storage = storageOf(choices.storage, lengths, type);
  place(tree, choices.place, parent, name, [&](hid_t location, const char* linkName) {
    const DataspaceId space = dataspaceOf(lengths, storage.isExtendible);
    const DatasetId dataset(H5Dcreate2(location, linkName, type, space.get(), H5P_DEFAULT,
                                       creationOf(storage), H5P_DEFAULT));
    if (dataset.valid()) {
      fill(dataset.get(), selectionOf(storage, lengths));
    }
  });
}

void makeDataset(Tree& tree, hid_t parent, const DatasetPlan& plan) {
  const DatasetChoices choices = datasetChoicesFrom(tree.bytes);
  DatatypeId type = datatypeOf(choices.type, plan.type);
  if (convertsSlowly(type.get(), lengthsOf(choices.extents, plan.lengths))) {
    type = datatypeOf(0, plan.type);
  }
  makeChosenDataset(tree, parent, plan.name, choices, type.get(), plan.lengths,
                    [&](hid_t dataset, const Selection& selection) {
                      writeValues(dataset, selection, choices.values, plan.values);
                    });
}

}  // namespace orvml_io_tests
