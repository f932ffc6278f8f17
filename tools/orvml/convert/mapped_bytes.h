#pragma once

#include <string>
#include <string_view>

namespace orvml_tool {

/// The bytes of a file of another format, mapped where that can be, else read.
class MappedBytes {
 public:
  /// @param name  "-" is standard input. Throws Refusal when it cannot be read.
  explicit MappedBytes(const std::string& name);
  MappedBytes(const MappedBytes&) = delete;
  MappedBytes& operator=(const MappedBytes&) = delete;
  MappedBytes(MappedBytes&&) = delete;
  MappedBytes& operator=(MappedBytes&&) = delete;
  ~MappedBytes();

  /// Valid as long as the object. Whoever cuts the file off while it is mapped ends the program, as
  /// with every mapped file.
  [[nodiscard]] std::string_view bytes() const noexcept { return bytes_; }

 private:
  void* pages_ = nullptr;
  std::string read_;
  std::string_view bytes_;
};

}  // namespace orvml_tool
