#include "model/document.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/memory_watch.h"
#include "values/value_types.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace orvml_io_tests {
namespace {

/// What a getter hands out; the outputs hold something else before the call.
template <class T>
struct HandedOut {
  HandedOut(void* handle, const std::string& name)
      : result(OrvML_IO_GetParameterVector(handle, name.c_str(), values, n)) {}

  T untouched = 0;
  T* values = &untouched;
  int n = -7;
  int result;
};

template <class T>
class VectorParameters : public ::testing::Test {
 protected:
  void* handle() const { return handle_.get(); }
  int set(const std::string& name, const std::vector<T>& values) {
    return OrvML_IO_SetParameterVector(handle(), name.c_str(), values.data(),
                                       static_cast<int>(values.size()));
  }
  HandedOut<T> get(const std::string& name) const { return {handle(), name}; }

  const std::vector<T> values_ = {4, 3, 2, 1};
  Handle handle_{OrvML_IO_NewOrvInputHandle()};
};

TYPED_TEST_SUITE(VectorParameters, ValueTypes, ValueTypeName);

TYPED_TEST(VectorParameters, AreSetAndHandedOut) {
  EXPECT_EQ(this->set("v", this->values_), 0);

  const auto found = this->get("v");
  EXPECT_EQ(found.result, 0);
  ASSERT_EQ(found.n, 4);
  EXPECT_TRUE(sameBytes(found.values, this->values_));
}

TYPED_TEST(VectorParameters, TakeAnOutputDocumentToo) {
  const Handle output(OrvML_IO_NewOrvOutputHandle());

  EXPECT_EQ(OrvML_IO_SetParameterVector(output.get(), "v", this->values_.data(), 4), 0);

  EXPECT_EQ(HandedOut<TypeParam>(output.get(), "v").n, 4);
}

TYPED_TEST(VectorParameters, CopyTheValues) {
  std::vector<TypeParam> values = this->values_;
  this->set("v", values);

  values[0] = 9;

  EXPECT_NE(this->get("v").values, values.data());
  EXPECT_TRUE(sameBytes(this->get("v").values, this->values_));
}

TYPED_TEST(VectorParameters, KeepEveryBit) {
  const std::vector<TypeParam> extremes = ValueType<TypeParam>::extremes();

  this->set("v", extremes);

  EXPECT_TRUE(sameBytes(this->get("v").values, extremes));
}

TYPED_TEST(VectorParameters, HandOutTheStoredBlockItself) {
  this->set("v", this->values_);

  this->get("v").values[1] = 8;

  EXPECT_EQ(this->get("v").values, this->get("v").values);
  EXPECT_EQ(this->get("v").values[1], 8);
}

TYPED_TEST(VectorParameters, ThatAreAbsentGiveOneANullPointerAndZero) {
  const auto absent = this->get("absent");

  EXPECT_EQ(absent.result, 1);
  EXPECT_EQ(absent.values, nullptr);
  EXPECT_EQ(absent.n, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(this->handle()), 0U);
}

TYPED_TEST(VectorParameters, AreNotFoundUnderTheNameOfAScalar) {
  OrvML_IO_SetParameter(this->handle(), "k", 1.5);

  EXPECT_EQ(this->get("k").result, 1);
}

TYPED_TEST(VectorParameters, AreFoundByTheirExactNameOnly) {
  this->set("layers", this->values_);

  EXPECT_EQ(this->get("Layers").result, 1);
  EXPECT_EQ(this->get("layer").result, 1);
  EXPECT_EQ(this->get("layers ").result, 1);
  EXPECT_EQ(this->get("").result, 1);
}

TYPED_TEST(VectorParameters, KeepNamesOf80BytesAndMoreWhole) {
  const std::string name(80, 'n');
  this->set(name, {1});
  this->set(name + "x", {1, 2});

  EXPECT_EQ(this->get(name).n, 1);
  EXPECT_EQ(this->get(name + "x").n, 2);
}

TYPED_TEST(VectorParameters, OfLengthZeroAreFound) {
  const TypeParam* none = nullptr;
  EXPECT_EQ(OrvML_IO_SetParameterVector(this->handle(), "v", none, 0), 0);

  EXPECT_EQ(this->get("v").result, 0);
  EXPECT_EQ(this->get("v").n, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(this->handle()), 1U);
}

TYPED_TEST(VectorParameters, OfANegativeLengthAreEmpty) {
  EXPECT_EQ(OrvML_IO_SetParameterVector(this->handle(), "v", this->values_.data(), -3), 0);

  EXPECT_EQ(this->get("v").result, 0);
  EXPECT_EQ(this->get("v").n, 0);
}

TYPED_TEST(VectorParameters, SetTwiceKeepTheLastValuesUnderOneName) {
  this->set("v", this->values_);
  TypeParam* old = this->get("v").values;

  this->set("v", {7});

  EXPECT_EQ(this->get("v").n, 1);
  EXPECT_EQ(this->get("v").values[0], 7);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(this->handle()), 1U);
  std::free(old);
}

