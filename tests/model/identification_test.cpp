// Module name, module format version, creator, dimension and the parameter counts of a document.
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <string>
#include <type_traits>

namespace {

using orvml_io_tests::BuiltDocument;
using orvml_io_tests::creatorOf;
using orvml_io_tests::Handle;
using orvml_io_tests::RowName;

std::string moduleNameOf(void* handle) { return OrvML_IO_GetOrvMeshLibraryModuleName(handle); }

std::string moduleVersionOf(void* handle) {
  return OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle);
}

struct StringRow {
  const char* name;
  void (*set)(const char*, void*);
  std::string (*get)(void*);
};

class IdentificationString : public ::testing::TestWithParam<StringRow> {
 protected:
  void set(const std::string& text) { GetParam().set(text.c_str(), handle_.get()); }
  std::string get() { return GetParam().get(handle_.get()); }

  Handle handle_{OrvML_IO_NewOrvInputHandle("name", "version", "creator", 3)};
};

TEST_P(IdentificationString, IsStored) {
  set("new text");

  EXPECT_EQ(get(), "new text");
}

TEST_P(IdentificationString, IsCopied) {
  std::string text = "text";
  set(text);

  text[0] = 'n';

  EXPECT_EQ(get(), "text");
}

TEST_P(IdentificationString, MayBeEmpty) {
  set("");

  EXPECT_EQ(get(), "");
}

TEST_P(IdentificationString, OfOneByteReplacesALongOneWholly) {
  set(std::string(79, 'l'));
  set("s");

  EXPECT_EQ(get(), "s");
}

TEST_P(IdentificationString, Of79BytesIsKeptWhole) {
  const std::string text = std::string(78, 't') + "!";
  set(text);

  EXPECT_EQ(get(), text);
}

TEST_P(IdentificationString, Of80BytesIsCutAt79) {
  set(std::string(79, 't') + "!");

  EXPECT_EQ(get(), std::string(79, 't'));
}

TEST_P(IdentificationString, Of81BytesIsCutAt79) {
  set(std::string(79, 't') + "!!");

  EXPECT_EQ(get(), std::string(79, 't'));
}

TEST_P(IdentificationString, KeepsBytesBeyondAscii) {
  set("m\xC3\xA9tre \xFF");

  EXPECT_EQ(get(), "m\xC3\xA9tre \xFF");
}

TEST_P(IdentificationString, ThatIsTooLongLeavesTheOthersAlone) {
  const std::string before[] = {moduleNameOf(handle_.get()), moduleVersionOf(handle_.get()),
                                creatorOf(handle_.get())};
  set(std::string(1000, 't'));

  const std::string after[] = {moduleNameOf(handle_.get()), moduleVersionOf(handle_.get()),
                               creatorOf(handle_.get())};
  int changed = 0;
  for (std::size_t i = 0; i < std::size(before); ++i) {
    changed += before[i] == after[i] ? 0 : 1;
  }
  EXPECT_EQ(changed, 1) << "only the one that was set";
  EXPECT_EQ(OrvML_IO_GetMeshDimension(handle_.get()), 3);
}

TEST_P(IdentificationString, OfAnOutputDocumentIsStoredToo) {
  const Handle output(OrvML_IO_NewOrvOutputHandle());

  GetParam().set("text", output.get());

  EXPECT_EQ(GetParam().get(output.get()), "text");
}

TEST_P(IdentificationString, OfANullHandleIsStoredNowhere) {
  const std::string before = get();

  GetParam().set("text", nullptr);
  GetParam().set(nullptr, nullptr);

  EXPECT_EQ(get(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Strings, IdentificationString,
    ::testing::Values(StringRow{"ModuleName", OrvML_IO_SetOrvMeshLibraryModuleName, moduleNameOf},
                      StringRow{"ModuleFormatVersion",
                                OrvML_IO_SetOrvMeshLibraryModuleFormatVersion, moduleVersionOf},
                      StringRow{"Creator", OrvML_IO_SetOrvMeshLibraryIOCreator, creatorOf}),
    RowName());

class Identification : public ::testing::Test {
 protected:
  Handle handle_{OrvML_IO_NewOrvInputHandle("name", "version", "creator", 3)};
};

TEST_F(Identification, ANullModuleNameClearsIt) {
  OrvML_IO_SetOrvMeshLibraryModuleName(nullptr, handle_.get());

  EXPECT_EQ(moduleNameOf(handle_.get()), "");
}

TEST_F(Identification, ANullModuleFormatVersionClearsIt) {
  OrvML_IO_SetOrvMeshLibraryModuleFormatVersion(nullptr, handle_.get());

  EXPECT_EQ(moduleVersionOf(handle_.get()), "");
}

// Unlike the other two strings: programs pass null for the creator when they have nothing to say.
TEST_F(Identification, ANullCreatorKeepsTheOldOne) {
  OrvML_IO_SetOrvMeshLibraryIOCreator(nullptr, handle_.get());

  EXPECT_EQ(creatorOf(handle_.get()), "creator");
}

TEST_F(Identification, TheModuleNameKeepsItsBufferWhenItChanges) {
  const char* before = OrvML_IO_GetOrvMeshLibraryModuleName(handle_.get());

  OrvML_IO_SetOrvMeshLibraryModuleName("changed", handle_.get());

  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle_.get()), before);
  EXPECT_STREQ(before, "changed");
}

