// What makes two documents equal, and what of them is not looked at.
#include "compare/comparison.h"
#include "model/document.h"
#include "model/element_kinds.h"
#include "support/document_builder.h"
#include "support/owning_document.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

using namespace orvml_io_tests;

struct Predicate {
  const char* name;
  bool (*areEqual)(void* first, void* second);

  friend std::ostream& operator<<(std::ostream& stream, const Predicate& predicate) {
    return stream << predicate.name;
  }
};

class NullHandle : public ::testing::TestWithParam<Predicate> {
 protected:
  static bool areEqual(void* first, void* second) { return GetParam().areEqual(first, second); }
};

TEST_P(NullHandle, EqualsANullHandle) { EXPECT_TRUE(areEqual(nullptr, nullptr)); }

// A null handle is what a reader gives for a file that lacks the document.
TEST_P(NullHandle, EqualsADocumentWithoutADimension) {
  const Handle empty(OrvML_IO_NewOrvOutputHandle());

  EXPECT_TRUE(areEqual(nullptr, empty.get()));
  EXPECT_TRUE(areEqual(empty.get(), nullptr));
}

TEST_P(NullHandle, EqualsADocumentWithoutADimensionWhateverElseItHolds) {
  const BuiltDocument full = fullDocument();
  OrvML_IO_SetMeshDimension(full.handle(), 0);

  EXPECT_TRUE(areEqual(nullptr, full.handle()));
  EXPECT_TRUE(areEqual(full.handle(), nullptr));
}

TEST_P(NullHandle, DiffersFromADocumentWithADimension) {
  for (const int dimension : {-1, 1, 2, 3}) {
    const BuiltDocument document = BuiltDocument::output(dimension);

    EXPECT_FALSE(areEqual(nullptr, document.handle())) << dimension;
    EXPECT_FALSE(areEqual(document.handle(), nullptr)) << dimension;
  }
}

INSTANTIATE_TEST_SUITE_P(Predicates, NullHandle,
                         ::testing::Values(Predicate{"Inputs", OrvML_IO_OrvInputsAreEqual},
                                           Predicate{"Outputs", OrvML_IO_OrvOutputsAreEqual}),
                         RowName());

TEST(DocumentEquality, HoldsForEmptyDocuments) {
  EXPECT_TRUE(equal(Handle(OrvML_IO_NewOrvInputHandle()), Handle(OrvML_IO_NewOrvInputHandle())));
}

TEST(DocumentEquality, HoldsForDocumentsOfTheSameContent) {
  EXPECT_TRUE(equal(fullDocument(), fullDocument()));
}

TEST(DocumentEquality, HoldsForADocumentAndItself) {
  const BuiltDocument document = fullDocument();

  EXPECT_TRUE(equal(document, document));
}

TEST(DocumentEquality, HoldsForADocumentAndTheOneReadBackFromItsFile) {
  const BuiltDocument written = fullDocument();
  const OwningDocument read(written);

  EXPECT_TRUE(equal(written.handle(), read.handle()));
  EXPECT_TRUE(equal(read.handle(), written.handle()));
}

TEST(DocumentEquality, HoldsForAnInputAndAnOutputDocumentOfTheSameContent) {
  BuiltDocument input = BuiltDocument::input(2);
  input.nodes({0, 1}).scalar("size", 1);
  BuiltDocument output = BuiltDocument::output(2);
  output.nodes({0, 1}).scalar("size", 1);

  EXPECT_TRUE(equal(input, output));
}

TEST(DocumentEquality, FailsForAnotherDimensionOfEmptyDocuments) {
  EXPECT_FALSE(equal(BuiltDocument::input(2), BuiltDocument::input(3)));
}

/// The document of fullDocument(), and the same with one thing changed.
class ChangedDocument : public ::testing::TestWithParam<DocumentChange> {
 protected:
  ChangedDocument() { GetParam().apply(changed_.handle()); }

  BuiltDocument original_ = fullDocument();
  BuiltDocument changed_ = fullDocument();
};

class UncomparedChange : public ChangedDocument {};

TEST_P(UncomparedChange, LeavesTheDocumentsEqual) {
  EXPECT_TRUE(equal(original_, changed_));
  EXPECT_TRUE(equal(changed_, original_));
}

INSTANTIATE_TEST_SUITE_P(
    Changes, UncomparedChange,
    ::testing::Values(
        DocumentChange{"ModuleName",
                       [](void* d) { OrvML_IO_SetOrvMeshLibraryModuleName("other", d); }},
        DocumentChange{"ModuleFormatVersion",
                       [](void* d) { OrvML_IO_SetOrvMeshLibraryModuleFormatVersion("9.9", d); }},
        DocumentChange{"IOCreator",
                       [](void* d) { OrvML_IO_SetOrvMeshLibraryIOCreator("other", d); }},
        DocumentChange{"FileFormatVersion",
                       [](void* d) {
                         orvml_io::copyIdentification(orvml_io::documentOf(d)->fileFormatVersion,
                                                      "1.2");
                       }},
        DocumentChange{"VectorParameterRemoved",
                       [](void* d) { OrvML_IO_DeleteParameterVector(d, "layers"); }},
        DocumentChange{"VectorParameterAdded",
                       [](void* d) {
                         OrvML_IO_SetParameterVector(d, "added", static_cast<int*>(nullptr), 0);
                       }},
        DocumentChange{"VectorParameterValue",
                       [](void* d) {
                         int* values = nullptr;
                         int length = 0;
                         OrvML_IO_GetParameterVector(d, "layers", values, length);
                         values[0] += 1;
                       }},
        DocumentChange{"TransmissionFlag",
                       [](void* d) {
                         const int values[] = {0, 1, 0, 1, 0};
                         OrvML_IO_DeleteAttribute(d, "forced", ORVML_NODES);
                         OrvML_IO_SetAttributesEntitiesVector(d, ORVML_NODES, "forced", values, 5,
                                                              true);
                       }},
        DocumentChange{"StatusCallback", [](void* d) { OrvML_IO_SetCallbackStatus(d, d, d); }},
        DocumentChange{"ErrorCallback", [](void* d) { OrvML_IO_SetCallbackError(d, d, d); }}),
    RowName());

