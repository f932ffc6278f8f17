// The way between the C++ layer and the flat functions: one document, and who owns what of it.
#include <orvml/orvml.hpp>

#include "cpp/content.h"
#include "cpp/errors.h"
#include "cpp/sample_documents.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <cstdio>
#include <filesystem>

namespace orvml_io_tests {
namespace {

using orvml::Entity;
using orvml::Input;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

TEST(AdoptedHandle, IsNullAfterwards) {
  void* handle = OrvML_IO_NewOrvInputHandle("m", "1", "c", 3);

  const Input input = orvml::adoptInput(handle);

  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(input.identification().creator, "c");
}

TEST(AdoptedHandle, OfNothingIsRefused) {
  void* none = nullptr;

  const orvml::Error error = errorOf([&] { (void)orvml::adoptInput(none); });

  EXPECT_EQ(error.code(), orvml::Code::nullHandle);
  EXPECT_EQ(error.sentence(), "the handle is null");
  EXPECT_EQ(codeOf([&] { (void)orvml::adoptOutput(none); }), "orvml.use.null-handle");
  EXPECT_EQ(codeOf([&] { (void)orvml::kindOf(none); }), "orvml.use.null-handle");
}

TEST(AdoptedHandle, OfTheOtherKindIsRefusedAndUntouched) {
  Handle input(OrvML_IO_NewOrvInputHandle());
  Handle output(OrvML_IO_NewOrvOutputHandle());

  const orvml::Error asOutput = errorOf([&] { (void)orvml::adoptOutput(input.out()); });
  const orvml::Error asInput = errorOf([&] { (void)orvml::adoptInput(output.out()); });

  EXPECT_EQ(asOutput.code(), orvml::Code::wrongKind);
  EXPECT_EQ(asOutput.sentence(), "the handle is that of an input document");
  EXPECT_EQ(asInput.sentence(), "the handle is that of an output document");
  EXPECT_EQ(orvml::kindOf(input.get()), orvml::Kind::input);
  EXPECT_EQ(orvml::kindOf(output.get()), orvml::Kind::output);
}

// The arrays of the mesh stay the caller's, and the group arrays too, which are copied.
TEST(AdoptedDocument, ShowsTheArraysOfItsCaller) {
  const Doubles coordinates = {0, 0, 0, 1, 0, 0, 0, 1, 0};
  Ints triangles = {0, 1, 2};
  void* handle = OrvML_IO_NewOrvInputHandle("m", "1", "c", 3);
  {
    ElemType shapes[] = {TRIANGLE};
    int nodes[] = {3};
    int cells[] = {1};
    OrvML_IO_SetNodesCoords(handle, 3, coordinates.data());
    OrvML_IO_SetFaces(handle, 1, triangles.data(), 1, shapes, nodes, cells);
    Input input = orvml::adoptInput(handle);
    handle = orvml::release(std::move(input));
    shapes[0] = NONE;
    nodes[0] = cells[0] = 0;
  }

  Input input = orvml::adoptInput(handle);

  EXPECT_EQ(input.nodes().coordinates().data(), coordinates.data());
  ASSERT_EQ(input.faces().groups().size(), 1U);
  EXPECT_EQ(input.faces().groups()[0].nodeIndices().data(), triangles.data());
  EXPECT_EQ(input.faces().groups()[0].shape(), orvml::Shape::triangle);
  input.remove(Entity::faces);
  input.setNodes(Doubles(3));
  EXPECT_EQ(triangles, (Ints{0, 1, 2}));
}

TEST(AdoptedDocument, ReleasesWhatSingleShapeSettersAndAttributesMade) {
  Doubles coordinates = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  Ints indices = {0, 1, 2, 3};
  void* handle = OrvML_IO_NewOrvInputHandleWithVolumeElements(
      "m", "1", "c", 3, 4, coordinates.data(), 1, indices.data(), TETRAHEDRA, 4);
  ASSERT_NE(OrvML_IO_CreateAttribute(handle, "id", ORVML_ELEMENTS, ORVML_USER_ATTRIBUTE, ORVML_INT),
            nullptr);
  OrvML_IO_SetAttributesEntitiesVector(handle, ORVML_NODES, "size", coordinates.data(), 4, false);

  const Input input = orvml::adoptInput(handle);

  EXPECT_EQ(contentOf(input),
            "input \"m\" \"1\" \"c\" 3D\nnodes 4: 0 0 0 1 0 0 0 1 0 0 0 1\nsize doubles: 0 0 0 1\n"
            "edges 0\nfaces 0\nelements 1\ntetrahedron 1 of 4: 0 1 2 3\nid ints transmitted: 0\n");
}

// The flat interface lets callers claim more than there is.
TEST(AdoptedDocument, ShowsNoNodesThatItOnlyClaims) {
  void* handle = OrvML_IO_NewOrvInputHandle("m", "1", "c", 3);
  OrvML_IO_SetNodesCoords(handle, 5, nullptr);
  OrvML_IO_SetFaces(handle, 2, nullptr, TRIANGLE, 3);

  const Input input = orvml::adoptInput(handle);

  EXPECT_EQ(input.nodes().size(), 5);
  EXPECT_TRUE(input.nodes().coordinates().empty());
  EXPECT_EQ(input.faces().size(), 0);
}

TEST(LentHandle, ShowsTheDocumentToTheFlatInterface) {
  Input input = fullInput();
  void* handle = orvml::handle(input);

  EXPECT_EQ(orvml::kindOf(handle), orvml::Kind::input);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle), 5);
  EXPECT_EQ(scalarOf(handle, "size"), 0.25);
  EXPECT_EQ(intAttributeOf(handle, ORVML_EDGES, "line"), (Ints{7, 8, 9}));
  EXPECT_EQ(transmittedNames(handle, ORVML_NODES), std::vector<std::string>{"size"});
  EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(handle, fullDocument().handle()));
}

