#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <new>

namespace orvml::detail {

/// Memory that reads as zeros and takes none, in the place of an array that is not there: the
/// system gives one page of zeros for all of it.
class StandIn {
 public:
  explicit StandIn(std::size_t bytes)
      : bytes_(bytes),
        address_(
            ::mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (address_ == MAP_FAILED) {
      throw std::bad_alloc();
    }
  }
  StandIn(const StandIn&) = delete;
  StandIn& operator=(const StandIn&) = delete;
  StandIn(StandIn&&) = delete;
  StandIn& operator=(StandIn&&) = delete;
  ~StandIn() { (void)::munmap(address_, bytes_); }
  [[nodiscard]] const void* address() const noexcept { return address_; }
  [[nodiscard]] std::size_t bytes() const noexcept { return bytes_; }

 private:
  std::size_t bytes_;
  void* address_;
};

}  // namespace orvml::detail
