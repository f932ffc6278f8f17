// HDF5's automatic error handler is the caller's: no function of the layer leaves another one.
#include <orvml/orvml.hpp>

#include "cpp/sample_documents.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>
#include <hdf5.h>

namespace orvml_io_tests {
namespace {

herr_t countCall(hid_t /*stack*/, void* calls) {
  ++*static_cast<int*>(calls);
  return 0;
}

herr_t countCallOfTheFirstGeneration(void* calls) {
  ++*static_cast<int*>(calls);
  return 0;
}

class ErrorHandlerOfTheCaller : public ::testing::Test {
 protected:
  ErrorHandlerOfTheCaller() { H5Eget_auto2(H5E_DEFAULT, &handler_, &data_); }
  ~ErrorHandlerOfTheCaller() override { H5Eset_auto2(H5E_DEFAULT, handler_, data_); }

  /// How often the caller's handler is called: while a document is saved and read in each way, and
  /// when HDF5 fails for the caller afterwards.
  void useTheLayer() {
    const TempFile temp;
    orvml::save(temp.path(), fullInput());
    (void)orvml::load(temp.path());
    (void)orvml::describe(temp.path());
    const orvml::MappedFile mapped(temp.path());
    (void)orvml::closeLeftovers(temp.path());
    duringUse_ = calls_;
    H5Gclose(-1);
  }

  int calls_ = 0;
  int duringUse_ = 0;

 private:
  H5E_auto2_t handler_ = nullptr;
  void* data_ = nullptr;
};

TEST_F(ErrorHandlerOfTheCaller, IsThereAfterwards) {
  H5Eset_auto2(H5E_DEFAULT, countCall, &calls_);

  useTheLayer();

  EXPECT_EQ(duringUse_, 0);
  EXPECT_EQ(calls_, 1);
}

TEST_F(ErrorHandlerOfTheCaller, IsThereAfterwardsWhenItIsOfTheFirstGeneration) {
  H5Eset_auto1(countCallOfTheFirstGeneration, &calls_);

  useTheLayer();

  EXPECT_EQ(duringUse_, 0);
  EXPECT_EQ(calls_, 1);
}

}  // namespace
}  // namespace orvml_io_tests