TEST(LentHandle, LetsTheFlatInterfaceChangeTheDocument) {
  Input input = fullInput();
  void* handle = orvml::handle(input);
  const Ints ids = {1, 2, 3};

  OrvML_IO_SetParameter(handle, "size", 2);
  OrvML_IO_DeleteAttribute(handle, "line", ORVML_EDGES);
  OrvML_IO_SetAttributesEntitiesVector(handle, ORVML_EDGES, "id", ids.data(), 3, false);
  OrvML_IO_DeleteParameterVector(handle, "layers");
  OrvML_IO_DeleteFaces(handle);

  EXPECT_EQ(input.parameters().at("size"), 2.0);
  EXPECT_EQ(contentOf(input.edges().attributes()), "id ints: 1 2 3\n");
  EXPECT_EQ(contentOf(input.vectorParameters()), "volumes_sizes doubles: 0.5 0.25\n");
  EXPECT_EQ(input.faces().size(), 0);
}

// The C++ layer owns the arrays, so the mesh setters do nothing, as for every owning document.
TEST(LentHandle, KeepsItsMeshWhateverTheMeshSettersAreGiven) {
  const Doubles coordinates = {0, 0, 0};
  Input built = fullInput();
  BuiltDocument source = fullDocument();
  void* adopting = OrvML_IO_NewOrvInputHandle("m", "1", "c", 3);
  OrvML_IO_SetNodesCoords(adopting, 1, coordinates.data());
  Input adopted = orvml::adoptInput(adopting);

  OrvML_IO_SetNodesCoords(orvml::handle(built), 0, nullptr);
  OrvML_IO_SetNodesCoords(orvml::handle(adopted), 0, nullptr);

  EXPECT_EQ(built.nodes().size(), 5);
  EXPECT_EQ(adopted.nodes().size(), 1);
}

TEST(ReleasedDocument, NeedsNothingBesideItself) {
  void* handle = nullptr;
  {
    Input input = fullInput();
    handle = orvml::release(std::move(input));
  }
  Handle released(handle);

  EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(released.get(), fullDocument().handle()));
  EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(fullDocument().handle(), released.get()));
  EXPECT_EQ(intParameterOf(released.get(), "layers"), (Ints{3, 2, 1}));
  EXPECT_EQ(doubleParameterOf(released.get(), "volumes_sizes"), (Doubles{0.5, 0.25}));
  EXPECT_EQ(transmittedNames(released.get(), ORVML_FACES), std::vector<std::string>{"surface"});
}

