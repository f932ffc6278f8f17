#include "references/posix_files.h"

#include "harness/measurement.h"

#include <fcntl.h>
#include <unistd.h>

namespace orvml_io_bench::posix_files {

namespace {

template <class T>
void writeArray(int file, const std::vector<T>& values) {
  const char* bytes = reinterpret_cast<const char*>(values.data());
  std::size_t left = values.size() * sizeof(T);
  while (left > 0) {  // one call writes 2 GB at most
    const ssize_t written = ::write(file, bytes, left);
    require(written > 0, "writing bytes");
    bytes += written;
    left -= static_cast<std::size_t>(written);
  }
}

template <class T>
void readArray(int file, T* values, std::size_t count) {
  char* bytes = reinterpret_cast<char*>(values);
  std::size_t left = count * sizeof(T);
  while (left > 0) {
    const ssize_t got = ::read(file, bytes, left);
    require(got > 0, "reading bytes");
    bytes += got;
    left -= static_cast<std::size_t>(got);
  }
}

template <class Ints, class Doubles>
void forEachArray(const Content& content, Ints ints, Doubles doubles) {
  doubles(content.coordinates);
  ints(content.cells.connectivities);
  for (const auto* vectors :
       {&content.nodeAttributes, &content.cells.attributes, &content.vectors}) {
    for (const Vector& vector : *vectors) {
      ints(vector.ints);
      doubles(vector.doubles);
    }
  }
}

}  // namespace

void write(const std::string& path, const Content& content) {
  constexpr int kOwnerReadsAndWrites = 0600;
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, kOwnerReadsAndWrites);
  require(file >= 0, "creating a file");
  const auto writeOne = [file](const auto& values) { writeArray(file, values); };
  forEachArray(content, writeOne, writeOne);
  require(::close(file) == 0, "closing a file");
}

Loaded read(const std::string& path, const Content& content) {
  Loaded loaded;
  const int file = ::open(path.c_str(), O_RDONLY);
  require(file >= 0, "opening a file");
  forEachArray(
      content,
      [&](const std::vector<int>& like) {
        readArray(file, loaded.addInts(like.size()), like.size());
      },
      [&](const std::vector<double>& like) {
        readArray(file, loaded.addDoubles(like.size()), like.size());
      });
  (void)::close(file);
  return loaded;
}

}  // namespace orvml_io_bench::posix_files
