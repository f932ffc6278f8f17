// Documents that are built and changed: whose memory their arrays are in, for how long, and what is
// refused.
#include <orvml/document.hpp>

#include "cpp/content.h"
#include "cpp/errors.h"
#include "cpp/sample_documents.h"
#include "support/row_name.h"

#include <array>
#include <memory>
#include <ostream>
#include <type_traits>
#include <utility>

namespace orvml_io_tests {
namespace {

using orvml::Document;
using orvml::Entity;
using orvml::GroupSize;
using orvml::Input;
using orvml::Kind;
using orvml::Output;
using orvml::Shape;
using orvml::Transmission;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

Input emptyInput() { return {{"module", "2.1", "me"}, 3}; }

/// Three nodes and two triangles.
Input smallInput() {
  Input input = emptyInput();
  input.setNodes(Doubles{0, 0, 0, 1, 0, 0, 0, 1, 0});
  input.setCells(Entity::faces, Shape::triangle, 3, Ints{0, 1, 2, 2, 1, 0});
  return input;
}

/// A container of a program of its own: it can be moved alone, and says when it goes.
template <class Value>
class CountedArray {
 public:
  CountedArray(std::size_t size, int& alive)
      : values_(std::make_unique<Value[]>(size)), size_(size), alive_(&alive) {
    ++*alive_;
  }
  CountedArray(CountedArray&& other) noexcept
      : values_(std::move(other.values_)),
        size_(std::exchange(other.size_, 0)),
        alive_(std::exchange(other.alive_, nullptr)) {}
  CountedArray& operator=(CountedArray&&) = delete;
  CountedArray(const CountedArray&) = delete;
  CountedArray& operator=(const CountedArray&) = delete;
  ~CountedArray() {
    if (alive_ != nullptr) {
      --*alive_;
    }
  }

  [[nodiscard]] const Value* data() const noexcept { return values_.get(); }
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  [[nodiscard]] const Value* begin() const noexcept { return data(); }
  [[nodiscard]] const Value* end() const noexcept { return data() + size_; }

