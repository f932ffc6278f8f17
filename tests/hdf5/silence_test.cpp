#include "hdf5/silence.h"

#include "support/captured_output.h"
#include "support/counting_error_handler.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

using orvml_io::Silence;

using SilenceTest = CountingErrorHandlerTest;

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
  setHandler();
  const Silence silence;

  failInHdf5();

  EXPECT_EQ(calls, 0);
}

TEST_F(SilenceTest, RestoresTheHandlerOfTheCallerWithItsData) {
  setHandler();
  { const Silence silence; }

  failInHdf5();

  EXPECT_EQ(calls, 1);
}

TEST_F(SilenceTest, RestoresAHandlerOfTheFirstGeneration) {
  setHandlerOfTheFirstGeneration();
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
  setHandler();
  const Silence outer;
  { const Silence inner; }

  failInHdf5();

  EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace orvml_io_tests
