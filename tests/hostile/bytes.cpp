#include "hostile/bytes.h"

#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace orvml_io_tests {

Bytes bytesOf(const char* path) {
  std::ifstream stream(path, std::ios::binary);
  EXPECT_TRUE(stream) << path;
  return Bytes(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

Bytes bytesOfNew(const ValidFile& file) {
  const TempFile temp;
  file.make(temp.path());
  return bytesOf(temp.path());
}

void writeBytes(const char* path, const Bytes& bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  EXPECT_TRUE(stream.flush()) << path;
}

}  // namespace orvml_io_tests
