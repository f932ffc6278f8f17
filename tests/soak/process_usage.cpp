#include "soak/process_usage.h"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>

/// A sanitizer replaces the allocator and counts for it; null without one.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace orvml_io_tests {

namespace {

bool isSanitized() { return __sanitizer_get_current_allocated_bytes != nullptr; }

long long allocatedBytes() {
  if (isSanitized()) {
    return static_cast<long long>(__sanitizer_get_current_allocated_bytes());
  }
  const struct mallinfo2 info = mallinfo2();
  return static_cast<long long>(info.uordblks + info.hblkhd);
}

long long bytesInMemory() {
  if (isSanitized()) {
    return 0;
  }
  std::ifstream statm("/proc/self/statm");
  long long total = 0;
  long long resident = 0;
  statm >> total >> resident;
  return resident * ::sysconf(_SC_PAGESIZE);
}

/// The one that lists them is among them.
int openDescriptors() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<int>(std::distance(begin(descriptors), end(descriptors))) - 1;
}

}  // namespace

ProcessUsage ProcessUsage::now() { return {allocatedBytes(), bytesInMemory(), openDescriptors()}; }

ProcessUsage operator-(const ProcessUsage& a, const ProcessUsage& b) {
  return {a.heapBytes - b.heapBytes, a.residentBytes - b.residentBytes,
          a.descriptors - b.descriptors};
}

std::ostream& operator<<(std::ostream& stream, const ProcessUsage& usage) {
  return stream << "{heap " << usage.heapBytes << " bytes, resident " << usage.residentBytes
                << " bytes, descriptors " << usage.descriptors << "}";
}

bool isFlat(const ProcessUsage& growth) {
  return growth.heapBytes <= kFlatHeapBytes && growth.residentBytes <= kFlatResidentBytes &&
         growth.descriptors <= 0;
}

}  // namespace orvml_io_tests
