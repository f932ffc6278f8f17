#include "hdf5/links.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <utility>

namespace orvml_io {

namespace {

/// Reads a text that is the decimal form of a position exactly as "%d" prints it.
std::optional<int> positionOf(const std::string& text) {
  int position = 0;
  const char* end = text.data() + text.size();
  // A text out of range leaves 0, which it then differs from.
  if (std::from_chars(text.data(), end, position).ptr != end || text != std::to_string(position)) {
    return std::nullopt;
  }
  return position;
}

/// The names found so far. Exceptions must not cross HDF5's own frames, so running out of memory is
/// kept until they are left.
struct Collection {
  std::vector<std::string> names;
  bool isOutOfMemory = false;
};

herr_t collectName(hid_t /*group*/, const char* name, const H5L_info_t* /*info*/, void* data) {
  auto* collection = static_cast<Collection*>(data);
  try {
    collection->names.emplace_back(name);
  } catch (const std::bad_alloc&) {
    collection->isOutOfMemory = true;
    return -1;
  }
  return 0;
}

}  // namespace

std::optional<std::vector<std::string>> linkNames(hid_t group) {
  Collection collection;
  const herr_t status =
      H5Literate(group, H5_INDEX_NAME, H5_ITER_INC, nullptr, collectName, &collection);
  if (collection.isOutOfMemory) {
    throw std::bad_alloc();
  }
  if (status < 0) {
    return std::nullopt;
  }
  return std::move(collection.names);
}

std::optional<std::vector<int>> positionsBelow(hid_t group, int end) {
  const std::optional<std::vector<std::string>> names = linkNames(group);
  if (!names) {
    return std::nullopt;
  }
  std::vector<int> positions;
  for (const std::string& name : *names) {
    const std::optional<int> position = positionOf(name);
    if (position && *position >= 0 && *position < end) {
      positions.push_back(*position);
    }
  }
  std::sort(positions.begin(), positions.end());
  return positions;
}

}  // namespace orvml_io
