#include "references/plain_stores.h"

#include <algorithm>
#include <cmath>

namespace orvml_io_bench {

namespace {

constexpr double kTolerance = 1e-15;

bool isClose(double a, double b) { return !(std::fabs(a - b) > kTolerance); }

}  // namespace

bool MapOfScalars::get(const char* name, double& value) const {
  const auto found = values_.find(name);
  if (found == values_.end()) {
    return false;
  }
  value = found->second;
  return true;
}

bool MapOfScalars::equals(const MapOfScalars& other) const {
  if (values_.size() != other.values_.size()) {
    return false;
  }
  for (const auto& [name, value] : values_) {
    const auto found = other.values_.find(name);
    if (found == other.values_.end() || !isClose(value, found->second)) {
      return false;
    }
  }
  return true;
}

bool FlatScalars::get(const char* name, double& value) const {
  const auto found = std::lower_bound(
      values_.begin(), values_.end(), std::string_view(name),
      [](const auto& entry, std::string_view wanted) { return entry.first < wanted; });
  if (found == values_.end() || found->first != name) {
    return false;
  }
  value = found->second;
  return true;
}

bool FlatScalars::equals(const FlatScalars& other) const {
  return std::equal(values_.begin(), values_.end(), other.values_.begin(), other.values_.end(),
                    [](const auto& a, const auto& b) {
                      return a.first == b.first && isClose(a.second, b.second);
                    });
}

MapOfVectors::MapOfVectors(const MapOfVectors& other) {
  for (const auto& [name, block] : other.blocks_) {
    set(name.c_str(), block.values.get(), block.count);
  }
}

void MapOfVectors::set(const char* name, const double* values, std::size_t count) {
  Block& block = blocks_[name];
  block.values.reset(new double[count]);
  block.count = count;
  std::copy_n(values, count, block.values.get());
}

bool MapOfVectors::equals(const MapOfVectors& other) const {
  for (const auto& [name, block] : blocks_) {
    const auto found = other.blocks_.find(name);
    if (found == other.blocks_.end() || found->second.count != block.count) {
      return false;
    }
    for (std::size_t i = 0; i < block.count; ++i) {
      if (!isClose(block.values[i], found->second.values[i])) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace orvml_io_bench
