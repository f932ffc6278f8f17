#pragma once

#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/view.hpp>

#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace orvml {

/// An array that a mapped file had to read, because its values do not lie in the file as they do in
/// memory.
struct ReadArray {
  std::string object;  ///< its absolute path in the file
  std::string reason;  ///< for example "is chunked"
};

/// An exchange file whose arrays are looked at where they lie: in the pages of the file, which the
/// system brings into memory when they are touched. What is not contiguous in the file, of another
/// type or byte order, or misaligned is read when the file is opened. Nothing stays open in HDF5.
///
/// The content stays what it was when the file is replaced, which is what the writers of both
/// interfaces do to a file that is mapped. A program that shortens or overwrites the file in place
/// without regard for its lock breaks that, and every other mapping of it.
class ORVML_EXPORT MappedFile {
 public:
  /// Opens and maps a file. Throws as load() does, but for Code::memoryOutOfProportion where a
  /// mapped array takes no memory of its own.
  explicit MappedFile(const std::filesystem::path& path, Policy policy = Policy::strict);
  MappedFile(MappedFile&& other) noexcept;
  MappedFile& operator=(MappedFile&& other) noexcept;
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile();

  [[nodiscard]] bool hasInput() const noexcept;
  [[nodiscard]] bool hasOutput() const noexcept;

  /// The documents; they throw Code::noInput and Code::noOutput. The views are valid as long as
  /// this object, also when it is moved.
  [[nodiscard]] InputView input() const&;
  InputView input() const&& = delete;
  [[nodiscard]] OutputView output() const&;
  OutputView output() const&& = delete;

  /// The arrays that were read, in the order of the file.
  [[nodiscard]] std::span<const ReadArray> readArrays() const& noexcept;
  std::span<const ReadArray> readArrays() const&& = delete;

  /// What a tolerant opening met.
  [[nodiscard]] std::span<const Finding> findings() const& noexcept;
  std::span<const Finding> findings() const&& = delete;

 private:
  struct Content;
  std::unique_ptr<Content> content_;
};

}  // namespace orvml
