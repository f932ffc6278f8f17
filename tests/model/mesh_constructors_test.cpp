// The constructors that set a mesh together with the identification.
#include "model/document.h"
#include "model/element_kinds.h"
#include "orvml_io.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace orvml_io_tests {
namespace {

double kCoords[12] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
int kCells[8] = {0, 1, 2, 3, 1, 2, 3, 0};

void* newWithNodes(const char* name, const char* version, const char* creator) {
  return OrvML_IO_NewOrvInputHandleWithNodes(name, version, creator, 3, 4, kCoords);
}

void* newWithFaces(const char* name, const char* version, const char* creator) {
  return OrvML_IO_NewOrvInputHandleWithFaces(name, version, creator, 3, 4, kCoords, 2, kCells,
                                             QUADRILATERAL, 4);
}

void* newWithVolumeElements(const char* name, const char* version, const char* creator) {
  return OrvML_IO_NewOrvInputHandleWithVolumeElements(name, version, creator, 3, 4, kCoords, 2,
                                                      kCells, TETRAHEDRA, 4);
}

struct MeshConstructorRow {
  const char* name;
  void* (*create)(const char*, const char*, const char*);
  Containers containers;
};

class MeshConstructor : public ::testing::TestWithParam<MeshConstructorRow> {
 protected:
  Handle handle_{GetParam().create("module", "2.1", "creator")};
};

TEST_P(MeshConstructor, MakesAnInputDocumentOfTheCallersArrays) {
  ASSERT_NE(handle_.get(), nullptr);

  EXPECT_NE(orvml_io::inputOf(handle_.get()), nullptr);
  EXPECT_TRUE(orvml_io::documentOf(handle_.get())->arraysOwnedByCaller);
}

TEST_P(MeshConstructor, StoresTheIdentification) {
  char creator[80] = {};

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle_.get()), "module");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle_.get()), "2.1");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryIOCreator(handle_.get(), creator), "creator");
  EXPECT_EQ(OrvML_IO_GetMeshDimension(handle_.get()), 3);
}

TEST_P(MeshConstructor, NullTextsGiveEmptyOnes) {
  const Handle handle(GetParam().create(nullptr, nullptr, nullptr));
  char creator[80] = "untouched";

  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), "");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), "");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryIOCreator(handle.get(), creator), "");
}

TEST_P(MeshConstructor, CutsTextsAt79Bytes) {
  const std::string text(80, 't');
  const Handle handle(GetParam().create(text.c_str(), text.c_str(), text.c_str()));
  char creator[80] = {};

  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleName(handle.get()), std::string(79, 't'));
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(handle.get()), std::string(79, 't'));
  EXPECT_EQ(OrvML_IO_GetOrvMeshLibraryIOCreator(handle.get(), creator), std::string(79, 't'));
}

TEST_P(MeshConstructor, AdoptsTheCoordinates) {
  double* coords = nullptr;

  EXPECT_EQ(OrvML_IO_GetNodesCoords(handle_.get(), coords), 0);

  EXPECT_EQ(coords, kCoords);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), 4);
}

TEST_P(MeshConstructor, MakesNoOtherContainers) {
  EXPECT_EQ(containersOf(handle_.get()), GetParam().containers);
}

INSTANTIATE_TEST_SUITE_P(
    Functions, MeshConstructor,
    ::testing::Values(MeshConstructorRow{"WithNodes", newWithNodes, {true, false, false, false}},
                      MeshConstructorRow{"WithFaces", newWithFaces, {true, false, true, false}},
                      MeshConstructorRow{
                          "WithVolumeElements", newWithVolumeElements, {true, false, false, true}}),
    RowName());

TEST(NewInputHandleWithFaces, SetsOneGroupOfFaces) {
  const Handle handle(newWithFaces("m", "v", "c"));

  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(handle.get()), 2);
  EXPECT_EQ(OrvML_IO_GetNumberOfElementTypesInFaces(handle.get()), 1);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle.get(), ORVML_FACES, 0), QUADRILATERAL);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle.get(), ORVML_FACES, 0), 4);
  EXPECT_EQ(groupsOf(handle.get(), ORVML_FACES).connectivities, kCells);
}

TEST(NewInputHandleWithFaces, NullConnectivitiesSetNone) {
  const Handle handle(
      OrvML_IO_NewOrvInputHandleWithFaces("m", "v", "c", 3, 4, kCoords, 2, nullptr, TRIANGLE, 3));

  EXPECT_EQ(containersOf(handle.get()), (Containers{true, false, false, false}));
}

TEST(NewInputHandleWithVolumeElements, SetsOneGroupOfVolumeElements) {
  const Handle handle(newWithVolumeElements("m", "v", "c"));

  EXPECT_EQ(OrvML_IO_GetNumberOfElements(handle.get()), 2);
  EXPECT_EQ(OrvML_IO_GetNumberOfElementTypesInElements(handle.get()), 1);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle.get(), ORVML_ELEMENTS, 0), TETRAHEDRA);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle.get(), ORVML_ELEMENTS, 0), 4);
  EXPECT_EQ(groupsOf(handle.get(), ORVML_ELEMENTS).connectivities, kCells);
}

TEST(NewInputHandleWithVolumeElements, NullConnectivitiesSetNone) {
  const Handle handle(OrvML_IO_NewOrvInputHandleWithVolumeElements("m", "v", "c", 3, 4, kCoords, 2,
                                                                   nullptr, TETRAHEDRA, 4));

  EXPECT_EQ(containersOf(handle.get()), (Containers{true, false, false, false}));
}

// The difference is part of the symbol's name, so programs that were linked before rely on it.
TEST(NewInputHandleWithVolumeElements, TakesCoordinatesThatAreNotConst) {
  using Faces = void* (*)(const char*, const char*, const char*, int, int, const double*, int, int*,
                          ElemType, int);
  using VolumeElements =
      void* (*)(const char*, const char*, const char*, int, int, double*, int, int*, ElemType, int);

  EXPECT_TRUE((std::is_same_v<decltype(&OrvML_IO_NewOrvInputHandleWithFaces), Faces>));
  EXPECT_TRUE(
      (std::is_same_v<decltype(&OrvML_IO_NewOrvInputHandleWithVolumeElements), VolumeElements>));
}

TEST(NewInputHandleWithNodes, StoresNullCoordinatesWithTheirCount) {
  const Handle handle(OrvML_IO_NewOrvInputHandleWithNodes("m", "v", "c", 2, 7, nullptr));
  double* coords = kCoords;

  EXPECT_EQ(OrvML_IO_GetNodesCoords(handle.get(), coords), 0);

  EXPECT_EQ(coords, nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle.get()), 7);
}

}  // namespace
}  // namespace orvml_io_tests
