// What the mesh getters answer for a null handle. The answers differ from function to function, and
// callers rely on each of them.
#include "model/element_kinds.h"
#include "orvml_io.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

int untouched = 0;
ElemType untouchedShape = NONE;

/// Calls a getter with one output and answers 99 when it touched the output.
template <class Getter>
int resultOf(Getter getter) {
  int* connectivities = &untouched;
  const int result = getter(connectivities);
  return connectivities == &untouched ? result : 99;
}

/// Does the same with four outputs.
template <class Getter>
int resultOfGroups(Getter getter) {
  int* connectivities = &untouched;
  ElemType* shapes = &untouchedShape;
  int* nodesPerCell = &untouched;
  int* cellsPerGroup = &untouched;
  const int result = getter(connectivities, shapes, nodesPerCell, cellsPerGroup);
  const bool kept = connectivities == &untouched && shapes == &untouchedShape &&
                    nodesPerCell == &untouched && cellsPerGroup == &untouched;
  return kept ? result : 99;
}

struct NullHandleRow {
  const char* name;
  int (*call)();
  int expected;
};

class NullHandle : public ::testing::TestWithParam<NullHandleRow> {};

TEST_P(NullHandle, GivesItsOwnNeutralValueAndTouchesNoOutput) {
  EXPECT_EQ(GetParam().call(), GetParam().expected);
}

const NullHandleRow kRows[] = {
    {"NumberOfNodes", [] { return OrvML_IO_GetNumberOfNodes(nullptr); }, 0},
    {"GenericElements",
     [] {
       return resultOf(
           [](int*& c) { return OrvML_IO_GetGenericElements(nullptr, ORVML_FACES, c); });
     },
     0},
    {"GenericElementsOfAnUnknownKind",
     [] {
       return resultOf(
           [](int*& c) { return OrvML_IO_GetGenericElements(nullptr, ORVML_NODES, c); });
     },
     0},
    {"Edges", [] { return resultOf([](int*& c) { return OrvML_IO_GetEdges(nullptr, c); }); }, 0},
    {"Faces", [] { return resultOf([](int*& c) { return OrvML_IO_GetFaces(nullptr, c); }); }, 0},
    {"Elements", [] { return resultOf([](int*& c) { return OrvML_IO_GetElements(nullptr, c); }); },
     0},
    {"GenericElementGroups",
     [] {
       return resultOfGroups([](int*& c, ElemType*& s, int*& n, int*& g) {
         return OrvML_IO_GetGenericElements(nullptr, ORVML_FACES, c, s, n, g);
       });
     },
     0},
    {"EdgeGroups",
     [] {
       return resultOfGroups([](int*& c, ElemType*& s, int*& n, int*& g) {
         return OrvML_IO_GetEdges(nullptr, c, s, n, g);
       });
     },
     0},
    {"FaceGroups",
     [] {
       return resultOfGroups([](int*& c, ElemType*& s, int*& n, int*& g) {
         return OrvML_IO_GetFaces(nullptr, c, s, n, g);
       });
     },
     0},
    {"ElementGroups",
     [] {
       return resultOfGroups([](int*& c, ElemType*& s, int*& n, int*& g) {
         return OrvML_IO_GetElements(nullptr, c, s, n, g);
       });
     },
     0},
    {"NumberOfGenericElements",
     [] { return OrvML_IO_GetNumberOfGenericElements(nullptr, ORVML_FACES); }, -1},
    {"NumberOfEdges", [] { return OrvML_IO_GetNumberOfEdges(nullptr); }, 0},
    {"NumberOfFaces", [] { return OrvML_IO_GetNumberOfFaces(nullptr); }, 0},
    {"NumberOfElements", [] { return OrvML_IO_GetNumberOfElements(nullptr); }, 0},
    {"NumberOfGenericElementTypes",
     [] { return OrvML_IO_GetNumberOfGenericElementTypes(nullptr, ORVML_FACES); }, -1},
    {"NumberOfElementTypesInEdges", [] { return OrvML_IO_GetNumberOfElementTypesInEdges(nullptr); },
     -1},
    {"NumberOfElementTypesInFaces", [] { return OrvML_IO_GetNumberOfElementTypesInFaces(nullptr); },
     -1},
    {"NumberOfElementTypesInElements",
     [] { return OrvML_IO_GetNumberOfElementTypesInElements(nullptr); }, -1},
    {"NNodeGenericElement", [] { return OrvML_IO_GetNNodeGenericElement(nullptr, ORVML_FACES, 0); },
     -1},
    {"GenericElementType",
     [] { return static_cast<int>(OrvML_IO_GetGenericElementType(nullptr, ORVML_FACES, 0)); }, 0},
};

INSTANTIATE_TEST_SUITE_P(Getters, NullHandle, ::testing::ValuesIn(kRows), RowName());

}  // namespace
}  // namespace orvml_io_tests
