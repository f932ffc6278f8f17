#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orvml_io_bench {

/// The sum of all values, rounded to parts of 2^-20: the same in any order of the values and for
/// ints that became doubles.
template <class T>
std::uint64_t checksumOf(const T* values, std::size_t count) {
  constexpr double kParts = 1048576.0;
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    sum += static_cast<std::uint64_t>(std::llround(static_cast<double>(values[i]) * kParts));
  }
  return sum;
}

/// Arrays that a reader made, plain ones without a value set before.
class Loaded {
 public:
  double* addDoubles(std::size_t count) { return add(doubles_, count); }
  int* addInts(std::size_t count) { return add(ints_, count); }

  /// The caller fills it; 88 bytes for each record of the parameter table.
  char* addRecords(std::size_t count, std::size_t recordBytes) {
    records_.reset(new char[count * recordBytes]);
    return records_.get();
  }

  /// Of every array of doubles and ints.
  [[nodiscard]] std::uint64_t checksum() const { return sumOf(doubles_) + sumOf(ints_); }

  std::vector<std::string> names;

 private:
  template <class T>
  struct Array {
    std::unique_ptr<T[]> values;
    std::size_t count;
  };

  template <class T>
  static T* add(std::vector<Array<T>>& arrays, std::size_t count) {
    arrays.push_back({std::unique_ptr<T[]>(new T[count]), count});
    return arrays.back().values.get();
  }

  template <class T>
  static std::uint64_t sumOf(const std::vector<Array<T>>& arrays) {
    std::uint64_t sum = 0;
    for (const Array<T>& array : arrays) {
      sum += checksumOf(array.values.get(), array.count);
    }
    return sum;
  }

  std::vector<Array<double>> doubles_;
  std::vector<Array<int>> ints_;
  std::unique_ptr<char[]> records_;
};

}  // namespace orvml_io_bench