 private:
  std::unique_ptr<Value[]> values_;
  std::size_t size_;
  int* alive_;
};

TEST(NewDocument, IsEmpty) {
  const Input input = Document::input({"module", "2.1", "me"}, 2);

  EXPECT_EQ(contentOf(input),
            "input \"module\" \"2.1\" \"me\" 2D\nnodes 0:\nedges 0\nfaces 0\nelements 0\n");
}

TEST(NewDocument, IsOfItsKind) {
  EXPECT_EQ(Document::input({}, 3).kind(), Kind::input);
  EXPECT_EQ(Document::output({}, 3).kind(), Kind::output);
  EXPECT_EQ(Output({}, 2).kind(), Kind::output);
  EXPECT_EQ(Output({}, 2).dimension(), 2);
}

class RefusedDimension : public ::testing::TestWithParam<int> {};

TEST_P(RefusedDimension, IsAnyButTwoAndThree) {
  const orvml::Error error = errorOf([] { Input({}, GetParam()); });

  EXPECT_EQ(error.code(), orvml::Code::wrongDimension);
  EXPECT_EQ(error.sentence(),
            "a mesh of dimension " + std::to_string(GetParam()) + ", it has to be 2 or 3");
  EXPECT_EQ(codeOf([] { Output({}, GetParam()); }), "orvml.document.dimension");
}

INSTANTIATE_TEST_SUITE_P(Each, RefusedDimension, ::testing::Values(-1, 0, 1, 4));

TEST(Identification, HasUpTo79Bytes) {
  const std::string longest(79, 'x');
  const Input input({longest, longest, longest}, 3);

  EXPECT_EQ(input.identification().moduleName, longest);
  EXPECT_EQ(input.identification().moduleFormatVersion, longest);
  EXPECT_EQ(input.identification().creator, longest);
}

TEST(Identification, OfMoreBytesIsRefusedAndChangesNothing) {
  const std::string tooLong(80, 'x');
  Input input = emptyInput();

  const orvml::Error name = errorOf([&] { input.setIdentification({tooLong, "", ""}); });
  const orvml::Error version = errorOf([&] { input.setIdentification({"n", tooLong, ""}); });
  const orvml::Error creator = errorOf([&] { input.setIdentification({"n", "v", tooLong}); });

  EXPECT_EQ(name.code(), orvml::Code::textTooLong);
  EXPECT_EQ(name.sentence(), "the name of the module has 80 bytes, at most 79 are allowed");
  EXPECT_EQ(version.sentence(),
            "the format version of the module has 80 bytes, at most 79 are allowed");
  EXPECT_EQ(creator.sentence(), "the name of the creator has 80 bytes, at most 79 are allowed");
  EXPECT_EQ(input.identification().moduleName, "module");
  EXPECT_EQ(input.identification().creator, "me");
}

TEST(Identification, WithANullByteIsRefused) {
  const orvml::Error error = errorOf([] { Input({std::string_view("a\0b", 3), "", ""}, 3); });

  EXPECT_EQ(error.code(), orvml::Code::nameNotAllowed);
  EXPECT_EQ(error.sentence(), "the name of the module has a null byte");
}

TEST(Identification, MayBeMadeOfItsOwnTexts) {
  Input input({"one", "two", "three"}, 3);
  const orvml::Identification own = input.identification();

  input.setIdentification({own.creator, own.moduleName, own.moduleFormatVersion});

  EXPECT_EQ(input.identification().moduleName, "three");
  EXPECT_EQ(input.identification().moduleFormatVersion, "one");
  EXPECT_EQ(input.identification().creator, "two");
}

TEST(HandedOverVector, IsNotCopied) {
  Doubles coordinates = {0, 0, 0, 1, 0, 0, 0, 1, 0};
  Ints indices = {0, 1, 2};
  Ints ids = {7};
  Doubles layers = {0.5, 0.25};
  const auto* const nodes = coordinates.data();
  const auto* const faces = indices.data();
  const auto* const id = ids.data();
  const auto* const layer = layers.data();
  Input input = emptyInput();

  input.setNodes(std::move(coordinates));
  input.setCells(Entity::faces, Shape::triangle, 3, std::move(indices));
  input.setAttribute(Entity::faces, "id", std::move(ids));
  input.setVectorParameter("layers", std::move(layers));

  EXPECT_EQ(input.nodes().coordinates().data(), nodes);
  EXPECT_EQ(input.faces().groups()[0].nodeIndices().data(), faces);
  EXPECT_EQ(input.faces().attributes().at("id").ints().data(), id);
  EXPECT_EQ(input.vectorParameters().at("layers").doubles().data(), layer);
}

TEST(HandedOverVector, OfSeveralGroupsIsNotCopied) {
  Ints indices = {0, 1, 2, 0, 1, 2, 3};
  const auto* const values = indices.data();
  Input input = emptyInput();

  input.setCells(Entity::faces, {{Shape::triangle, 3, 1}, {Shape::quadrilateral, 4, 1}},
                 std::move(indices));

  ASSERT_EQ(input.faces().groups().size(), 2U);
  EXPECT_EQ(input.faces().groups()[0].nodeIndices().data(), values);
  EXPECT_EQ(input.faces().groups()[1].nodeIndices().data(), values + 3);
  EXPECT_EQ(copyOf(input.faces().groups()[1][0]), (Ints{0, 1, 2, 3}));
}

// Containers that hold their values themselves are moved where they stay.
TEST(HandedOverArray, MayHoldItsValuesItself) {
  Input input = emptyInput();

  input.setNodes(std::array<double, 3>{1, 2, 3});

  EXPECT_EQ(copyOf(input.nodes().coordinates()), (Doubles{1, 2, 3}));
}

class OwnContainer : public ::testing::Test {
 protected:
  template <class Value>
  CountedArray<Value> values(std::size_t size) {
    return CountedArray<Value>(size, alive_);
  }

