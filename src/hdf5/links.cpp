#include "hdf5/links.h"

#include <algorithm>
#include <charconv>

namespace orvml_io {

namespace {

/// Reads a text that is the decimal form of a position exactly as "%d" prints it.
std::optional<int> positionOf(const std::string& text) {
  int position = 0;
  const char* end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, position);
  if (parsed.ec != std::errc() || parsed.ptr != end || text != std::to_string(position)) {
    return std::nullopt;
  }
  return position;
}

}  // namespace

std::optional<hsize_t> numberOfLinks(hid_t group) {
  H5G_info_t info;
  if (H5Gget_info(group, &info) < 0) {
    return std::nullopt;
  }
  return info.nlinks;
}

std::optional<std::string> linkName(hid_t group, hsize_t index) {
  const ssize_t length =
      H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, index, nullptr, 0, H5P_DEFAULT);
  if (length < 0) {
    return std::nullopt;
  }
  std::string name(static_cast<std::size_t>(length) + 1, '\0');
  if (H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, index, name.data(), name.size(),
                         H5P_DEFAULT) < 0) {
    return std::nullopt;
  }
  name.pop_back();
  return name;
}

std::vector<int> positionsBelow(hid_t group, int end) {
  std::vector<int> positions;
  const hsize_t links = numberOfLinks(group).value_or(0);
  for (hsize_t i = 0; i < links; ++i) {
    const std::optional<std::string> name = linkName(group, i);
    const std::optional<int> position = name ? positionOf(*name) : std::nullopt;
    if (position && *position >= 0 && *position < end) {
      positions.push_back(*position);
    }
  }
  std::sort(positions.begin(), positions.end());
  return positions;
}

}  // namespace orvml_io
