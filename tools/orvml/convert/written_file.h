#pragma once

#include "convert/byte_sink.h"

#include <filesystem>
#include <string>

namespace orvml_tool {

/// A file of another format that is written beside its place and moved there when it is whole, so
/// that whatever fails leaves the old file, or none. Symbolic links are followed, the rights of an
/// old file stay. It is not flushed to the device: it can be made again.
///
/// While it is open, its own name tells whoever ends the program by a signal that it has to go.
class WrittenFile {
 public:
  /// Throws Refusal when there cannot be such a file.
  explicit WrittenFile(const std::filesystem::path& path);
  WrittenFile(const WrittenFile&) = delete;
  WrittenFile& operator=(const WrittenFile&) = delete;
  WrittenFile(WrittenFile&&) = delete;
  WrittenFile& operator=(WrittenFile&&) = delete;
  /// Removes it unless it has taken its place.
  ~WrittenFile() = default;

  [[nodiscard]] ByteSink& sink() noexcept { return sink_; }

  /// Throws Refusal when the last bytes cannot be written or the place cannot be taken.
  void takePlace();

 private:
  /// An open file that goes with its name, if it still has that.
  struct Beside {
    std::string name;
    int descriptor = -1;

    Beside(const std::filesystem::path& path, const std::filesystem::path& target);
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;
    Beside(Beside&&) = delete;
    Beside& operator=(Beside&&) = delete;
    ~Beside();
  };

  std::filesystem::path path_;
  std::filesystem::path target_;
  Beside beside_;
  ByteSink sink_;
};

}  // namespace orvml_tool