  int alive_ = 0;
};

TEST_F(OwnContainer, IsNotCopied) {
  CountedArray<double> coordinates = values<double>(9);
  const double* const data = coordinates.data();
  Input input = emptyInput();

  input.setNodes(std::move(coordinates));

  EXPECT_EQ(input.nodes().coordinates().data(), data);
  EXPECT_EQ(alive_, 1);
}

TEST_F(OwnContainer, LivesAsLongAsTheDocument) {
  {
    Input input = emptyInput();
    input.setNodes(values<double>(9));
    input.setCells(Entity::edges, Shape::line, 2, values<int>(4));
    input.setAttribute(Entity::edges, "id", values<int>(2));
    input.setVectorParameter("layers", values<double>(5));
    EXPECT_EQ(alive_, 4);
    const Input moved = std::move(input);
    EXPECT_EQ(alive_, 4);
    EXPECT_EQ(moved.nodes().size(), 3);
  }
  EXPECT_EQ(alive_, 0);
}

TEST_F(OwnContainer, GoesWhenItsValuesAreReplaced) {
  Input input = emptyInput();
  input.setNodes(values<double>(9));
  input.setCells(Entity::faces, Shape::triangle, 3, values<int>(3));
  input.setAttribute(Entity::faces, "id", values<int>(1));
  input.setVectorParameter("layers", values<int>(5));

  input.setNodes(Doubles(9));
  EXPECT_EQ(alive_, 3);
  input.setAttribute(Entity::faces, "id", Doubles(1));
  EXPECT_EQ(alive_, 2);
  input.setVectorParameter("layers", Ints());
  EXPECT_EQ(alive_, 1);
  input.setCells(Entity::faces, Shape::triangle, 3, Ints(3));
  EXPECT_EQ(alive_, 0);
}

TEST_F(OwnContainer, GoesWhenItsValuesAreRemoved) {
  Input input = emptyInput();
  input.setNodes(values<double>(9));
  input.setAttribute(Entity::nodes, "id", values<int>(3));
  input.setAttribute(Entity::nodes, "size", values<double>(3));
  input.setVectorParameter("layers", values<int>(5));

  EXPECT_TRUE(input.removeAttribute(Entity::nodes, "id"));
  EXPECT_EQ(alive_, 3);
  EXPECT_TRUE(input.removeVectorParameter("layers"));
  EXPECT_EQ(alive_, 2);
  input.remove(Entity::nodes);
  EXPECT_EQ(alive_, 0);
}

TEST_F(OwnContainer, GoesWithAnAttributeThatDoesNotFitNewNodes) {
  Input input = emptyInput();
  input.setNodes(values<double>(9));
  input.setAttribute(Entity::nodes, "id", values<int>(3));

  input.setNodes(Doubles(6));

  EXPECT_EQ(alive_, 0);
}

TEST_F(OwnContainer, GoesWhenItIsRefused) {
  Input input = smallInput();

  EXPECT_EQ(codeOf([&] { input.setAttribute(Entity::nodes, "id", values<int>(4)); }),
            "orvml.use.sizes-disagree");
  EXPECT_EQ(codeOf([&] { input.setNodes(values<double>(7)); }), "orvml.use.sizes-disagree");
  EXPECT_EQ(codeOf([&] { input.setVectorParameter("", values<double>(7)); }),
            "orvml.name.not-allowed");

  EXPECT_EQ(alive_, 0);
}

TEST(ReplacedNodes, KeepAttributesWhenTheirNumberStays) {
  Input input = smallInput();
  input.setAttribute(Entity::nodes, "id", Ints{1, 2, 3}, Transmission::mandatory);

  input.setNodes(Doubles{0, 0, 1, 1, 0, 1, 0, 1, 1});

  EXPECT_EQ(copyOf(input.nodes().coordinates()), (Doubles{0, 0, 1, 1, 0, 1, 0, 1, 1}));
  EXPECT_EQ(contentOf(input.attributes(Entity::nodes)), "id ints transmitted: 1 2 3\n");
}

TEST(ReplacedNodes, LoseAttributesWhenTheirNumberChanges) {
  Input input = smallInput();
  input.setAttribute(Entity::nodes, "id", Ints{1, 2, 3});

  input.setNodes(Doubles{0, 0, 1});

  EXPECT_EQ(input.nodes().size(), 1);
  EXPECT_TRUE(input.attributes(Entity::nodes).empty());
}

TEST(ReplacedCells, KeepAttributesWhenTheirNumberStays) {
  Input input = smallInput();
  input.setAttribute(Entity::faces, "id", Ints{1, 2});

  input.setCells(Entity::faces, {{Shape::quadrilateral, 4, 1}, {Shape::triangle, 3, 1}},
                 Ints{0, 1, 2, 0, 0, 1, 2});

  EXPECT_EQ(input.faces().groups().size(), 2U);
  EXPECT_EQ(contentOf(input.faces().attributes()), "id ints: 1 2\n");
}

TEST(ReplacedCells, LoseAttributesWhenTheirNumberChanges) {
  Input input = smallInput();
  input.setAttribute(Entity::faces, "id", Ints{1, 2});

  input.setCells(Entity::faces, Shape::triangle, 3, Ints{0, 1, 2});

  EXPECT_EQ(input.faces().size(), 1);
  EXPECT_TRUE(input.faces().attributes().empty());
}

TEST(RemovedPart, IsGoneWithItsAttributes) {
  Input input = fullInput();

  for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
    input.remove(entity);
    EXPECT_EQ(input.cells(entity).size(), 0);
    EXPECT_TRUE(input.attributes(entity).empty());
  }
  EXPECT_EQ(input.nodes().size(), 0);
  EXPECT_EQ(contentOf(input),
            "input \"ORVML_OCTREE_MESHER\" \"2.1\" \"tests\" 3D\nnodes 0:\nedges 0\nfaces 0\n"
            "elements 0\nangle = 40\nsize = 0.25\nlayers ints: 3 2 1\n"
            "volumes_sizes doubles: 0.5 0.25\n");
}

TEST(RemovedPart, MayBeOneThatIsNotThere) {
  Input input = emptyInput();

  input.remove(Entity::faces);

  EXPECT_EQ(input.faces().size(), 0);
  EXPECT_FALSE(input.removeAttribute(Entity::faces, "id"));
  EXPECT_FALSE(input.removeParameter("size"));
  EXPECT_FALSE(input.removeVectorParameter("layers"));
}

TEST(EmptyPart, HoldsNothing) {
  Input input = emptyInput();

  input.setNodes(Doubles());
  input.setCells(Entity::faces, Shape::triangle, 3, Ints());
  input.setCells(Entity::edges, std::vector<GroupSize>(), Ints());

  EXPECT_EQ(input.nodes().size(), 0);
  EXPECT_EQ(input.faces().size(), 0);
  EXPECT_EQ(input.edges().size(), 0);
}

TEST(CellsOfNoNodes, ArePartOfADocument) {
  Input input = emptyInput();

  input.setCells(Entity::elements, {{Shape::sphere, 0, 3}}, Ints());

  EXPECT_EQ(input.elements().size(), 3);
  ASSERT_EQ(input.elements().groups().size(), 1U);
  EXPECT_EQ(input.elements().groups()[0].nodesPerCell(), 0);
  const Input clone = input.clone();
  EXPECT_EQ(contentOf(clone), contentOf(input));
}

TEST(RefusedCells, ArePartialCells) {
  Input input = smallInput();

  const orvml::Error error = errorOf([&] {
    input.setCells(Entity::faces, Shape::triangle, 3, Ints{0, 1, 2, 0});
  });

  EXPECT_EQ(error.code(), orvml::Code::sizesDisagree);
  EXPECT_EQ(error.sentence(), "4 node indices are no cells of 3 nodes");
  EXPECT_EQ(codeOf([&] { input.setCells(Entity::faces, Shape::none, 0, Ints{0}); }),
            "orvml.use.sizes-disagree");
  EXPECT_EQ(input.faces().size(), 2) << "as before";
}

TEST(RefusedCells, HaveNotTheIndicesThatTheGroupsNeed) {
  Input input = emptyInput();

  const orvml::Error error = errorOf([&] {
    input.setCells(Entity::faces, {{Shape::quadrilateral, 4, 5}}, Ints(17));
  });

  EXPECT_EQ(error.code(), orvml::Code::sizesDisagree);
  EXPECT_EQ(error.sentence(), "there are 17 node indices, the groups need 20");
}

TEST(RefusedCells, HaveGroupsOfImpossibleSizes) {
  constexpr int kMany = 2000000000;
  Input input = emptyInput();
  const auto sentenceOf = [&](const std::vector<GroupSize>& groups) {
    return errorOf([&] { input.setCells(Entity::edges, groups, Ints()); }).sentence();
  };
  const std::string sentence = "the groups have negative sizes, or more than 32 bits count";

  EXPECT_EQ(sentenceOf({{Shape::line, 2, -1}}), sentence);
  EXPECT_EQ(sentenceOf({{Shape::line, -2, 1}}), sentence);
  EXPECT_EQ(sentenceOf({{Shape::line, 0, kMany}, {Shape::line, 0, kMany}}), sentence);
  EXPECT_EQ(sentenceOf({{Shape::line, 2, kMany}}), sentence);
}

TEST(RefusedCells, AreNodes) {
  Input input = smallInput();

  const orvml::Error error = errorOf([&] {
    input.setCells(Entity::nodes, Shape::point, 1, Ints{0, 1, 2});
  });

  EXPECT_EQ(error.code(), orvml::Code::wrongKind);
  EXPECT_EQ(error.sentence(), "nodes are no cells");
  EXPECT_EQ(input.nodes().size(), 3) << "as before";
}

TEST(RefusedNodes, AreNoRows) {
  Input input = smallInput();

  EXPECT_EQ(errorOf([&] { input.setNodes(Doubles(7)); }).sentence(),
            "7 values are no rows of 3 coordinates");
  EXPECT_EQ(input.nodes().size(), 3) << "as before";
}

/// An entity and what it is called in sentences.
struct EntityRow {
  const char* name;
  Entity entity;
  std::string sentence;

