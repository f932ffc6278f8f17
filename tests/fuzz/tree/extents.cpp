#include "fuzz/tree/extents.h"

#include <iterator>

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

constexpr std::size_t kDeviations = 36;

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

/// Extents of another rank or size, for a usual length. Made one by one: an input asks for many.
using LengthsMaker = Lengths (*)(hsize_t n);

constexpr LengthsMaker kOtherLengths[] = {
    [](hsize_t /*n*/) { return Lengths{}; },
    [](hsize_t n) { return Lengths{n}; },
    [](hsize_t n) {
      return Lengths{1, n};
    },
    [](hsize_t n) {
      return Lengths{n, 1, 1};
    },
    [](hsize_t /*n*/) {
      return Lengths{0, 0, 0};
    },
    [](hsize_t /*n*/) {
      return Lengths{kRootOfTwoTo31, kRootOfTwoTo31};
    },
    [](hsize_t /*n*/) {
      return Lengths{kTwoTo16, kTwoTo16};
    },
    [](hsize_t /*n*/) {
      return Lengths{kTwoTo31 - 1, 0};
    },
    [](hsize_t /*n*/) {
      return Lengths{100000000, 0};
    },
    [](hsize_t /*n*/) {
      return Lengths{0, kTwoTo31};
    },
    [](hsize_t /*n*/) {
      return Lengths{kTwoTo31 - 1, 3};
    },
    [](hsize_t /*n*/) {
      return Lengths{kTwoTo40, kTwoTo16};
    },
    [](hsize_t /*n*/) {
      return Lengths{kTwoTo32, kTwoTo32, 1};
    },
    [](hsize_t /*n*/) { return Lengths{kDoublesOfOneMebibyte}; },
    [](hsize_t /*n*/) { return Lengths{kDoublesOfOneMebibyte + 1}; },
};

constexpr hsize_t kOtherLast[] = {0, 1, 2, 4, kTwoTo32 + 3};
constexpr hsize_t kAppended[] = {0, 1, 3};

/// One of the deviations from the normal lengths, by its number below kDeviations.
Lengths deviationFrom(const Lengths& normal, std::size_t deviation) {
  const hsize_t n = normal[0];
  const hsize_t otherFirst[] = {0,
                                1,
                                n - 1,
                                n + 1,
                                2 * n,
                                15,
                                kRootOfTwoTo31,
                                kTwoTo16,
                                kTwoTo31 - 1,
                                kTwoTo31,
                                kTwoTo32 + n,
                                kTwoTo40,
                                kTwoTo62};
  static_assert(std::size(kOtherLengths) + std::size(otherFirst) + std::size(kOtherLast) +
                        std::size(kAppended) ==
                    kDeviations,
                "all deviations are counted");
  if (deviation < std::size(kOtherLengths)) {
    return kOtherLengths[deviation](n);
  }
  deviation -= std::size(kOtherLengths);
  if (deviation < std::size(otherFirst)) {
    return withFirst(normal, otherFirst[deviation]);
  }
  deviation -= std::size(otherFirst);
  if (deviation < std::size(kOtherLast)) {
    return withLast(normal, kOtherLast[deviation]);
  }
  return appended(normal, kAppended[deviation - std::size(kOtherLast)]);
}

}  // namespace

std::optional<Lengths> lengthsOf(unsigned choice, const Lengths& normal) {
  if (choice == 0) {
    return normal;
  }
  const std::size_t deviation = choice % (kDeviations + 1);
  if (deviation == 0) {
    return std::nullopt;
  }
  return deviationFrom(normal, deviation - 1);
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
