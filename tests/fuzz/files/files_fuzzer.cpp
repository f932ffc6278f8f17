// Reads files in every way of the C++ layer. Their objects, types, extents, storage, values and
// links are those of HDF5 trees that the input decides.
#include "cpp_files/reading_through_cpp.h"
#include "fuzz/harness/byte_source.h"
#include "fuzz/harness/finding.h"
#include "fuzz/harness/fuzz_target.h"
#include "fuzz/harness/hdf5_in_memory.h"
#include "fuzz/harness/read_document.h"
#include "fuzz/tree/document_tree.h"
#include "hdf5/exchange_file.h"
#include "hdf5/id.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

/// What the core's reader gives, in the terms of the flat readers.
template <class Document>
Reading readingOf(hid_t file) {
  if (!orvml_io::IsOrvMeshLibraryIOFormat(file)) {
    return {1, false, {}};
  }
  const ReadResult result = readDocument<Document>(file);
  return {result.status, result.document.get() != nullptr, {}};
}

/// A file that is made; its end closes all that is open in it.
class MadeFile {
 public:
  MadeFile(const char* path, bool latestFormat) {
    const orvml_io::PropertyListId access(H5Pcreate(H5P_FILE_ACCESS));
    if (latestFormat) {
      H5Pset_libver_bounds(access.get(), H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
    }
    id_ = H5Fcreate(path, H5F_ACC_TRUNC, H5P_DEFAULT, access.get());
    require(id_ >= 0, "a file can be made");
  }
  MadeFile(const MadeFile&) = delete;
  MadeFile& operator=(const MadeFile&) = delete;
  MadeFile(MadeFile&&) = delete;
  MadeFile& operator=(MadeFile&&) = delete;
  ~MadeFile() { OpenIds::closeAll(); }

  [[nodiscard]] hid_t id() const noexcept { return id_; }

 private:
  hid_t id_ = -1;
};

/// Makes the file of a tree, and reads it while it is open.
Readings makeFile(ByteSource& bytes, const char* path) {
  const bool latestFormat = bytes.next() % 2 == 1;
  const MadeFile file(path, latestFormat);
  Tree tree{file.id(), bytes};
  makeExchangeTree(tree);
  Readings readings;
  readings.input = readingOf<orvml_io::OrvInput>(file.id());
  readings.output = readingOf<orvml_io::OrvOutput>(file.id());
  return readings;
}

void run(ByteSource bytes) {
  const TempFile temp;
  const Readings flat = makeFile(bytes, temp.path());
  readInEveryWayOfCpp(temp.path(), flat);
}

}  // namespace
}  // namespace orvml_io_tests

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orvml_io_tests::run(orvml_io_tests::ByteSource(data, size));
  orvml_io_tests::require(!::testing::Test::HasFailure(), "all ways to read a file agree");
  return 0;
}
