#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>

namespace orvml_io_tests {
namespace {

class ScalarParameters : public ::testing::Test {
 protected:
  void* handle() const { return handle_.get(); }

  Handle handle_{OrvML_IO_NewOrvInputHandle()};
};

TEST_F(ScalarParameters, AreSetAndReadBack) {
  EXPECT_EQ(OrvML_IO_SetParameter(handle(), "k", 1.5), 0);

  double value = 0;
  EXPECT_EQ(OrvML_IO_GetParameter(handle(), "k", value), 0);
  EXPECT_EQ(value, 1.5);
}

TEST_F(ScalarParameters, SetToAnIntAreReadAsADouble) {
  EXPECT_EQ(OrvML_IO_SetParameter(handle(), "k", 3), 0);

  EXPECT_EQ(scalarOf(handle(), "k"), 3.0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(handle()), 1U);
}

TEST_F(ScalarParameters, TakeAnOutputDocumentToo) {
  const Handle output(OrvML_IO_NewOrvOutputHandle());

  EXPECT_EQ(OrvML_IO_SetParameter(output.get(), "k", 1.5), 0);

  EXPECT_EQ(scalarOf(output.get(), "k"), 1.5);
}

TEST_F(ScalarParameters, SetTwiceKeepTheLastValueUnderOneName) {
  OrvML_IO_SetParameter(handle(), "k", 1.5);
  OrvML_IO_SetParameter(handle(), "k", 2.5);

  EXPECT_EQ(scalarOf(handle(), "k"), 2.5);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(handle()), 1U);
}

TEST_F(ScalarParameters, SetToADoubleAndThenToAnIntKeepTheLastValue) {
  OrvML_IO_SetParameter(handle(), "k", 1.5);
  OrvML_IO_SetParameter(handle(), "k", 7);

  EXPECT_EQ(scalarOf(handle(), "k"), 7.0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(handle()), 1U);
}

TEST_F(ScalarParameters, ThatAreAbsentGiveOneAndLeaveTheValueUntouched) {
  double value = 42;

  EXPECT_EQ(OrvML_IO_GetParameter(handle(), "absent", value), 1);

  EXPECT_EQ(value, 42);
  EXPECT_FALSE(OrvML_IO_ParameterExists(handle(), "absent"));
}

TEST_F(ScalarParameters, ExistOnceTheyAreSet) {
  OrvML_IO_SetParameter(handle(), "k", 0.0);

  EXPECT_TRUE(OrvML_IO_ParameterExists(handle(), "k"));
}

TEST_F(ScalarParameters, AreNotMadeByAskingForThem) {
  (void)OrvML_IO_ParameterExists(handle(), "absent");

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(handle()), 0U);
}

TEST_F(ScalarParameters, DoNotExistForAVectorOfThatName) {
  const int layers[] = {1};
  OrvML_IO_SetParameterVector(handle(), "v", layers, 1);

  double value = 42;
  EXPECT_FALSE(OrvML_IO_ParameterExists(handle(), "v"));
  EXPECT_EQ(OrvML_IO_GetParameter(handle(), "v", value), 1);
}

TEST_F(ScalarParameters, ShareANameWithAVector) {
  const int layers[] = {3};
  OrvML_IO_SetParameter(handle(), "k", 1.5);
  OrvML_IO_SetParameterVector(handle(), "k", layers, 1);

  EXPECT_EQ(scalarOf(handle(), "k"), 1.5);
  EXPECT_EQ(intParameterOf(handle(), "k"), (std::vector<int>{3}));
}

TEST_F(ScalarParameters, AreFoundByTheirExactNameOnly) {
  OrvML_IO_SetParameter(handle(), "size", 1.0);

  EXPECT_FALSE(OrvML_IO_ParameterExists(handle(), "Size"));
  EXPECT_FALSE(OrvML_IO_ParameterExists(handle(), "siz"));
  EXPECT_FALSE(OrvML_IO_ParameterExists(handle(), "size "));
  EXPECT_FALSE(OrvML_IO_ParameterExists(handle(), " size"));
  EXPECT_FALSE(OrvML_IO_ParameterExists(handle(), ""));
}

// Only names that go to a file are limited.
TEST_F(ScalarParameters, KeepNamesOf80BytesAndMoreWhole) {
  const std::string name(80, 'n');
  OrvML_IO_SetParameter(handle(), name.c_str(), 1.0);
  OrvML_IO_SetParameter(handle(), (name + "x").c_str(), 2.0);

  EXPECT_EQ(scalarOf(handle(), name), 1.0);
  EXPECT_EQ(scalarOf(handle(), name + "x"), 2.0);
}

TEST_F(ScalarParameters, KeepTheSignOfZeroAndNaN) {
  OrvML_IO_SetParameter(handle(), "zero", -0.0);
  OrvML_IO_SetParameter(handle(), "nan", std::numeric_limits<double>::quiet_NaN());

  EXPECT_TRUE(std::signbit(*scalarOf(handle(), "zero")));
  EXPECT_TRUE(std::isnan(*scalarOf(handle(), "nan")));
}

class AnyIntParameter : public ::testing::TestWithParam<int> {};

TEST_P(AnyIntParameter, IsConvertedExactly) {
  const Handle handle(OrvML_IO_NewOrvInputHandle());

  OrvML_IO_SetParameter(handle.get(), "k", GetParam());

  EXPECT_EQ(static_cast<long long>(*scalarOf(handle.get(), "k")), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Numbers, AnyIntParameter,
                         ::testing::Values(0, 1, -1, INT_MAX, INT_MIN, INT_MAX - 1));

}  // namespace
}  // namespace orvml_io_tests
