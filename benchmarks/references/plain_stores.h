#pragma once

#include "inputs/content.h"

#include <map>
#include <memory>
#include <string_view>

namespace orvml_io_bench {

/// Scalars in a std::map, used as anyone would.
class MapOfScalars {
 public:
  void set(const char* name, double value) { values_[name] = value; }
  [[nodiscard]] bool get(const char* name, double& value) const;
  [[nodiscard]] bool equals(const MapOfScalars& other) const;

 private:
  std::map<std::string, double> values_;
};

/// Scalars in a sorted array, which takes names in ascending order only: what memory allows when
/// nothing has to stay where it is.
class FlatScalars {
 public:
  void set(const char* name, double value) { values_.emplace_back(name, value); }
  [[nodiscard]] bool get(const char* name, double& value) const;
  [[nodiscard]] bool equals(const FlatScalars& other) const;

 private:
  std::vector<std::pair<std::string, double>> values_;
};

/// Vectors of doubles in a std::map, each in a block of its own.
class MapOfVectors {
 public:
  MapOfVectors() = default;
  MapOfVectors(const MapOfVectors& other);
  MapOfVectors(MapOfVectors&&) = default;
  MapOfVectors& operator=(const MapOfVectors&) = delete;
  MapOfVectors& operator=(MapOfVectors&&) = delete;
  ~MapOfVectors() = default;

  void set(const char* name, const double* values, std::size_t count);
  [[nodiscard]] bool equals(const MapOfVectors& other) const;

 private:
  struct Block {
    std::unique_ptr<double[]> values;
    std::size_t count = 0;
  };
  std::map<std::string, Block> blocks_;
};

}  // namespace orvml_io_bench