  friend std::ostream& operator<<(std::ostream& stream, const EntityRow& row) {
    return stream << row.name;
  }
};

class AttributeOfWrongLength : public ::testing::TestWithParam<EntityRow> {};

TEST_P(AttributeOfWrongLength, IsRefused) {
  Input input = fullInput();
  const std::string before = contentOf(input);

  const orvml::Error error = errorOf([&] { input.setAttribute(GetParam().entity, "id", Ints(9)); });

  EXPECT_EQ(error.code(), orvml::Code::sizesDisagree);
  EXPECT_EQ(error.sentence(), GetParam().sentence);
  EXPECT_EQ(error.object(), "id");
  EXPECT_EQ(contentOf(input), before);
}

INSTANTIATE_TEST_SUITE_P(
    Each, AttributeOfWrongLength,
    ::testing::Values(
        EntityRow{"Nodes", Entity::nodes, "the attribute \"id\" has 9 values, there are 5 nodes"},
        EntityRow{"Edges", Entity::edges, "the attribute \"id\" has 9 values, there are 3 edges"},
        EntityRow{"Faces", Entity::faces, "the attribute \"id\" has 9 values, there are 4 faces"},
        EntityRow{"Elements", Entity::elements,
                  "the attribute \"id\" has 9 values, there are 2 volume elements"}),
    RowName());

TEST(AttributeOfNothing, IsRefused) {
  Input input = emptyInput();

  EXPECT_EQ(errorOf([&] { input.setAttribute(Entity::edges, "id", Ints()); }).sentence(),
            "the attribute \"id\" has 0 values, there are 0 edges");
}

TEST(SetAttribute, ReplacesOneOfTheOtherTypeAndFlag) {
  Input input = smallInput();
  input.setAttribute(Entity::nodes, "a", Ints{1, 2, 3}, Transmission::mandatory);

  input.setAttribute(Entity::nodes, "a", Doubles{0.5, 1.5, 2.5});

  EXPECT_EQ(contentOf(input.attributes(Entity::nodes)), "a doubles: 0.5 1.5 2.5\n");
}

// A view of the name that is replaced or removed points into what goes.
TEST(ChangedAttribute, MayBeNamedByItsOwnView) {
  Input input = smallInput();
  const std::string name(40, 'n');
  input.setAttribute(Entity::nodes, name, Ints{1, 2, 3});
  input.setVectorParameter(name, Ints{1});
  input.setParameter(name, 1.0);

  input.setAttribute(Entity::nodes, input.attributes(Entity::nodes).begin()->name, Ints{4, 5, 6});
  input.setVectorParameter(input.vectorParameters().begin()->name, Ints{2});
  EXPECT_EQ(contentOf(input.attributes(Entity::nodes)), name + " ints: 4 5 6\n");
  EXPECT_EQ(contentOf(input.vectorParameters()), name + " ints: 2\n");

  EXPECT_TRUE(input.removeAttribute(Entity::nodes, input.attributes(Entity::nodes).begin()->name));
  EXPECT_TRUE(input.removeVectorParameter(input.vectorParameters().begin()->name));
  EXPECT_TRUE(input.removeParameter(input.parameters().begin()->name));
  EXPECT_TRUE(input.attributes(Entity::nodes).empty());
  EXPECT_TRUE(input.vectorParameters().empty());
  EXPECT_TRUE(input.parameters().empty());
}

TEST(SetParameter, AddsAndReplaces) {
  Input input = emptyInput();

  input.setParameter("size", 0.5);
  input.setParameter("size", 0.25);
  input.setParameter("angle", 40);

  EXPECT_EQ(input.parameters().size(), 2U);
  EXPECT_EQ(input.parameters().at("size"), 0.25);
  EXPECT_TRUE(input.removeParameter("size"));
  EXPECT_EQ(input.parameters().find("size"), std::nullopt);
}

TEST(SetVectorParameter, TakesAnEmptyVector) {
  Input input = emptyInput();

  input.setVectorParameter("none", Doubles());

  EXPECT_EQ(contentOf(input.vectorParameters()), "none doubles:\n");
}

/// A name that no file can hold.
struct NameRow {
  const char* name;
  std::string text;
  std::string_view code;
  std::string sentence;  // after "the parameter", "the attribute", ...

