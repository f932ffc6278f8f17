#include "fuzz/harness/hdf5_in_memory.h"

#include "fuzz/harness/finding.h"
#include "fuzz/harness/fuzz_target.h"
#include "hdf5/id.h"
#include "support/open_ids.h"

#include <stdlib.h>  // setenv is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)

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

hid_t createInMemory(bool latestFormat) {
  constexpr std::size_t kGrowthBytes = std::size_t{64} << 10;
  constexpr std::size_t kSieveBytes = 512;  // HDF5 clears such a buffer for each dataset
  const orvml_io::PropertyListId access(H5Pcreate(H5P_FILE_ACCESS));
  H5Pset_fapl_core(access.get(), kGrowthBytes, false);
  H5Pset_sieve_buf_size(access.get(), kSieveBytes);
  if (latestFormat) {
    H5Pset_libver_bounds(access.get(), H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
  }
  return H5Fcreate("in-memory", H5F_ACC_TRUNC, H5P_DEFAULT, access.get());
}

}  // namespace

void setUpHdf5() {
  ::setenv("TEST_TMPDIR", "/dev/shm/", 0);  // where the files of TempFile lie, unless it is said
  H5dont_atexit();
  H5PLset_loading_state(0);  // an input may name a filter, and no library is to be looked for
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  // Every file takes the same tables of some hundred kilobytes: HDF5 may keep them for the next.
  constexpr int kKeptBytes = 4 << 20;
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
