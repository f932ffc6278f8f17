// The entry of test programs that run a second time in a locale with a decimal comma: the
// environment variable ORVML_IO_TESTS_DECIMAL_COMMA asks for it.
#include "support/decimal_comma.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (std::getenv("ORVML_IO_TESTS_DECIMAL_COMMA") != nullptr &&
      !orvml_io_tests::setLocaleWithComma()) {
    (void)std::fputs("there is no locale with a decimal comma\n", stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
