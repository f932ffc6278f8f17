#include "hostile/payload.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace orvml_io_tests {

namespace {

/// The chunks or the one block of a dataset; none when nothing was stored.
std::vector<ByteRange> blocksOf(hid_t dataset) {
  const haddr_t offset = H5Dget_offset(dataset);
  if (offset != HADDR_UNDEF) {
    return {{offset, H5Dget_storage_size(dataset)}};
  }
  std::vector<ByteRange> blocks;
  hsize_t chunks = 0;
  const hid_t space = H5Dget_space(dataset);
  if (H5Dget_num_chunks(dataset, space, &chunks) < 0) {
    chunks = 0;
  }
  for (hsize_t i = 0; i < chunks; ++i) {
    hsize_t coordinates[H5S_MAX_RANK] = {};
    haddr_t address = 0;
    hsize_t size = 0;
    unsigned filters = 0;
    EXPECT_GE(H5Dget_chunk_info(dataset, space, i, coordinates, &filters, &address, &size), 0);
    blocks.push_back({address, size});
  }
  H5Sclose(space);
  return blocks;
}

std::vector<ByteRange> occurrences(const std::string& text, const Bytes& bytes) {
  std::vector<ByteRange> ranges;
  for (auto at = bytes.begin();; ++at) {
    at = std::search(at, bytes.end(), text.begin(), text.end());
    if (at == bytes.end()) {
      return ranges;
    }
    ranges.push_back({static_cast<std::size_t>(at - bytes.begin()), text.size()});
  }
}

}  // namespace

std::vector<std::string> pathsUnder(const RawFile& file, const std::string& group) {
  std::vector<std::string> paths;
  for (const std::string& name : file.members(group)) {
    const std::string path = (group == "/" ? "" : group) + "/" + name;
    paths.push_back(path);
    if (file.isGroup(path)) {
      const std::vector<std::string> below = pathsUnder(file, path);
      paths.insert(paths.end(), below.begin(), below.end());
    }
  }
  return paths;
}

std::vector<std::string> datasetsUnder(const RawFile& file, const std::string& group) {
  std::vector<std::string> datasets;
  for (const std::string& path : pathsUnder(file, group)) {
    if (file.isDataset(path)) {
      datasets.push_back(path);
    }
  }
  return datasets;
}

std::vector<ByteRange> storedValues(const RawFile& file) {
  std::vector<ByteRange> ranges;
  for (const std::string& path : datasetsUnder(file, "/")) {
    const hid_t dataset = H5Dopen2(file.id(), path.c_str(), H5P_DEFAULT);
    const std::vector<ByteRange> blocks = blocksOf(dataset);
    ranges.insert(ranges.end(), blocks.begin(), blocks.end());
    H5Dclose(dataset);
  }
  return ranges;
}

std::vector<ByteRange> storedTexts(const RawFile& file, const Bytes& bytes) {
  std::set<std::string> texts;
  for (const std::string& path : pathsUnder(file, "/")) {
    texts.insert(path.substr(path.rfind('/') + 1));
  }
  for (const std::string& name : file.attributes("/")) {
    texts.insert(name);
    texts.insert(file.attributeBytes("/", name));
  }
  std::vector<ByteRange> ranges;
  for (const std::string& text : texts) {
    // Shorter texts, the positions, also stand where they are none.
    if (text.size() > 2) {
      const std::vector<ByteRange> found = occurrences(text, bytes);
      ranges.insert(ranges.end(), found.begin(), found.end());
    }
  }
  return ranges;
}

}  // namespace orvml_io_tests
