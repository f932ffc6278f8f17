// The callback slots of input documents. The library never looks behind the pointers.
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

namespace {

using orvml_io_tests::Handle;
using orvml_io_tests::RowName;

struct SlotRow {
  const char* name;
  void (*set)(void*&, void*, void*);
  void (*get)(void* const&, void*&, void*&);
  void (*setOther)(void*&, void*, void*);
};

class CallbackSlot : public ::testing::TestWithParam<SlotRow> {
 protected:
  void get(const Handle& handle) { GetParam().get(handle.get(), first_, second_); }

  int targets_[2] = {};
  int untouched_ = 0;
  void* first_ = &untouched_;
  void* second_ = &untouched_;
  Handle input_{OrvML_IO_NewOrvInputHandle()};
  Handle output_{OrvML_IO_NewOrvOutputHandle()};
};

TEST_P(CallbackSlot, IsNullInANewDocument) {
  get(input_);

  EXPECT_EQ(first_, nullptr);
  EXPECT_EQ(second_, nullptr);
}

TEST_P(CallbackSlot, HandsOutWhatWasStored) {
  GetParam().set(input_.out(), &targets_[0], &targets_[1]);

  get(input_);

  EXPECT_EQ(first_, &targets_[0]);
  EXPECT_EQ(second_, &targets_[1]);
}

TEST_P(CallbackSlot, IsReplacedBothPointersAtOnce) {
  GetParam().set(input_.out(), &targets_[0], &targets_[1]);
  GetParam().set(input_.out(), nullptr, &targets_[0]);

  get(input_);

  EXPECT_EQ(first_, nullptr);
  EXPECT_EQ(second_, &targets_[0]);
}

TEST_P(CallbackSlot, IsNotTouchedThroughTheOtherSlot) {
  GetParam().set(input_.out(), &targets_[0], &targets_[1]);
  GetParam().setOther(input_.out(), &untouched_, &untouched_);

  get(input_);

  EXPECT_EQ(first_, &targets_[0]);
  EXPECT_EQ(second_, &targets_[1]);
}

TEST_P(CallbackSlot, OfANullHandleIsNotStoredAndLeavesTheOutputsUntouched) {
  Handle null;
  GetParam().set(null.out(), &targets_[0], &targets_[1]);

  get(null);

  EXPECT_EQ(null.get(), nullptr);
  EXPECT_EQ(first_, &untouched_);
  EXPECT_EQ(second_, &untouched_);
}

TEST_P(CallbackSlot, DoesNotExistInAnOutputDocument) {
  GetParam().set(output_.out(), &targets_[0], &targets_[1]);

  get(output_);

  EXPECT_EQ(first_, &untouched_);
  EXPECT_EQ(second_, &untouched_);
}

TEST_P(CallbackSlot, StaysWhenTheContentIsDeleted) {
  GetParam().set(input_.out(), &targets_[0], &targets_[1]);
  OrvML_IO_DeleteOrvInputContent(input_.out());

  get(input_);

  EXPECT_EQ(first_, &targets_[0]);
  EXPECT_EQ(second_, &targets_[1]);
}

TEST_P(CallbackSlot, LeavesTheHandleAsItIs) {
  void* const before = input_.get();

  GetParam().set(input_.out(), &targets_[0], &targets_[1]);

  EXPECT_EQ(input_.get(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Slots, CallbackSlot,
    ::testing::Values(SlotRow{"Status", OrvML_IO_SetCallbackStatus, OrvML_IO_GetCallbackStatus,
                              OrvML_IO_SetCallbackError},
                      SlotRow{"Error", OrvML_IO_SetCallbackError, OrvML_IO_GetCallbackError,
                              OrvML_IO_SetCallbackStatus}),
    RowName());

}  // namespace
