#include "fuzz/harness/hdf5_in_memory.h"

#include "fuzz/harness/finding.h"
#include "fuzz/harness/fuzz_target.h"
#include "support/open_ids.h"

#include <stdlib.h>  // setenv is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace orvml_io_tests {

namespace {

std::size_t keepOrFail(unsigned flags, std::size_t /*parameterCount*/,
                       const unsigned* /*parameters*/, std::size_t bytes,
                       std::size_t* /*bufferBytes*/, void** /*buffer*/) {
  constexpr std::size_t kFailure = 0;
  return (flags & H5Z_FLAG_REVERSE) != 0 ? kFailure : bytes;
}

void registerFailingFilter() {
  H5Z_class2_t filter = {};
  filter.version = H5Z_CLASS_T_VERS;
  filter.id = kFailingFilter;
  filter.encoder_present = 1;
  filter.decoder_present = 1;
  filter.name = "fails to decode";
  filter.filter = keepOrFail;
  require(H5Zregister(&filter) >= 0, "the failing filter can be registered");
}

/// The memory of the file that is open, kept for the next one: otherwise each would grow by being
/// copied, into memory that the system has to provide first. Between two files it is all zeros.
class FileImage {
 public:
  static void* resize(void* image, std::size_t bytes, H5FD_file_image_op_t /*operation*/,
                      void* /*data*/) {
    if (image != nullptr ? image != memory_ : memory_ != nullptr && isTaken_) {
      return std::realloc(image, bytes);  // of a second file
    }
    if (bytes > bytes_) {
      const std::size_t grown = std::max(bytes, 2 * bytes_);
      void* memory = std::realloc(memory_, grown);
      if (memory == nullptr) {
        return nullptr;
      }
      std::memset(static_cast<char*>(memory) + bytes_, 0, grown - bytes_);
      memory_ = memory;
      bytes_ = grown;
    }
    isTaken_ = true;
    usedBytes_ = std::max(usedBytes_, bytes);
    return memory_;
  }

  static void* take(std::size_t bytes, H5FD_file_image_op_t operation, void* data) {
    return resize(nullptr, bytes, operation, data);
  }

  static herr_t giveBack(void* image, H5FD_file_image_op_t /*operation*/, void* /*data*/) {
    if (image != memory_) {
      std::free(image);
      return 0;
    }
    std::memset(memory_, 0, usedBytes_);
    usedBytes_ = 0;
    isTaken_ = false;
    return 0;
  }

 private:
  static inline void* memory_ = nullptr;
  static inline std::size_t bytes_ = 0;
  static inline std::size_t usedBytes_ = 0;
  static inline bool isTaken_ = false;
};

hid_t makeAccessInMemory(bool latestFormat) {
  constexpr std::size_t kGrowthBytes = std::size_t{64} << 10;
  constexpr std::size_t kSieveBytes = 512;  // HDF5 clears such a buffer for each dataset
  constexpr hsize_t kMetadataBytes = hsize_t{32} << 10;  // asked for at once
  const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
  H5Pset_fapl_core(access, kGrowthBytes, false);
  H5Pset_sieve_buf_size(access, kSieveBytes);
  H5Pset_meta_block_size(access, kMetadataBytes);
  H5FD_file_image_callbacks_t memory = {
      FileImage::take, nullptr, FileImage::resize, FileImage::giveBack, nullptr, nullptr, nullptr};
  H5Pset_file_image_callbacks(access, &memory);
  if (latestFormat) {
    H5Pset_libver_bounds(access, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
  }
  return access;
}

hid_t createInMemory(bool latestFormat) {
  static const hid_t access[] = {makeAccessInMemory(false), makeAccessInMemory(true)};
  return H5Fcreate("in-memory", H5F_ACC_TRUNC, H5P_DEFAULT, access[latestFormat ? 1 : 0]);
}

}  // namespace

void setUpHdf5() {
  ::setenv("TEST_TMPDIR", "/dev/shm/", 0);  // where the files of TempFile lie, unless it is said
  H5dont_atexit();
  H5PLset_loading_state(0);  // an input may name a filter, and no library is to be looked for
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  // Every file takes the same tables of some hundred kilobytes, and large values some mebibytes:
  // HDF5 may keep them for the next.
  constexpr int kKeptBytes = 64 << 20;
  H5set_free_list_limits(kKeptBytes, kKeptBytes, kKeptBytes, kKeptBytes, kKeptBytes, kKeptBytes);
  registerFailingFilter();
}

MemoryFile::MemoryFile(bool latestFormat) : id_(createInMemory(latestFormat)) {
  require(id_ >= 0, "a file can be made in memory");
}

MemoryFile::~MemoryFile() { OpenIds::closeAll(); }

}  // namespace orvml_io_tests

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  orvml_io_tests::setUpHdf5();
  return 0;
}
