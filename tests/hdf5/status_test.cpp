#include "hdf5/status.h"

#include <gtest/gtest.h>

namespace orvml_io {
namespace {

TEST(AnyFailure, OfNoStepsIsSuccess) { EXPECT_EQ(AnyFailure().status(), 0); }

TEST(AnyFailure, OfStepsThatSucceedIsSuccess) {
  AnyFailure any;
  any.add(0);
  any.add(0);

  EXPECT_EQ(any.status(), 0);
}

TEST(AnyFailure, IsNotForgottenWhenALaterStepSucceeds) {
  AnyFailure any;
  any.add(1);
  any.add(0);

  EXPECT_EQ(any.status(), 1);
}

// Added up as numbers, these two would be 0.
TEST(AnyFailure, OfOppositeResultsIsStillOne) {
  AnyFailure any;
  any.add(-1);
  any.add(1);

  EXPECT_EQ(any.status(), 1);
}

}  // namespace
}  // namespace orvml_io
