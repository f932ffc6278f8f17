// Reads documents from files of any bytes through the exported functions. HDF5 itself fails on many
// of them, so this fuzzer runs apart from the others.
#include "fuzz/harness/fuzz_target.h"
#include "fuzz/harness/read_document.h"
#include "fuzz/harness/whole_interface.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <fstream>
#include <vector>

namespace orvml_io_tests {
namespace {

void writeFile(const char* path, const std::uint8_t* bytes, std::size_t size) {
  const std::vector<char> content(bytes, bytes + size);
  std::ofstream(path, std::ios::binary)
      .write(content.data(), static_cast<std::streamsize>(content.size()));
}

void use(const ReadResult& result) {
  requireReadPromises(result);
  if (result.document.get() != nullptr) {
    useWithoutChange(result.document.get());
  }
}

void run(const std::uint8_t* bytes, std::size_t size) {
  const OpenIds ids;
  const TempFile path;
  writeFile(path.path(), bytes, size);
  ReadResult input;
  input.status = OrvML_IO_ReadOrvInput(path.path(), input.document.out());
  use(input);
  ReadResult output;
  output.status = OrvML_IO_ReadOrvOutput(path.path(), output.document.out());
  use(output);
}

}  // namespace
}  // namespace orvml_io_tests

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orvml_io_tests::run(data, size);
  return 0;
}
