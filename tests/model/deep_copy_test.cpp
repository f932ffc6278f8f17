// Copies of documents: they hold what their source holds, in arrays of their own. What is odd about
// a source is copied too; tests/compare/copy_equality_test.cpp runs through such sources.
#include "files/described_document.h"
#include "model/document.h"
#include "model/element_kinds.h"
#include "model/filled_document.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/memory_watch.h"
#include "support/new_array.h"
#include "support/owning_document.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <new>
#include <ostream>
#include <string>
#include <vector>

namespace {

using namespace orvml_io_tests;
using orvml_io::Elems;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInput;
using orvml_io::OrvInputAndOrvOutput;

Handle copyOf(void* source) { return Handle(OrvML_IO_NewOrvInputHandle(source)); }

OrvInputAndOrvOutput& contentOf(void* handle) { return *orvml_io::documentOf(handle); }

/// All blocks that a document with every container holds.
HeldBlocks allBlocksOf(void* handle) {
  HeldBlocks all;
  for (const auto entity : kEveryEntity) {
    const HeldBlocks blocks = blocksOf(handle, entity);
    all.arrays.insert(all.arrays.end(), blocks.arrays.begin(), blocks.arrays.end());
    all.arrays.insert(all.arrays.end(), blocks.groupArrays.begin(), blocks.groupArrays.end());
    all.attributes.insert(all.attributes.end(), blocks.attributes.begin(), blocks.attributes.end());
  }
  const std::vector<const void*> parameters = vectorParametersOf(handle);
  all.attributes.insert(all.attributes.end(), parameters.begin(), parameters.end());
  return all;
}

bool haveNoneInCommon(const std::vector<const void*>& a, const std::vector<const void*>& b) {
  return std::find_first_of(a.begin(), a.end(), b.begin(), b.end()) == a.end();
}

/// The two functions that copy a document.
struct Copier {
  const char* name;
  void* (*copy)(void* source);
  void (*release)(void*& handle);

  friend std::ostream& operator<<(std::ostream& stream, const Copier& copier) {
    return stream << copier.name;
  }
};

class DeepCopy : public ::testing::TestWithParam<Copier> {
 protected:
  static Handle copyOf(void* source) { return Handle(GetParam().copy(source)); }