TEST_F(Identification, TheModuleFormatVersionKeepsItsBufferWhenItChanges) {
  const char* before = OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle_.get());

  OrvML_IO_SetOrvMeshLibraryModuleFormatVersion("changed", handle_.get());

  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle_.get()), before);
  EXPECT_STREQ(before, "changed");
}

TEST_F(Identification, ABufferHandedOutMayBeSetAgain) {
  const char* name = OrvML_IO_GetOrvMeshLibraryModuleName(handle_.get());

  OrvML_IO_SetOrvMeshLibraryModuleName(name, handle_.get());
  EXPECT_STREQ(name, "name");

  OrvML_IO_SetOrvMeshLibraryModuleName(name + 2, handle_.get());
  EXPECT_STREQ(name, "me");
}

TEST_F(Identification, TheBuffersOfANullHandleAreNull) {
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(nullptr), nullptr);
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(nullptr), nullptr);
}

TEST_F(Identification, TheCreatorIsCopiedIntoTheCallersBuffer) {
  char buffer[80] = {};

  const char* result = OrvML_IO_GetOrvMeshLibraryIOCreator(handle_.get(), buffer);
  OrvML_IO_SetOrvMeshLibraryIOCreator("changed", handle_.get());

  EXPECT_EQ(result, buffer);
  EXPECT_STREQ(buffer, "creator");
}

TEST_F(Identification, TheLongestCreatorFitsIntoABufferOf80Bytes) {
  char buffer[81];
  std::fill(std::begin(buffer), std::end(buffer), '#');
  OrvML_IO_SetOrvMeshLibraryIOCreator(std::string(100, 'c').c_str(), handle_.get());

  OrvML_IO_GetOrvMeshLibraryIOCreator(handle_.get(), buffer);

  EXPECT_EQ(buffer[79], '\0');
  EXPECT_EQ(buffer[80], '#');
}

TEST_F(Identification, TheCreatorOfANullHandleLeavesTheBufferUntouched) {
  char buffer[80] = "untouched";

  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryIOCreator(nullptr, buffer), buffer);

  EXPECT_STREQ(buffer, "untouched");
}

class MeshDimension : public ::testing::TestWithParam<int> {};

TEST_P(MeshDimension, IsStoredWithoutATest) {
  const Handle handle(OrvML_IO_NewOrvOutputHandle());

  OrvML_IO_SetMeshDimension(handle.get(), GetParam());

  EXPECT_EQ(OrvML_IO_GetMeshDimension(handle.get()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Numbers, MeshDimension,
                         ::testing::Values(2, 3, 0, 1, -1, INT_MAX, INT_MIN));

TEST(MeshDimensionOfANullHandle, IsMinusOne) {
  OrvML_IO_SetMeshDimension(nullptr, 3);

  EXPECT_EQ(OrvML_IO_GetMeshDimension(nullptr), -1);
}

TEST(ParameterCounts, CountEachStoreOnItsOwn) {
  BuiltDocument document = BuiltDocument::input(3);

  document.scalar("a", 1).scalar("b", 2).scalar("c", 3);
  document.vector("a", std::vector<int>{1}).vector("d", std::vector<double>{2});

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document.handle()), 3U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document.handle()), 2U);
}

TEST(ParameterCounts, AreZeroForANewDocument) {
  const Handle handle(OrvML_IO_NewOrvInputHandle());

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(handle.get()), 0U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(handle.get()), 0U);
}

TEST(ParameterCounts, AreZeroForANullHandle) {
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(nullptr), 0U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(nullptr), 0U);
}

TEST(ParameterCounts, AreUnsignedAndAsWideAsAPointer) {
  using Count = decltype(OrvML_IO_GetNumberOfParameters(nullptr));

  EXPECT_TRUE(std::is_unsigned_v<Count>);
  EXPECT_EQ(sizeof(Count), sizeof(void*));
  EXPECT_TRUE((std::is_same_v<Count, decltype(OrvML_IO_GetNumberOfParametersVector(nullptr))>));
}

}  // namespace