TEST(ReleasedDocument, MayBeAnOutput) {
  Handle released(orvml::release(mixedOutput()));

  EXPECT_EQ(orvml::kindOf(released.get()), orvml::Kind::output);
  const orvml::Output output = orvml::adoptOutput(released.out());
  EXPECT_EQ(contentOf(output), contentOf(mixedOutput()));
}

TEST(ReleasedDocument, OfCellsWithoutNodesNeedsNothingBesideItself) {
  Input input({"m", "1", "c"}, 3);
  input.setCells(Entity::elements, {{orvml::Shape::sphere, 0, 3}}, Ints());
  input.setVectorParameter("none", Doubles());
  const std::string content = contentOf(input);
  Handle released(orvml::release(std::move(input)));

  const Input adopted = orvml::adoptInput(released.out());

  EXPECT_EQ(contentOf(adopted), content);
}

class Leftovers : public ::testing::Test {
 protected:
  Leftovers() { orvml::save(file_.path(), fullInput()); }

  void read() { EXPECT_EQ(OrvML_IO_ReadOrvInput(file_.path(), document_.out()), 0); }

  TempFile file_;
  OpenIds ids_;
  Handle document_;
};

TEST_F(Leftovers, OfAFlatReadAreClosed) {
  read();
  const IdCounts open = ids_.opened();
  ASSERT_GT(open.groups + open.datasets, 0);

  EXPECT_EQ(orvml::closeLeftovers(file_.path()), open.groups + open.datasets);

  EXPECT_EQ(ids_.opened(), IdCounts());
  EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(document_.get(), fullDocument().handle())) << "as before";
}

TEST_F(Leftovers, KeepAFileFromBeingWrittenUntilTheyAreClosed) {
  read();
  EXPECT_EQ(OrvML_IO_WriteOrvInput(file_.path(), document_.get()), 1);

  (void)orvml::closeLeftovers(file_.path());

  EXPECT_EQ(OrvML_IO_WriteOrvInput(file_.path(), document_.get()), 0);
}

TEST_F(Leftovers, OfAFileThatWasReplacedAreClosedToo) {
  read();
  orvml::save(file_.path(), mixedOutput());

  EXPECT_GT(orvml::closeLeftovers(file_.path()), 0);

  EXPECT_EQ(ids_.opened(), IdCounts());
}

TEST_F(Leftovers, OfAFileThatWasRemovedAreClosedToo) {
  read();
  std::remove(file_.path());

  EXPECT_GT(orvml::closeLeftovers(file_.path()), 0);

  EXPECT_EQ(ids_.opened(), IdCounts());
}

TEST_F(Leftovers, OfAFileByAnotherNameAreClosedToo) {
  const TempFile link;
  std::filesystem::create_symlink(file_.path(), link.path());
  read();

  EXPECT_GT(orvml::closeLeftovers(link.path()), 0);

  EXPECT_EQ(ids_.opened(), IdCounts());
}

TEST_F(Leftovers, OfAnotherFileStayOpen) {
  const TempFile other;
  orvml::save(other.path(), mixedOutput());
  read();
  const IdCounts open = ids_.opened();

  EXPECT_EQ(orvml::closeLeftovers(other.path()), 0);

  EXPECT_EQ(ids_.opened(), open);
}

TEST_F(Leftovers, AreNoneWhereNothingIsOpen) {
  EXPECT_EQ(orvml::closeLeftovers(file_.path()), 0);
  EXPECT_EQ(orvml::closeLeftovers("/nowhere/f.h5"), 0);
  EXPECT_EQ(orvml::closeLeftovers(""), 0);
  EXPECT_EQ(ids_.opened(), IdCounts());
}

}  // namespace
}  // namespace orvml_io_tests
