#pragma once

#include "hdf5/array_reader.h"

namespace orvml::detail {

/// Reads large arrays on several threads, past HDF5: what lies in the file as it does in memory is
/// read at its place, and HDF5 is called by the caller's thread alone.
class ArrayThreads : public orvml_io::ArrayReader {
 public:
  /// @param descriptor  of the file, borrowed
  /// @param threads     2 or more, the caller's included
  ArrayThreads(int descriptor, int threads) noexcept;

  [[nodiscard]] const void* lend(const orvml_io::WantedArray& wanted) override;
  [[nodiscard]] bool read(const orvml_io::WantedArray& wanted, void* values) override;

 private:
  int descriptor_;
  int threads_;
};

}  // namespace orvml::detail