  /// Copies with the n-th allocation failing; null when it was reached.
  static void* copyWithFailure(int n, void* source) {
    const FailingAllocation failure(n);
    try {
      return GetParam().copy(source);
    } catch (const std::bad_alloc&) {
      return nullptr;
    }
  }
};

TEST_P(DeepCopy, OfANullHandleIsNull) { EXPECT_EQ(GetParam().copy(nullptr), nullptr); }

TEST_P(DeepCopy, HoldsWhatItsSourceHolds) {
  const BuiltDocument source = fullDocument();
  const Handle copy = copyOf(source.handle());

  EXPECT_EQ(describe(copy.get()), describe(source.handle()));
}

TEST_P(DeepCopy, OfACopyOfEitherKindHoldsTheSame) {
  const BuiltDocument source = fullDocument();

  const Handle input(OrvML_IO_NewOrvInputHandle(source.handle()));
  const Handle output(OrvML_IO_NewOrvOutputHandle(source.handle()));

  EXPECT_EQ(describe(copyOf(input.get()).get()), describe(source.handle()));
  EXPECT_EQ(describe(copyOf(output.get()).get()), describe(source.handle()));
}

TEST_P(DeepCopy, KeepsLongStringsAndTheFormatVersion) {
  BuiltDocument source = BuiltDocument::input(3);
  const std::string longest(79, 'x');
  source.identification(longest.c_str(), longest.c_str(), longest.c_str());
  orvml_io::copyIdentification(contentOf(source.handle()).fileFormatVersion, "1.3");

  const Handle copy = copyOf(source.handle());

  EXPECT_EQ(contentOf(copy.get()).moduleName, longest);
  EXPECT_EQ(contentOf(copy.get()).moduleFormatVersion, longest);
  EXPECT_EQ(contentOf(copy.get()).ioCreator, longest);
  EXPECT_STREQ(contentOf(copy.get()).fileFormatVersion, "1.3");
}

TEST_P(DeepCopy, KeepsTheTransmissionFlags) {
  const Handle copy = copyOf(fullDocument().handle());

  EXPECT_EQ(transmittedNames(copy.get(), ORVML_NODES), std::vector<std::string>{"size"});
  EXPECT_EQ(transmittedNames(copy.get(), ORVML_EDGES), std::vector<std::string>{"line"});
  EXPECT_EQ(transmittedNames(copy.get(), ORVML_FACES), std::vector<std::string>{"surface"});
  EXPECT_EQ(transmittedNames(copy.get(), ORVML_ELEMENTS), std::vector<std::string>{});
}

TEST_P(DeepCopy, SharesNoBlockWithItsSource) {
  const BuiltDocument source = fullDocument();

  const Handle copy = copyOf(source.handle());

  const HeldBlocks own = allBlocksOf(copy.get());
  const HeldBlocks others = allBlocksOf(source.handle());
  EXPECT_EQ(own.arrays.size(), others.arrays.size());
  EXPECT_TRUE(haveNoneInCommon(own.arrays, others.arrays));
  EXPECT_TRUE(haveNoneInCommon(own.attributes, others.attributes));
}

TEST_P(DeepCopy, StaysAsItIsWhenItsSourceIsOverwritten) {
  const BuiltDocument source = fullDocument();
  const Handle copy = copyOf(source.handle());
  const std::string before = describe(copy.get());
  const orvml_io::Nodes& nodes = *contentOf(source.handle()).nodes;

  std::fill_n(nodes.coords, 15, 99.0);
  static_cast<double*>(nodes.attributes.find("size")->data)[0] = 99;
  for (const Elems* elems : {contentOf(source.handle()).edges, contentOf(source.handle()).faces,
                             contentOf(source.handle()).elements}) {
    elems->connectivities[0] = 99;
    elems->elementTypes[0] = SPHERE;
    elems->numberOfNodesByElement[0] = 1;
    elems->numberOfElementsByType[0] = 1;
  }
  OrvML_IO_SetParameter(source.handle(), "size", 99.0);

  EXPECT_NE(describe(source.handle()), before);
  EXPECT_EQ(describe(copy.get()), before);
}

TEST_P(DeepCopy, OutlivesItsSourceAndTheArraysOfTheCaller) {
  Handle copy;
  {
    const BuiltDocument source = fullDocument();
    copy.out() = GetParam().copy(source.handle());
  }

  EXPECT_EQ(describe(copy.get()), describe(fullDocument().handle()));
}

TEST_P(DeepCopy, ReleasesEverythingItHoldsAndNothingElse) {
  const BuiltDocument source = fullDocument();
  const HeldBlocks sourceBlocks = allBlocksOf(source.handle());
  void* copy = GetParam().copy(source.handle());
  const HeldBlocks blocks = allBlocksOf(copy);
  const ReleasedBlocks released;

  GetParam().release(copy);

  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(arrayDeleted(released, blocks.arrays), 13U) << "coordinates and three times four";
  EXPECT_EQ(freed(released, blocks.attributes), 7U) << "five attributes, two parameters";
  EXPECT_EQ(arrayDeleted(released, sourceBlocks.arrays), 0U);
  EXPECT_EQ(freed(released, sourceBlocks.attributes), 0U);
}

TEST_P(DeepCopy, RefusesOtherNodes) {
  const Handle copy = copyOf(fullDocument().handle());
  double coords[3] = {};

  OrvML_IO_SetNodesCoords(copy.get(), 1, coords);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(copy.get()), 5);
}

// The copy of a document that owns its arrays owns its own ones.
TEST_P(DeepCopy, OfADocumentReadFromAFileOutlivesIt) {
  Handle copy;
  {
    const OwningDocument source(fullDocument());
    copy.out() = GetParam().copy(source.handle());
    EXPECT_STREQ(contentOf(copy.get()).fileFormatVersion, "1.4");
  }

  EXPECT_EQ(describe(copy.get()), describe(fullDocument().handle()));
}

TEST_P(DeepCopy, WithoutMemoryThrowsAndLosesNothing) {
  const BuiltDocument source = fullDocument();
  Handle copy;
  int failures = 0;
  while ((copy.out() = copyWithFailure(failures + 1, source.handle())) == nullptr) {
    ASSERT_LT(++failures, 1000);
  }

  // The document, four containers, 13 arrays and 7 blocks at least; the stores' entries besides.
  EXPECT_GE(failures, 1 + 4 + 13 + 7);
  EXPECT_EQ(describe(copy.get()), describe(source.handle()));
  EXPECT_EQ(describe(source.handle()), describe(fullDocument().handle()));
}

TEST_P(DeepCopy, HasNoVectorParametersWhenItsSourceHasNoScalarOnes) {
  BuiltDocument source = BuiltDocument::input(3);
  source.vector("layers", std::vector<int>{1, 2});

  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(copyOf(source.handle()).get()), 0U);
}

