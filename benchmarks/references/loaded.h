#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orvml_io_bench {

/// Arrays that a reader made, plain ones without a value set before.
class Loaded {
 public:
  double* addDoubles(std::size_t count) {
    doubles_.emplace_back(new double[count]);
    return doubles_.back().get();
  }
  int* addInts(std::size_t count) {
    ints_.emplace_back(new int[count]);
    return ints_.back().get();
  }

  /// The caller fills it; 88 bytes for each record of the parameter table.
  char* addRecords(std::size_t count, std::size_t recordBytes) {
    records_.reset(new char[count * recordBytes]);
    return records_.get();
  }

  std::vector<std::string> names;

 private:
  std::vector<std::unique_ptr<double[]>> doubles_;
  std::vector<std::unique_ptr<int[]>> ints_;
  std::unique_ptr<char[]> records_;
};

}  // namespace orvml_io_bench