  friend std::ostream& operator<<(std::ostream& stream, const NameRow& row) {
    return stream << row.name;
  }
};

class RefusedName : public ::testing::TestWithParam<NameRow> {
 protected:
  static void expectRefused(const std::string& what, const orvml::Error& error) {
    EXPECT_EQ(orvml::text(error.code()), GetParam().code);
    EXPECT_EQ(error.sentence(), what + GetParam().sentence);
    EXPECT_EQ(error.object(), GetParam().text);
  }
};

TEST_P(RefusedName, IsRefusedForAllThatHasNames) {
  Input input = smallInput();
  const std::string& name = GetParam().text;

  expectRefused("the parameter", errorOf([&] { input.setParameter(name, 1.0); }));
  expectRefused("the vector parameter", errorOf([&] { input.setVectorParameter(name, Ints{1}); }));
  expectRefused("the attribute", errorOf([&] {
                  input.setAttribute(Entity::nodes, name, Ints{1, 2, 3});
                }));
  EXPECT_TRUE(input.parameters().empty());
  EXPECT_TRUE(input.vectorParameters().empty());
  EXPECT_TRUE(input.attributes(Entity::nodes).empty());
}

const std::string kEightyBytes(80, 'n');

INSTANTIATE_TEST_SUITE_P(
    Each, RefusedName,
    ::testing::Values(NameRow{"OfEightyBytes", kEightyBytes, "orvml.name.too-long",
                              " \"" + kEightyBytes + "\" has 80 bytes, at most 79 are allowed"},
                      NameRow{"Empty", "", "orvml.name.not-allowed", " has an empty name"},
                      NameRow{"WithASlash", "a/b", "orvml.name.not-allowed",
                              " \"a/b\" has a name that stands for a path"},
                      NameRow{"OfADot", ".", "orvml.name.not-allowed",
                              " \".\" has a name that stands for a path"},
                      NameRow{"WithANullByte", std::string("a\0b", 3), "orvml.name.not-allowed",
                              " has a name with a null byte"}),
    RowName());

class AcceptedName : public ::testing::TestWithParam<std::string> {};

TEST_P(AcceptedName, IsKeptAsItIs) {
  Input input = emptyInput();

  input.setParameter(GetParam(), 1.0);

  EXPECT_EQ(input.parameters().begin()->name, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Each, AcceptedName,
                         ::testing::Values("a", std::string(79, 'n'), "..", "a.b", " ",
                                           "\xc3\xa9"));

TEST(Clone, HasTheSameContent) {
  const Input input = fullInput();
  const Output output = mixedOutput();

  EXPECT_EQ(contentOf(input.clone()), contentOf(input));
  EXPECT_EQ(contentOf(output.clone()), contentOf(output));
}

TEST(Clone, SharesNoArray) {
  const Input input = fullInput();
  const Input clone = input.clone();

  EXPECT_NE(clone.nodes().coordinates().data(), input.nodes().coordinates().data());
  for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
    EXPECT_NE(clone.cells(entity).groups()[0].nodeIndices().data(),
              input.cells(entity).groups()[0].nodeIndices().data());
  }
  EXPECT_NE(clone.attributes(Entity::nodes).at("size").doubles().data(),
            input.attributes(Entity::nodes).at("size").doubles().data());
  EXPECT_NE(clone.vectorParameters().at("layers").ints().data(),
            input.vectorParameters().at("layers").ints().data());
}

TEST(Clone, OutlivesItsSource) {
  const Input clone = fullInput().clone();

  EXPECT_EQ(contentOf(clone), contentOf(fullInput()));
}

TEST(Clone, StaysWhatItWasWhenItsSourceChanges) {
  Input input = fullInput();
  const Input clone = input.clone();

  input.remove(Entity::nodes);
  input.setCells(Entity::faces, Shape::triangle, 3, Ints{0, 0, 0});
  input.removeParameter("size");
  input.removeVectorParameter("layers");
  input.setIdentification({});

  EXPECT_EQ(contentOf(clone), contentOf(fullInput()));
}

TEST(Clone, HasVectorParametersWithoutScalarOnes) {
  Input input = emptyInput();
  input.setVectorParameter("layers", Ints{1, 2});

  const Input clone = input.clone();

  EXPECT_EQ(contentOf(clone.vectorParameters()), "layers ints: 1 2\n");
}

TEST(Clone, CanBeChangedAsAnyDocument) {
  Input clone = fullInput().clone();
  Doubles coordinates(15, 0.5);
  const double* const data = coordinates.data();

  clone.setNodes(std::move(coordinates));
  clone.setAttribute(Entity::faces, "surface", Doubles(4));
  clone.setCells(Entity::edges, Shape::line, 2, Ints{0, 1});
  clone.remove(Entity::elements);
  clone.setVectorParameter("layers", Doubles{0.5});

  EXPECT_EQ(clone.nodes().coordinates().data(), data);
  EXPECT_EQ(contentOf(clone.attributes(Entity::nodes)),
            "forced ints: 0 1 0 1 0\nsize doubles transmitted: 1 2 3 4 5\n");
  EXPECT_EQ(contentOf(clone.attributes(Entity::faces)), "surface doubles: 0 0 0 0\n");
  EXPECT_TRUE(clone.attributes(Entity::edges).empty());
  EXPECT_EQ(clone.elements().size(), 0);
  EXPECT_EQ(contentOf(clone.vectorParameters()),
            "layers doubles: 0.5\nvolumes_sizes doubles: 0.5 0.25\n");
}

TEST(MovedDocument, TakesItsContentAlong) {
  Input input = fullInput();
  const double* const data = input.nodes().coordinates().data();

  const Input moved = std::move(input);

  EXPECT_EQ(moved.nodes().coordinates().data(), data);
  EXPECT_EQ(contentOf(moved), contentOf(fullInput()));
}

TEST(MovedDocument, ReplacesWhatItIsAssignedTo) {
  Input input = smallInput();

  input = fullInput();

  EXPECT_EQ(contentOf(input), contentOf(fullInput()));
}

TEST(MovedDocument, MayBeAssignedToAgain) {
  Output output = mixedOutput();
  const Output moved = std::move(output);

  output = mixedOutput();  // NOLINT(bugprone-use-after-move)

  EXPECT_EQ(contentOf(output), contentOf(moved));
}

TEST(MovedDocument, LeavesViewsValid) {
  Input input = fullInput();
  const orvml::NodesView nodes = input.nodes();

  const Input moved = std::move(input);

  EXPECT_EQ(nodes.coordinates().data(), moved.nodes().coordinates().data());
  EXPECT_EQ(contentOf(nodes.attributes()),
            "forced ints: 0 1 0 1 0\nsize doubles transmitted: 1 2 3 4 5\n");
}

static_assert(!std::is_copy_constructible_v<Input> && !std::is_copy_assignable_v<Input>);
static_assert(!std::is_copy_constructible_v<Output> && !std::is_copy_assignable_v<Output>);
static_assert(std::is_nothrow_move_constructible_v<Input> &&
              std::is_nothrow_move_assignable_v<Input>);
static_assert(std::is_nothrow_move_constructible_v<Output> &&
              std::is_nothrow_move_assignable_v<Output>);
static_assert(!std::is_constructible_v<Input, Output> && !std::is_assignable_v<Input&, Output>);
static_assert(!std::is_convertible_v<orvml::OutputView, orvml::InputView>);

}  // namespace
}  // namespace orvml_io_tests