INSTANTIATE_TEST_SUITE_P(Functions, DeepCopy,
                         ::testing::Values(Copier{"Input", OrvML_IO_NewOrvInputHandle,
                                                  OrvML_IO_DeleteOrvInputHandle},
                                           Copier{"Output", OrvML_IO_NewOrvOutputHandle,
                                                  OrvML_IO_DeleteOrvOutputHandle}),
                         RowName());

using Pointers = std::array<void*, 4>;

/// The two slots, or what the getters leave when a document has none.
Pointers callbacksOf(void* handle) {
  static char untouched;
  Pointers slots = {&untouched, &untouched, &untouched, &untouched};
  OrvML_IO_GetCallbackStatus(handle, slots[0], slots[1]);
  OrvML_IO_GetCallbackError(handle, slots[2], slots[3]);
  return slots;
}

class CopiedCallbacks : public ::testing::Test {
 protected:
  CopiedCallbacks() {
    void* handle = input_.handle();
    OrvML_IO_SetCallbackStatus(handle, slots_.data(), &slots_[1]);
    OrvML_IO_SetCallbackError(handle, &slots_[2], &slots_[3]);
  }

  Pointers slots_ = {};
  const BuiltDocument input_ = BuiltDocument::input(3);
};

TEST_F(CopiedCallbacks, AreThoseOfAnInputSource) {
  const Handle copy = copyOf(input_.handle());

  EXPECT_EQ(callbacksOf(copy.get()), (Pointers{slots_.data(), &slots_[1], &slots_[2], &slots_[3]}));
}

TEST_F(CopiedCallbacks, AreNullForAnOutputSource) {
  const BuiltDocument output = BuiltDocument::output(3);

  EXPECT_EQ(callbacksOf(copyOf(output.handle()).get()), Pointers{});
}

TEST_F(CopiedCallbacks, DoNotExistInAnOutputCopy) {
  const Handle copy(OrvML_IO_NewOrvOutputHandle(input_.handle()));

  EXPECT_EQ(callbacksOf(copy.get()), callbacksOf(nullptr));
  EXPECT_EQ(orvml_io::inputOf(copy.get()), nullptr);
}

/// The nodes of a source and of its copy.
class CopiedNodes : public ::testing::Test {
 protected:
  BuiltDocument source_ = BuiltDocument::input(2);
};

TEST_F(CopiedNodes, AreAnEmptyContainerForASourceWithoutNodes) {
  source_.nodes({}).attribute(ORVML_NODES, "size", std::vector<int>{1});

  const Handle copy = copyOf(source_.handle());

  EXPECT_TRUE(hasContainer(copy.get(), ORVML_NODES));
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(copy.get()), 0);
  EXPECT_EQ(contentOf(copy.get()).nodes->coords, nullptr);
  EXPECT_EQ(OrvML_IO_GetAttributeType(copy.get(), "size", ORVML_NODES), ORVML_UNKNOWN_VALUE);
}

TEST_F(CopiedNodes, AreAsManyCoordinatesAsTheDimensionAsksFor) {
  source_.nodes({1, 2, 3, 4, 5, 6});
  OrvML_IO_SetNumberOfNodes(source_.handle(), 5);
  OrvML_IO_SetMeshDimension(source_.handle(), 1);

  const Handle copy = copyOf(source_.handle());

  const orvml_io::Nodes& nodes = *contentOf(copy.get()).nodes;
  EXPECT_EQ(std::vector<double>(nodes.coords, nodes.coords + 5),
            (std::vector<double>{1, 2, 3, 4, 5}));
}

TEST_F(CopiedNodes, WithoutCoordinatesAreWrittenLikeTheirSource) {
  const OpenIds ids;
  const TempFile sourceFile;
  const TempFile copyFile;
  OrvML_IO_SetNodesCoords(source_.handle(), 2, nullptr);
  const Handle copy = copyOf(source_.handle());

  EXPECT_EQ(OrvML_IO_WriteOrvInput(sourceFile.path(), source_.handle()), 0);
  EXPECT_EQ(OrvML_IO_WriteOrvInput(copyFile.path(), copy.get()), 0);
}

/// The cells of a source and of its copy.
class CopiedCells : public EveryElementKind {
 protected:
  static const Elems& cellsOf(void* handle) {
    return *contentOf(handle).GetGenericElems(GetParam().entity);
  }

