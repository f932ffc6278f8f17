#include "fuzz/tree/extents.h"

namespace orvml_io_tests {

namespace {

using orvml_io::DataspaceId;

constexpr hsize_t kTwoTo16 = hsize_t{1} << 16;
constexpr hsize_t kTwoTo31 = hsize_t{1} << 31;
constexpr hsize_t kTwoTo32 = hsize_t{1} << 32;
constexpr hsize_t kTwoTo40 = hsize_t{1} << 40;
constexpr hsize_t kTwoTo62 = hsize_t{1} << 62;
constexpr hsize_t kRootOfTwoTo31 = 46341;  // the least integer whose square needs more than 31 bits
constexpr hsize_t kDoublesOfOneMebibyte = hsize_t{1} << 17;

Lengths withFirst(Lengths lengths, hsize_t first) {
  lengths[0] = first;
  return lengths;
}

Lengths withLast(Lengths lengths, hsize_t last) {
  lengths.back() = last;
  return lengths;
}

Lengths appended(Lengths lengths, hsize_t length) {
  lengths.push_back(length);
  return lengths;
}

std::vector<Lengths> deviationsFrom(const Lengths& normal) {
  const hsize_t n = normal[0];
  std::vector<Lengths> deviations = {{},
                                     {n},
                                     {1, n},
                                     {n, 1, 1},
                                     {0, 0, 0},
                                     {kRootOfTwoTo31, kRootOfTwoTo31},
                                     {kTwoTo16, kTwoTo16},
                                     {kTwoTo31 - 1, 0},
                                     {100000000, 0},
                                     {0, kTwoTo31},
                                     {kTwoTo31 - 1, 3},
                                     {kTwoTo40, kTwoTo16},
                                     {kTwoTo32, kTwoTo32, 1},
                                     {kDoublesOfOneMebibyte},
                                     {kDoublesOfOneMebibyte + 1}};
  for (const hsize_t first :
       {hsize_t{0}, hsize_t{1}, n - 1, n + 1, 2 * n, hsize_t{15}, kRootOfTwoTo31, kTwoTo16,
        kTwoTo31 - 1, kTwoTo31, kTwoTo32 + n, kTwoTo40, kTwoTo62}) {
    deviations.push_back(withFirst(normal, first));
  }
  for (const hsize_t last : {hsize_t{0}, hsize_t{1}, hsize_t{2}, hsize_t{4}, kTwoTo32 + 3}) {
    deviations.push_back(withLast(normal, last));
  }
  for (const hsize_t last : {hsize_t{0}, hsize_t{1}, hsize_t{3}}) {
    deviations.push_back(appended(normal, last));
  }
  return deviations;
}

}  // namespace

std::optional<Lengths> lengthsOf(unsigned choice, const Lengths& normal) {
  if (choice == 0) {
    return normal;
  }
  const std::vector<Lengths> deviations = deviationsFrom(normal);
  const std::size_t deviation = choice % (deviations.size() + 1);
  if (deviation == 0) {
    return std::nullopt;
  }
  return deviations[deviation - 1];
}

DataspaceId dataspaceOf(const std::optional<Lengths>& lengths, bool isExtendible) {
  if (!lengths) {
    return DataspaceId(H5Screate(H5S_NULL));
  }
  if (lengths->empty()) {
    return DataspaceId(H5Screate(H5S_SCALAR));
  }
  const Lengths unlimited(lengths->size(), H5S_UNLIMITED);
  return DataspaceId(H5Screate_simple(static_cast<int>(lengths->size()), lengths->data(),
                                      isExtendible ? unlimited.data() : nullptr));
}

std::optional<hsize_t> numberOfValues(const std::optional<Lengths>& lengths) {
  constexpr hsize_t kMostValues = hsize_t{1} << 48;
  if (!lengths) {
    return 0;
  }
  hsize_t values = 1;
  for (const hsize_t length : *lengths) {
    if (length != 0 && values > kMostValues / length) {
      return std::nullopt;
    }
    values *= length;
  }
  return values;
}

}  // namespace orvml_io_tests