class ComparedChange : public ChangedDocument {};

TEST_P(ComparedChange, MakesTheDocumentsDifferent) {
  EXPECT_FALSE(equal(original_, changed_));
  EXPECT_FALSE(equal(changed_, original_));
}

template <ORVML_TYPE_OF_ENTITY entity>
void changeANodeIndex(void* document) {
  int* connectivities = nullptr;
  OrvML_IO_GetGenericElements(document, entity, connectivities);
  connectivities[1] += 1;
}

template <ORVML_TYPE_OF_ENTITY entity>
void changeAnInt(void* document, const char* name) {
  static_cast<int*>(OrvML_IO_GetAttribute(document, name, entity))[1] += 1;
}

template <ORVML_TYPE_OF_ENTITY entity>
void changeADouble(void* document, const char* name) {
  static_cast<double*>(OrvML_IO_GetAttribute(document, name, entity))[1] += 1;
}

INSTANTIATE_TEST_SUITE_P(
    Changes, ComparedChange,
    ::testing::Values(
        DocumentChange{"Dimension", [](void* d) { OrvML_IO_SetMeshDimension(d, 2); }},
        DocumentChange{"NumberOfNodes", [](void* d) { OrvML_IO_SetNumberOfNodes(d, 4); }},
        DocumentChange{"Coordinate",
                       [](void* d) {
                         double* coords = nullptr;
                         OrvML_IO_GetNodesCoords(d, coords);
                         coords[4] += 1;
                       }},
        DocumentChange{"Edge", changeANodeIndex<ORVML_EDGES>},
        DocumentChange{"Face", changeANodeIndex<ORVML_FACES>},
        DocumentChange{"Element", changeANodeIndex<ORVML_ELEMENTS>},
        DocumentChange{"NodeAttribute", [](void* d) { changeADouble<ORVML_NODES>(d, "size"); }},
        DocumentChange{"EdgeAttribute", [](void* d) { changeAnInt<ORVML_EDGES>(d, "line"); }},
        DocumentChange{"FaceAttribute", [](void* d) { changeAnInt<ORVML_FACES>(d, "surface"); }},
        DocumentChange{"ElementAttribute",
                       [](void* d) { changeADouble<ORVML_ELEMENTS>(d, "quality"); }},
        DocumentChange{"ScalarParameter", [](void* d) { OrvML_IO_SetParameter(d, "size", 9.0); }},
        DocumentChange{"OneMoreScalarParameter",
                       [](void* d) { OrvML_IO_SetParameter(d, "z", 0.0); }}),
    RowName());

/// A document with one container and one without.
class MissingContainer : public ::testing::TestWithParam<ORVML_TYPE_OF_ENTITY> {
 protected:
  /// Gives the document a container of a number of nodes or cells, with one type group.
  void giveContainer(int count) {
    if (GetParam() == ORVML_NODES) {
      OrvML_IO_SetNodesCoords(present_.handle(), count, coords_);
    } else {
      OrvML_IO_SetGenericElements(present_.handle(), GetParam(), count, connectivities_, POINT, 1);
    }
    ASSERT_TRUE(hasContainer(present_.handle(), GetParam()));
  }
  void expectEqual(bool areEqual) const {
    EXPECT_EQ(equal(present_, missing_), areEqual) << "missing in the second";
    EXPECT_EQ(equal(missing_, present_), areEqual) << "missing in the first";
  }

  double coords_[3] = {0, 0, 0};
  int connectivities_[1] = {0};
  BuiltDocument present_ = BuiltDocument::input(3);
  BuiltDocument missing_ = BuiltDocument::input(3);
};

TEST_P(MissingContainer, EqualsAnEmptyOne) {
  giveContainer(0);

  expectEqual(true);
}

TEST_P(MissingContainer, EqualsAnEmptyOneWithAttributes) {
  giveContainer(0);
  present_.attribute(GetParam(), "marker", std::vector<int>{1});

  expectEqual(true);
}

TEST_P(MissingContainer, DiffersFromOneWithContent) {
  giveContainer(1);

  expectEqual(false);
}

TEST_P(MissingContainer, DiffersFromOneWithANegativeCount) {
  giveContainer(-1);

  expectEqual(false);
}

INSTANTIATE_TEST_SUITE_P(Containers, MissingContainer,
                         ::testing::Values(ORVML_NODES, ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS));

}  // namespace
