#include "hdf5/silence.h"

#include "support/captured_output.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

using orvml_io::Silence;

void failInHdf5() { H5Gclose(-1); }

/// Counts its calls in the int that it gets as its data.
herr_t countCall(hid_t /*stack*/, void* calls) {
  ++*static_cast<int*>(calls);
  return 0;
}

herr_t countCallOfTheFirstGeneration(void* calls) {
  ++*static_cast<int*>(calls);
  return 0;
}

/// Restores HDF5's own handler after a test that sets another.
class SilenceTest : public ::testing::Test {
 protected:
  SilenceTest() { H5Eget_auto2(H5E_DEFAULT, &handler_, &data_); }
  ~SilenceTest() override { H5Eset_auto2(H5E_DEFAULT, handler_, data_); }

  int calls = 0;

 private:
  H5E_auto2_t handler_ = nullptr;
  void* data_ = nullptr;
};

TEST_F(SilenceTest, StopsThePrintingOfHdf5) {
  CapturedOutput captured;
  {
    const Silence silence;
    failInHdf5();
  }

  EXPECT_EQ(captured.stop(), "");
}

TEST_F(SilenceTest, EndsWithItsScope) {
  CapturedOutput captured;
  { const Silence silence; }

  failInHdf5();

  EXPECT_NE(captured.stop().find("HDF5-DIAG"), std::string::npos);
}

TEST_F(SilenceTest, DoesNotCallTheHandlerOfTheCaller) {
  H5Eset_auto2(H5E_DEFAULT, countCall, &calls);
  const Silence silence;

  failInHdf5();

  EXPECT_EQ(calls, 0);
}

TEST_F(SilenceTest, RestoresTheHandlerOfTheCallerWithItsData) {
  H5Eset_auto2(H5E_DEFAULT, countCall, &calls);
  { const Silence silence; }

  failInHdf5();

  EXPECT_EQ(calls, 1);
}

TEST_F(SilenceTest, RestoresAHandlerOfTheFirstGeneration) {
  H5Eset_auto1(countCallOfTheFirstGeneration, &calls);
  {
    const Silence silence;
    failInHdf5();
  }
  const int during = calls;

  failInHdf5();

  EXPECT_EQ(during, 0);
  EXPECT_EQ(calls, 1);
}

TEST_F(SilenceTest, RestoresSilenceOfTheCaller) {
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  { const Silence silence; }
  CapturedOutput captured;

  failInHdf5();

  EXPECT_EQ(captured.stop(), "");
}

TEST_F(SilenceTest, NestsWithoutEndingTheOuterOne) {
  H5Eset_auto2(H5E_DEFAULT, countCall, &calls);
  const Silence outer;
  { const Silence inner; }

  failInHdf5();

  EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace orvml_io_tests