// The caller may hold the old block, so it is never released for them.
TYPED_TEST(VectorParameters, SetTwiceKeepTheOldBlockReadable) {
  this->set("v", this->values_);
  TypeParam* old = this->get("v").values;
  const ReleasedBlocks released;

  this->set("v", {7});
  OrvML_IO_DeleteParameterVector(this->handle(), "v");

  EXPECT_FALSE(released.has(old));
  EXPECT_TRUE(sameBytes(old, this->values_));
  std::free(old);
}

TYPED_TEST(VectorParameters, AreDeletedAndReleasedWithFree) {
  this->set("v", this->values_);
  this->set("w", this->values_);
  const TypeParam* block = this->get("v").values;
  const ReleasedBlocks released;

  EXPECT_EQ(OrvML_IO_DeleteParameterVector(this->handle(), "v"), 0);

  EXPECT_EQ(this->get("v").result, 1);
  EXPECT_EQ(this->get("w").result, 0);
  EXPECT_TRUE(released.byFree(block));
}

TYPED_TEST(VectorParameters, ThatAreAbsentAreDeletedWithResultZero) {
  this->set("v", this->values_);

  EXPECT_EQ(OrvML_IO_DeleteParameterVector(this->handle(), "absent"), 0);

  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(this->handle()), 1U);
}

TYPED_TEST(VectorParameters, NeverCarryTheFlagOfTransmission) {
  this->set("v", this->values_);

  const auto& store = orvml_io::documentOf(this->handle())->parametersVector;
  EXPECT_FALSE(store.find("v")->mustBeTransmitted);
}

TEST(DeleteParameterVector, LeavesTheScalarOfThatName) {
  const Handle handle(OrvML_IO_NewOrvInputHandle());
  OrvML_IO_SetParameter(handle.get(), "k", 1.5);

  EXPECT_EQ(OrvML_IO_DeleteParameterVector(handle.get(), "k"), 0);

  EXPECT_TRUE(OrvML_IO_ParameterExists(handle.get(), "k"));
}

// The getters do not look at the type: the caller knows what was stored.
TEST(GetParameterVector, HandsOutABlockOfIntsAsDoubles) {
  const Handle handle(OrvML_IO_NewOrvInputHandle());
  const int ints[] = {1, 2};
  OrvML_IO_SetParameterVector(handle.get(), "v", ints, 2);

  const HandedOut<double> asDoubles(handle.get(), "v");

  EXPECT_EQ(asDoubles.result, 0);
  EXPECT_EQ(asDoubles.n, 2);
  EXPECT_EQ(static_cast<void*>(asDoubles.values), HandedOut<int>(handle.get(), "v").values);
}

TEST(GetParameterVector, HandsOutABlockOfDoublesAsInts) {
  const Handle handle(OrvML_IO_NewOrvInputHandle());
  const double doubles[] = {0.5, 0.25, 0.125};
  OrvML_IO_SetParameterVector(handle.get(), "v", doubles, 3);

  const HandedOut<int> asInts(handle.get(), "v");

  EXPECT_EQ(asInts.result, 0);
  EXPECT_EQ(asInts.n, 3);
  EXPECT_EQ(static_cast<void*>(asInts.values), HandedOut<double>(handle.get(), "v").values);
}

}  // namespace
}  // namespace orvml_io_tests