  /// Group arrays of the library go with the content; those of a caller would stay.
  void expectClearingToReleaseTheGroups(int groups) const {
    Handle copy = copyOf(source_.handle());
    EXPECT_EQ(GetParam().typeCount(copy.get()), groups);
    const HeldBlocks blocks = blocksOf(copy.get(), GetParam().entity);
    const ReleasedBlocks released;
    GetParam().deleteContent(copy.out());
    EXPECT_EQ(arrayDeleted(released, blocks.groupArrays), 3U);
    EXPECT_EQ(GetParam().typeCount(copy.get()), 0);
  }

  int indices_[6] = {0, 1, 2, 3, 4, 5};
  ElemType shapes_[2] = {LINEAR, TRIANGLE};
  int nodesPerCell_[2] = {2, 3};
  int cellsPerGroup_[2] = {1, 1};
  const BuiltDocument source_ = BuiltDocument::input(3);
};

TEST_P(CopiedCells, AreMissingWhenTheSourceHasNone) {
  int untouched = 0;
  int* connectivities = &untouched;

  const Handle copy = copyOf(source_.handle());

  EXPECT_EQ(GetParam().count(copy.get()), 0);
  EXPECT_EQ(GetParam().get(copy.get(), connectivities), 0);
  EXPECT_EQ(connectivities, &untouched);
}

TEST_P(CopiedCells, AreNotReplacedByTheSetters) {
  GetParam().setSingleShape(source_.handle(), 2, indices_, TRIANGLE, 3);
  const Handle copy = copyOf(source_.handle());

  GetParam().setSingleShape(copy.get(), 1, indices_, LINEAR, 2);
  GetParam().setGroups(copy.get(), 1, indices_, 1, shapes_, nodesPerCell_, cellsPerGroup_);

  EXPECT_EQ(GetParam().count(copy.get()), 2);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(copy.get(), GetParam().entity, 0), TRIANGLE);
}

TEST_P(CopiedCells, OfASingleShapeHaveGroupArraysOfTheirOwn) {
  GetParam().setSingleShape(source_.handle(), 2, indices_, TRIANGLE, 3);

  expectClearingToReleaseTheGroups(1);
}

TEST_P(CopiedCells, OfTheCallersGroupsHaveGroupArraysOfTheirOwn) {
  GetParam().setGroups(source_.handle(), 2, indices_, 2, shapes_, nodesPerCell_, cellsPerGroup_);

  expectClearingToReleaseTheGroups(2);
}

TEST_P(CopiedCells, AreAsManyNodeIndicesAsTheGroupsClaim) {
  for (const int count : {-1, 0, 1, 1000}) {
    GetParam().setGroups(source_.handle(), count, indices_, 2, shapes_, nodesPerCell_,
                         cellsPerGroup_);
    const Handle copy = copyOf(source_.handle());

    EXPECT_EQ(GetParam().count(copy.get()), count);
    EXPECT_TRUE(std::equal(indices_, indices_ + 5, cellsOf(copy.get()).connectivities));
  }
}

// Clearing the content of a caller's document keeps the groups without their connectivities.
TEST_P(CopiedCells, LackTheConnectivitiesThatTheSourceLacks) {
  void* source = source_.handle();
  GetParam().setGroups(source, 2, newArray({0, 1, 2, 3, 4}), 2, shapes_, nodesPerCell_,
                       cellsPerGroup_);
  GetParam().deleteContent(source);

  const Handle copy = copyOf(source);

  EXPECT_EQ(GetParam().count(copy.get()), 0);
  EXPECT_EQ(GetParam().typeCount(copy.get()), 2);
  EXPECT_EQ(cellsOf(copy.get()).connectivities, nullptr);
  EXPECT_EQ(cellsOf(copy.get()).elementTypes[1], TRIANGLE);
}

TEST_P(CopiedCells, HaveEmptyArraysWhenThereAreNoGroups) {
  GetParam().setGroups(source_.handle(), 0, indices_, 0, nullptr, nullptr, nullptr);

  const Handle copy = copyOf(source_.handle());

  EXPECT_TRUE(hasContainer(copy.get(), GetParam().entity));
  EXPECT_NE(cellsOf(copy.get()).connectivities, nullptr);
  EXPECT_NE(cellsOf(copy.get()).elementTypes, nullptr);
  EXPECT_NE(cellsOf(copy.get()).numberOfNodesByElement, nullptr);
  EXPECT_NE(cellsOf(copy.get()).numberOfElementsByType, nullptr);
}

