#include "model/document.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

using orvml_io::documentOf;
using orvml_io::OrvInput;
using orvml_io::OrvInputAndOrvOutput;
using orvml_io::OrvOutput;
using orvml_io_tests::creatorOf;
using orvml_io_tests::Handle;
using orvml_io_tests::RowName;

struct NewHandleRow {
  const char* name;
  void* (*create)();
};

class NewHandle : public ::testing::TestWithParam<NewHandleRow> {
 protected:
  Handle handle_{GetParam().create()};
  const OrvInputAndOrvOutput& document() const { return *documentOf(handle_.get()); }
};

TEST_P(NewHandle, IsNotNull) { EXPECT_NE(handle_.get(), nullptr); }

TEST_P(NewHandle, HasEmptyStringsAndDimensionZero) {
  EXPECT_STREQ(document().moduleName, "");
  EXPECT_STREQ(document().moduleFormatVersion, "");
  EXPECT_STREQ(document().ioCreator, "");
  EXPECT_STREQ(document().fileFormatVersion, "");
  EXPECT_EQ(document().meshDimension, 0);
}

TEST_P(NewHandle, HasNoContainers) {
  EXPECT_EQ(document().nodes, nullptr);
  EXPECT_EQ(document().edges, nullptr);
  EXPECT_EQ(document().faces, nullptr);
  EXPECT_EQ(document().elements, nullptr);
}

TEST_P(NewHandle, HasNoParameters) {
  EXPECT_EQ(document().parametersScalar.count(), 0U);
  EXPECT_EQ(document().parametersVector.count(), 0U);
}

TEST_P(NewHandle, LeavesTheArraysToTheCaller) { EXPECT_TRUE(document().arraysOwnedByCaller); }

TEST_P(NewHandle, IsADocumentOfItsOwn) {
  const Handle other(GetParam().create());

  OrvML_IO_SetMeshDimension(other.get(), 2);

  EXPECT_EQ(OrvML_IO_GetMeshDimension(handle_.get()), 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, NewHandle,
                         ::testing::Values(NewHandleRow{"Input", OrvML_IO_NewOrvInputHandle},
                                           NewHandleRow{"Output", OrvML_IO_NewOrvOutputHandle}),
                         RowName());

TEST(NewInputHandle, IsAnInputDocument) {
  const Handle handle(OrvML_IO_NewOrvInputHandle());

  EXPECT_NE(dynamic_cast<OrvInput*>(documentOf(handle.get())), nullptr);
}

TEST(NewOutputHandle, IsAnOutputDocument) {
  const Handle handle(OrvML_IO_NewOrvOutputHandle());

  EXPECT_NE(dynamic_cast<OrvOutput*>(documentOf(handle.get())), nullptr);
}

TEST(NewInputHandleWithIdentification, StoresStringsAndDimension) {
  const Handle handle(OrvML_IO_NewOrvInputHandle("module", "2.1", "creator", 3));

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), "module");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), "2.1");
  EXPECT_EQ(creatorOf(handle.get()), "creator");
  EXPECT_EQ(OrvML_IO_GetMeshDimension(handle.get()), 3);
}

TEST(NewInputHandleWithIdentification, CopiesTheStrings) {
  char text[] = "text";
  const Handle handle(OrvML_IO_NewOrvInputHandle(text, text, text, 3));

  text[0] = 'n';

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), "text");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), "text");
  EXPECT_EQ(creatorOf(handle.get()), "text");
}

TEST(NewInputHandleWithIdentification, NullTextsGiveEmptyOnes) {
  const Handle handle(OrvML_IO_NewOrvInputHandle(nullptr, nullptr, nullptr, 2));

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), "");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), "");
  EXPECT_EQ(creatorOf(handle.get()), "");
  EXPECT_EQ(OrvML_IO_GetMeshDimension(handle.get()), 2);
}

TEST(NewInputHandleWithIdentification, ANullTextDoesNotTouchTheOthers) {
  const Handle handle(OrvML_IO_NewOrvInputHandle("module", nullptr, "creator", 2));

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), "module");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), "");
  EXPECT_EQ(creatorOf(handle.get()), "creator");
}

TEST(NewInputHandleWithIdentification, IsAnInputDocumentOfTheCallersArrays) {
  const Handle handle(OrvML_IO_NewOrvInputHandle("module", "2.1", "creator", 3));

  EXPECT_NE(dynamic_cast<OrvInput*>(documentOf(handle.get())), nullptr);
  EXPECT_TRUE(documentOf(handle.get())->arraysOwnedByCaller);
}

TEST(NewInputHandleWithIdentification, CutsTextsAt79Bytes) {
  const std::string name(80, 'n');
  const std::string version(81, 'v');
  const std::string creator(200, 'c');

  const Handle handle(
      OrvML_IO_NewOrvInputHandle(name.c_str(), version.c_str(), creator.c_str(), 3));

  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), std::string(79, 'n'));
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), std::string(79, 'v'));
  EXPECT_EQ(creatorOf(handle.get()), std::string(79, 'c'));
}

TEST(NewInputHandleWithoutDimension, StoresTheStringsAndDimensionZero) {
  const Handle handle(OrvML_IO_NewOrvInputHandle("module", "2.1", "creator"));

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), "module");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), "2.1");
  EXPECT_EQ(creatorOf(handle.get()), "creator");
  EXPECT_EQ(OrvML_IO_GetMeshDimension(handle.get()), 0);
}

TEST(NewInputHandleWithoutDimension, NullTextsGiveEmptyOnes) {
  const Handle handle(OrvML_IO_NewOrvInputHandle(nullptr, nullptr, nullptr));

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), "");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), "");
  EXPECT_EQ(creatorOf(handle.get()), "");
}

class AnyDimension : public ::testing::TestWithParam<int> {};

TEST_P(AnyDimension, IsStoredWithoutATest) {
  const Handle handle(OrvML_IO_NewOrvInputHandle("m", "v", "c", GetParam()));

  EXPECT_EQ(OrvML_IO_GetMeshDimension(handle.get()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Numbers, AnyDimension,
                         ::testing::Values(0, 1, 2, 3, 4, -1, INT_MAX, INT_MIN));

}  // namespace
