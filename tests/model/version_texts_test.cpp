#include "orvml_io.h"

#include <gtest/gtest.h>

namespace {

TEST(FormatVersionNumber, EndsAtTheSecondPoint) {
  EXPECT_EQ(OrvML_IO_GetFormatVersion_Number("1.10.0"), 1.1);
  EXPECT_LT(OrvML_IO_GetFormatVersion_Number("1.10.0"), OrvML_IO_GetFormatVersion_Number("1.4"));
}

}  // namespace