TEST_P(CopiedCells, KeepTheirAttributesWhenThereAreNoCells) {
  GetParam().setGroups(source_.handle(), 0, indices_, 0, nullptr, nullptr, nullptr);
  const int values[] = {1};
  OrvML_IO_SetAttributesEntitiesVector(source_.handle(), GetParam().entity, "a", values, 1, true);
  OrvML_IO_SetAttributesEntitiesVector(source_.handle(), GetParam().entity, "b", values, 0, false);

  const Handle copy = copyOf(source_.handle());

  EXPECT_EQ(intAttributeOf(copy.get(), GetParam().entity, "a"), std::vector<int>{1});
  EXPECT_EQ(intAttributeOf(copy.get(), GetParam().entity, "b"), std::vector<int>{});
  EXPECT_NE(OrvML_IO_GetAttribute(copy.get(), "b", GetParam().entity), nullptr);
  EXPECT_EQ(transmittedNames(copy.get(), GetParam().entity), std::vector<std::string>{"a"});
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(CopiedCells);

/// The member functions of the copy, which the exported ones call with fresh documents only.
class CopyFromOther : public ::testing::Test {
 protected:
  const BuiltDocument source_ = fullDocument();
  const Handle handle_{OrvML_IO_NewOrvInputHandle(source_.handle())};
  OrvInputAndOrvOutput& copy_ = contentOf(handle_.get());
};

TEST_F(CopyFromOther, KeepsAContainerWhenTheSourceHasNone) {
  EXPECT_EQ(copy_.CopyNodesFromOther(nullptr), 0);
  EXPECT_EQ(copy_.CopyEdgesFromOther(nullptr), 0);
  EXPECT_EQ(copy_.CopyFacesFromOther(nullptr), 0);
  EXPECT_EQ(copy_.CopyElemsFromOther(nullptr), 0);

  EXPECT_EQ(describe(handle_.get()), describe(source_.handle()));
}

TEST_F(CopyFromOther, TakesTheOwnershipOfTheArraysFromTheSource) {
  const Handle empty(OrvML_IO_NewOrvInputHandle());
  OrvInput copyOfCallers;
  OrvInput copyOfOwner;

  EXPECT_EQ(copyOfCallers.CopyFromOther(&contentOf(empty.get())), 0);
  EXPECT_EQ(copyOfOwner.CopyFromOther(&copy_), 0);

  EXPECT_TRUE(copyOfCallers.arraysOwnedByCaller);
  EXPECT_FALSE(copyOfOwner.arraysOwnedByCaller);
}

TEST_F(CopyFromOther, ReplacesParametersThatWereThere) {
  BuiltDocument source = BuiltDocument::input(3);
  source.scalar("new", 7).vector("new", std::vector<int>{7});

  EXPECT_EQ(copy_.CopyParametersFromOther(&contentOf(source.handle())), 0);

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(handle_.get()), 1U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(handle_.get()), 1U);
  EXPECT_EQ(intParameterOf(handle_.get(), "new"), std::vector<int>{7});
}

TEST_F(CopyFromOther, KeepsParametersWhenTheSourceHasNoScalarOnes) {
  BuiltDocument source = BuiltDocument::input(3);
  source.vector("new", std::vector<int>{7});

  EXPECT_EQ(copy_.CopyParametersFromOther(&contentOf(source.handle())), 0);

  EXPECT_EQ(describe(handle_.get()), describe(source_.handle()));
}

// The store of vectors is emptied before it is filled from itself.
TEST_F(CopyFromOther, OfTheSameDocumentKeepsTheScalarParametersAlone) {
  EXPECT_EQ(copy_.CopyParametersFromOther(&copy_), 0);

  EXPECT_EQ(scalarOf(handle_.get(), "size"), 0.25);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(handle_.get()), 0U);
}

TEST_F(CopyFromOther, OfTheSameStoreOfAttributesEmptiesIt) {
  OML_AttributesVector& attributes = copy_.faces->attributes;

  EXPECT_EQ(attributes.CopyFromOther(attributes), 0);

  EXPECT_EQ(attributes.count(), 0U);
}

TEST_F(CopyFromOther, LeavesOutAttributesOfAnUnknownType) {
  OML_AttributesVector& attributes = contentOf(source_.handle()).nodes->attributes;
  attributes.SetZeros("unknown", 'x', 1, false);

  const Handle copy = copyOf(source_.handle());

  EXPECT_EQ(contentOf(copy.get()).nodes->attributes.find("unknown"), nullptr);
  EXPECT_EQ(contentOf(copy.get()).nodes->attributes.count(), 2U);
}

}  // namespace
