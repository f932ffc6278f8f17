#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace orvml::detail {

/// The length of an open file; 0 when it cannot be told.
inline std::uint64_t lengthOf(int descriptor) noexcept {
  struct stat status = {};
  return ::fstat(descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

/// Moves bytes to or from a file, by pwrite or pread, until all are; returns the number that was
/// left, and leaves `errno`, when a call fails or moves none.
template <class Transfer, class Byte>
std::size_t moveAll(const Transfer& transfer, int descriptor, Byte* bytes, std::size_t count,
                    std::uint64_t place) noexcept {
  while (count > 0) {
    const ssize_t moved = transfer(descriptor, bytes, count, static_cast<off_t>(place));
    if (moved < 0 && errno == EINTR) {
      continue;
    }
    if (moved <= 0) {
      return count;
    }
    bytes += moved;
    count -= static_cast<std::size_t>(moved);
    place += static_cast<std::uint64_t>(moved);
  }
  return 0;
}

}  // namespace orvml::detail
