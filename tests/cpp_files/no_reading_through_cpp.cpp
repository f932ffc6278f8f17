// In builds without the C++ layer there is no other way to read than the flat one.
#include "cpp_files/reading_through_cpp.h"

namespace orvml_io_tests {

void readInEveryWayOfCpp(const char* /*path*/, const Readings& /*flat*/) {}

}  // namespace orvml_io_tests
