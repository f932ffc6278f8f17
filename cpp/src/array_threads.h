#pragma once

#include "hdf5/array_reader.h"
#include "values/fresh_memory.h"

#include <vector>

namespace orvml::detail {

/// Reads large arrays on several threads, past HDF5: what lies in the file as it does in memory is
/// read at its place, and HDF5 is called by the caller's thread alone. Each thread touches the
/// memory that it fills, which takes about as long as filling it.
class ArrayThreads : public orvml_io::ArrayReader {
 public:
  /// @param descriptor  of the file, borrowed
  /// @param threads     2 or more, the caller's included
  ArrayThreads(int descriptor, int threads);

  [[nodiscard]] const void* lend(const orvml_io::WantedArray& wanted) override;
  [[nodiscard]] bool read(const orvml_io::WantedArray& wanted, void* values) override;

 private:
  int descriptor_;
  std::vector<orvml_io::FreshMemory> freshMemory_;  // of each thread
};

}  // namespace orvml::detail
