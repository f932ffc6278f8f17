#pragma once

#include "hdf5/id.h"

#include <cstdint>
#include <vector>

namespace orvml::detail {

/// The bytes of a file that HDF5 writes, as HDF5 sees them. HDF5 cannot bear that a write fails: it
/// keeps what it could not write, tries again whenever it closes something, and may end the process
/// over it. So it is never told. The first failure is remembered for those who made the file, and
/// nothing goes to the disk from then on.
class WrittenBytes {
 public:
  /// Borrows the descriptor of an empty file.
  explicit WrittenBytes(int descriptor) noexcept : descriptor_(descriptor) {}

  /// The error number of the first failure; 0 without one.
  [[nodiscard]] int error() const noexcept { return error_; }

  /// Nothing that comes from here on is wanted.
  void giveUp(int error) noexcept { error_ = error_ == 0 ? error : error_; }

  /// Names memory that stands for values which somebody else writes into the file: what comes from
  /// there only takes its place. Borrowed.
  void leaveOut(const void* first, std::size_t count) noexcept {
    leftOut_ = static_cast<const char*>(first);
    leftOutBytes_ = count;
  }

  void write(std::uint64_t place, const char* bytes, std::size_t count, bool isReadBack) noexcept;
  /// Sets the length that the file is to have.
  void setLength(std::uint64_t bytes) noexcept;
  /// Gives what was written at a place, and zeros where nothing was. Returns false on failure.
  [[nodiscard]] bool read(std::uint64_t place, char* bytes, std::size_t count) noexcept;
  /// Where the last byte that was written lies.
  [[nodiscard]] std::uint64_t end() const noexcept { return end_; }

 private:
  struct Piece {
    std::uint64_t place;
    std::vector<char> bytes;
  };

  void keep(std::uint64_t place, const char* bytes, std::size_t count) noexcept;
  [[nodiscard]] bool isLeftOut(const char* bytes) const noexcept;

  int descriptor_;
  const char* leftOut_ = nullptr;
  std::size_t leftOutBytes_ = 0;
  int error_ = 0;
  std::uint64_t end_ = 0;
  std::vector<Piece> unwritten_;  // descriptions of objects, which HDF5 may read again
};

using DriverId = orvml_io::OwnedId<H5FDunregister>;

/// Registers the driver by which HDF5 writes such bytes; not valid when that is not possible.
[[nodiscard]] DriverId registerFileDriver() noexcept;

/// Has files be made of the bytes, which must outlive them. Returns whether that was possible.
[[nodiscard]] bool writeTo(WrittenBytes& bytes, hid_t driver, hid_t fileAccess) noexcept;

}  // namespace orvml::detail
