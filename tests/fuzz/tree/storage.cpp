#include "fuzz/tree/storage.h"

#include "fuzz/harness/choice.h"
#include "fuzz/harness/hdf5_in_memory.h"

#include <algorithm>
#include <iterator>

namespace orvml_io_tests {

namespace {

// Nothing of this name exists, so what refers to it can be followed but never found.
constexpr char kMissingFile[] = "/nonexistent/orvml_io.h5";

/// What a storage is made for.
struct Shape {
  const std::optional<Lengths>& lengths;
  hid_t type;
};

using StorageMaker = void (*)(Storage& storage, const Shape& shape);

/// Chunks for as many values take long to write, and are to a reader what larger chunks are.
constexpr hsize_t kMostChunksAlong = 256;

void useChunksOf(Storage& storage, const Shape& shape, hsize_t longest) {
  if (!shape.lengths || shape.lengths->empty()) {
    return;
  }
  Lengths chunk = *shape.lengths;
  for (hsize_t& length : chunk) {
    const hsize_t limit =
        length <= kMostValuesWritten ? std::max(longest, length / kMostChunksAlong + 1) : longest;
    length = std::clamp<hsize_t>(length, 1, limit);
  }
  storage.isExtendible = true;
  H5Pset_chunk(storage.creation.get(), static_cast<int>(chunk.size()), chunk.data());
}

void useSmallChunks(Storage& storage, const Shape& shape) { useChunksOf(storage, shape, 8); }

void leaveUnwritten(Storage& storage, const Shape& /*shape*/) {
  storage.written = Written::nothing;
}

void useFillValue(Storage& storage, const Shape& /*shape*/) {
  const int fill = 7;
  H5Pset_fill_value(storage.creation.get(), H5T_NATIVE_INT, &fill);
  storage.written = Written::nothing;
}

/// Space for all values from the beginning, but only where that is little.
void allocateEarly(Storage& storage, const Shape& shape) {
  constexpr hsize_t kMostValues = 4096;
  if (numberOfValues(shape.lengths).value_or(kMostValues) < kMostValues) {
    H5Pset_alloc_time(storage.creation.get(), H5D_ALLOC_TIME_EARLY);
    H5Pset_fill_time(storage.creation.get(), H5D_FILL_TIME_NEVER);
  }
  storage.written = Written::nothing;
}

void useDeflate(Storage& storage, const Shape& shape) {
  useChunksOf(storage, shape, 4096);
  H5Pset_shuffle(storage.creation.get());
  H5Pset_deflate(storage.creation.get(), 1);
}

void useChecksum(Storage& storage, const Shape& shape) {
  useSmallChunks(storage, shape);
  H5Pset_fletcher32(storage.creation.get());
}

void useBitPacking(Storage& storage, const Shape& shape) {
  useSmallChunks(storage, shape);
  H5Pset_nbit(storage.creation.get());
}

void useScaleOffset(Storage& storage, const Shape& shape) {
  useSmallChunks(storage, shape);
  if (H5Tget_class(shape.type) == H5T_FLOAT) {
    H5Pset_scaleoffset(storage.creation.get(), H5Z_SO_FLOAT_DSCALE, 2);
  } else {
    H5Pset_scaleoffset(storage.creation.get(), H5Z_SO_INT, H5Z_SO_INT_MINBITS_DEFAULT);
  }
}

void useFailingFilter(Storage& storage, const Shape& shape) {
  useChunksOf(storage, shape, 4096);
  H5Pset_filter(storage.creation.get(), kFailingFilter, H5Z_FLAG_MANDATORY, 0, nullptr);
}

void useExternalFile(Storage& storage, const Shape& /*shape*/) {
  H5Pset_external(storage.creation.get(), kMissingFile, 0, H5F_UNLIMITED);
  storage.written = Written::nothing;
}

/// All values lie in a dataset of the same shape in another file.
void useVirtualDataset(Storage& storage, const Shape& shape) {
  const orvml_io::DataspaceId space = dataspaceOf(shape.lengths, false);
  H5Pset_virtual(storage.creation.get(), space.get(), kMissingFile, "/values", space.get());
  storage.written = Written::nothing;
}

constexpr StorageMaker kStorages[] = {
    [](Storage& /*storage*/, const Shape& /*shape*/) {},  // has no list either
    leaveUnwritten,
    [](Storage& storage, const Shape& /*shape*/) {
      H5Pset_layout(storage.creation.get(), H5D_COMPACT);
    },
    useSmallChunks,
    [](Storage& storage, const Shape& shape) {
      useChunksOf(storage, shape, 1024);
      storage.written = Written::nothing;
    },
    [](Storage& storage, const Shape& shape) {
      useChunksOf(storage, shape, 1024);
      storage.written = Written::firstChunk;
    },
    useDeflate,
    useChecksum,
    useBitPacking,
    useScaleOffset,
    [](Storage& storage, const Shape& shape) {
      useSmallChunks(storage, shape);
      H5Pset_szip(storage.creation.get(), H5_SZIP_NN_OPTION_MASK, 2);
    },
    useFillValue,
    allocateEarly,
    useFailingFilter,
    useExternalFile,
    useVirtualDataset,
};

}  // namespace

Storage storageOf(unsigned choice, const std::optional<Lengths>& lengths, hid_t type) {
  Storage storage;
  if (choice % std::size(kStorages) == 0) {
    return storage;
  }
  storage.creation = orvml_io::PropertyListId(H5Pcreate(H5P_DATASET_CREATE));
  chosen(choice, kStorages)(storage, Shape{lengths, type});
  return storage;
}

}  // namespace orvml_io_tests
