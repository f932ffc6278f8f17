#pragma once

#include <string>

namespace orvml_io_tests {

/// A path that nothing has used before; the file is removed at the end. Each test takes its own:
/// a path that HDF5 still holds open cannot be created again.
class TempFile {
 public:
  TempFile();
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  TempFile(TempFile&&) = delete;
  TempFile& operator=(TempFile&&) = delete;
  ~TempFile();

  [[nodiscard]] const char* path() const noexcept { return path_.c_str(); }

 private:
  std::string path_;
};

}  // namespace orvml_io_tests
