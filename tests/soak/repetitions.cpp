#include "soak/repetitions.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace orvml_io_tests {

bool isFullLength() { return std::getenv("ORVML_IO_SOAK_FULL") != nullptr; }

int repetitions(int full) { return isFullLength() ? full : std::max(full / 100, 10); }

void printRow(const std::string& what, int count, const ProcessUsage& growth) {
  std::cout << "| " << what << " | " << count << " | " << growth.heapBytes << " | "
            << growth.residentBytes / 1024 << " | " << growth.descriptors << " |\n";
}

}  // namespace orvml_io_tests
