#pragma once

#include <hdf5.h>

namespace orvml_io {

/// Suspends HDF5's automatic printing of errors for its lifetime and restores the caller's handler
/// with its data, of whichever generation of that interface it is.
class Silence {
 public:
  Silence() noexcept {
    unsigned isSecondGeneration = 1;
    (void)H5Eauto_is_v2(H5E_DEFAULT, &isSecondGeneration);
    secondGeneration_ = isSecondGeneration != 0;
    if (secondGeneration_) {
      (void)H5Eget_auto2(H5E_DEFAULT, &handler2_, &data_);
      (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    } else {
      (void)H5Eget_auto1(&handler1_, &data_);
      (void)H5Eset_auto1(nullptr, nullptr);
    }
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  Silence(Silence&&) = delete;
  Silence& operator=(Silence&&) = delete;
  ~Silence() {
    if (secondGeneration_) {
      (void)H5Eset_auto2(H5E_DEFAULT, handler2_, data_);
    } else {
      (void)H5Eset_auto1(handler1_, data_);
    }
  }

 private:
  bool secondGeneration_ = true;
  H5E_auto1_t handler1_ = nullptr;
  H5E_auto2_t handler2_ = nullptr;
  void* data_ = nullptr;
};

}  // namespace orvml_io
