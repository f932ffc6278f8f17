#include "sequences/caller_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace orvml_io_tests {

CallerMemory::~CallerMemory() {
  expectUntouched();
  const auto releaseAll = [](const auto& arrays) {
    for (const auto& array : arrays) {
      delete[] array->address;
    }
  };
  std::apply([&](const auto&... arrays) { (releaseAll(arrays), ...); }, arrays_);
  for (const NamedVector& vector : blocks_) {
    std::free(vector.block);
  }
}

void CallerMemory::take(const NamedVectors& vectors) {
  for (const auto& named : vectors) {
    take(named.second);
  }
}

void CallerMemory::expectUntouched() const {
  const auto expectAll = [](const auto& arrays) {
    for (const auto& array : arrays) {
      EXPECT_TRUE(holds(array->address, array->values)) << "an array of the caller was changed";
    }
  };
  std::apply([&](const auto&... arrays) { (expectAll(arrays), ...); }, arrays_);
  for (const NamedVector& vector : blocks_) {
    EXPECT_TRUE(holds(vector.block, vector)) << "a block that was left allocated was changed";
  }
}

bool holds(const void* block, const NamedVector& vector) {
  return std::visit(
      [block](const auto& values) {
        using Value = typename std::decay_t<decltype(values)>::value_type;
        return holds(static_cast<const Value*>(block), values);
      },
      vector.values);
}

void writeIntoBlock(NamedVector& vector, Random& random) {
  const int index = random.below(vector.length());
  if (auto* ints = std::get_if<std::vector<int>>(&vector.values)) {
    ints->at(static_cast<std::size_t>(index)) = random.anyInt();
    std::copy(ints->begin(), ints->end(), static_cast<int*>(vector.block));
  } else {
    auto& doubles = std::get<std::vector<double>>(vector.values);
    doubles.at(static_cast<std::size_t>(index)) = random.anyDouble();
    std::copy(doubles.begin(), doubles.end(), static_cast<double*>(vector.block));
  }
}

}  // namespace orvml_io_tests
