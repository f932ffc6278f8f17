#pragma once

#include <gtest/gtest.h>
#include <hdf5.h>

namespace orvml_io_tests {

inline void failInHdf5() { H5Gclose(-1); }

/// A test that sets error handlers of its own, which count their calls; restores HDF5's own handler
/// afterwards.
class CountingErrorHandlerTest : public ::testing::Test {
 protected:
  CountingErrorHandlerTest() { H5Eget_auto2(H5E_DEFAULT, &handler_, &data_); }
  ~CountingErrorHandlerTest() override { H5Eset_auto2(H5E_DEFAULT, handler_, data_); }

  void setHandler() { H5Eset_auto2(H5E_DEFAULT, countCall, &calls); }
  void setHandlerOfTheFirstGeneration() { H5Eset_auto1(countCallOfTheFirstGeneration, &calls); }

  int calls = 0;

 private:
  static herr_t countCall(hid_t /*stack*/, void* data) {
    return countCallOfTheFirstGeneration(data);
  }

  static herr_t countCallOfTheFirstGeneration(void* data) {
    ++*static_cast<int*>(data);
    return 0;
  }

  H5E_auto2_t handler_ = nullptr;
  void* data_ = nullptr;
};

}  // namespace orvml_io_tests
