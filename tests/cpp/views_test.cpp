// Views of arrays of the caller: sizes, ranges, look-ups, and what is refused.
#include <orvml/view.hpp>

#include "cpp/content.h"
#include "cpp/errors.h"

#include <array>
#include <limits>
#include <stdexcept>

namespace orvml_io_tests {
namespace {

using orvml::Attribute;
using orvml::Attributes;
using orvml::CellGroup;
using orvml::CellsView;
using orvml::Entity;
using orvml::NodesView;
using orvml::Parameter;
using orvml::Parameters;
using orvml::Shape;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;
using Names = std::vector<std::string>;

template <class Named>
Names namesOf(const Named& list) {
  Names names;
  for (const auto& entry : list) {
    names.emplace_back(entry.name);
  }
  return names;
}

const Ints kInts = {3, 1, 2};
const Doubles kDoubles = {0.5, 1.5, 2.5};

TEST(AttributeView, TellsTypeLengthAndFlag) {
  const Attribute ints("i", kInts);
  const Attribute doubles("d", kDoubles, true);

  EXPECT_TRUE(ints.holdsInts());
  EXPECT_EQ(ints.size(), 3U);
  EXPECT_FALSE(ints.mustBeTransmitted);
  EXPECT_FALSE(doubles.holdsInts());
  EXPECT_EQ(doubles.size(), 3U);
  EXPECT_TRUE(doubles.mustBeTransmitted);
}

TEST(AttributeView, GivesTheArrayItself) {
  EXPECT_EQ(Attribute("i", kInts).ints().data(), kInts.data());
  EXPECT_EQ(Attribute("d", kDoubles).doubles().data(), kDoubles.data());
}

TEST(AttributeView, RefusesTheOtherType) {
  const orvml::Error ints = errorOf([] { (void)Attribute("d", kDoubles).ints(); });
  const orvml::Error doubles = errorOf([] { (void)Attribute("i", kInts).doubles(); });

  EXPECT_EQ(ints.code(), orvml::Code::wrongValueType);
  EXPECT_EQ(ints.sentence(), "\"d\" holds doubles, not ints");
  EXPECT_EQ(ints.object(), "d");
  EXPECT_STREQ(ints.what(), "\"d\" holds doubles, not ints");
  EXPECT_EQ(doubles.code(), orvml::Code::wrongValueType);
  EXPECT_EQ(doubles.sentence(), "\"i\" holds ints, not doubles");
}

TEST(AttributeView, MadeOfNothingIsAnEmptyVectorOfInts) {
  const Attribute none;

  EXPECT_TRUE(none.holdsInts());
  EXPECT_EQ(none.size(), 0U);
  EXPECT_EQ(none.name, "");
}

TEST(AttributesView, IsInByteOrderOfTheNames) {
  const Attributes list({{"b", kInts}, {"\xc3\xa9", kInts}, {"B", kDoubles}, {"a", kInts}});

  EXPECT_EQ(namesOf(list), (Names{"B", "a", "b", "\xc3\xa9"}));
  EXPECT_EQ(list.size(), 4U);
  EXPECT_FALSE(list.empty());
}

TEST(AttributesView, FindsByName) {
  const Attributes list({{"b", kInts}, {"a", kDoubles}});

  ASSERT_NE(list.find("a"), nullptr);
  EXPECT_EQ(list.find("a")->doubles().data(), kDoubles.data());
  EXPECT_EQ(list.find("c"), nullptr);
  EXPECT_EQ(list.find(""), nullptr);
  EXPECT_EQ(list.at("b").ints().data(), kInts.data());
}

TEST(AttributesView, SaysWhichNameIsNotThere) {
  const orvml::Error error = errorOf([] { (void)Attributes({{"a", kInts}}).at("mesh size"); });

  EXPECT_EQ(error.code(), orvml::Code::nameNotFound);
  EXPECT_EQ(error.sentence(), "nothing is called \"mesh size\"");
  EXPECT_EQ(error.object(), "mesh size");
  EXPECT_TRUE(error.file().empty());
}

TEST(AttributesView, RefusesANameTwice) {
  const orvml::Error error = errorOf([] {
    Attributes({{"b", kInts}, {"a", kInts}, {"b", kDoubles}});
  });

  EXPECT_EQ(error.code(), orvml::Code::nameTwice);
  EXPECT_EQ(error.sentence(), "two entries are called \"b\"");
  EXPECT_EQ(error.object(), "b");
}

TEST(AttributesView, OfNothingIsEmpty) {
  const Attributes none;
  const Attributes emptied{std::vector<Attribute>()};

  EXPECT_TRUE(none.empty());
  EXPECT_TRUE(emptied.empty());
  EXPECT_EQ(none.begin(), none.end());
  EXPECT_EQ(none.find("a"), nullptr);
  EXPECT_EQ(codeOf([&] { (void)none.at("a"); }), "orvml.name.not-found");
}

TEST(AttributesView, KeepsItsEntriesWhileAnyCopyLives) {
  const Attribute* found = nullptr;
  Attributes copy;
  {
    const Attributes list({{"a", kInts}});
    copy = list;
    found = list.find("a");
  }
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->name, "a");
}

TEST(ParametersView, FindsByName) {
  const Parameters list({{"b", 2.0}, {"a", 1.0}});

  EXPECT_EQ(namesOf(list), (Names{"a", "b"}));
  EXPECT_EQ(list.size(), 2U);
  EXPECT_EQ(list.find("b"), 2.0);
  EXPECT_EQ(list.find("c"), std::nullopt);
  EXPECT_EQ(list.at("a"), 1.0);
  EXPECT_EQ(codeOf([&] { (void)list.at("c"); }), "orvml.name.not-found");
}

TEST(ParametersView, RefusesANameTwice) {
  EXPECT_EQ(codeOf([] { Parameters({{"a", 1.0}, {"a", 1.0}}); }), "orvml.name.twice");
}

TEST(ParametersView, OfNothingIsEmpty) {
  EXPECT_TRUE(Parameters().empty());
  EXPECT_EQ(Parameters().find("a"), std::nullopt);
  EXPECT_EQ(Parameters().begin(), Parameters().end());
}

const Doubles kFourNodes = {0, 0, 1, 0, 1, 1, 0, 1};

TEST(NodesViewOfCoordinates, CountsNodes) {
  const NodesView nodes(kFourNodes, 2);

  EXPECT_EQ(nodes.size(), 4);
  EXPECT_EQ(nodes.dimension(), 2);
  EXPECT_EQ(nodes.coordinates().data(), kFourNodes.data());
  EXPECT_EQ(nodes.coordinates().size(), 8U);
  EXPECT_TRUE(nodes.attributes().empty());
}

TEST(NodesViewOfCoordinates, GivesTheCoordinatesOfANode) {
  const NodesView nodes(kFourNodes, 2);

  EXPECT_EQ(copyOf(nodes[0]), (Doubles{0, 0}));
  EXPECT_EQ(copyOf(nodes[3]), (Doubles{0, 1}));
  EXPECT_EQ(nodes[2].data(), kFourNodes.data() + 4);
}

TEST(NodesViewOfCoordinates, RefusesANodeThatIsNotThere) {
  const NodesView nodes(kFourNodes, 2);

  EXPECT_THROW((void)nodes[-1], std::out_of_range);
  EXPECT_THROW((void)nodes[4], std::out_of_range);
  EXPECT_THROW((void)nodes[std::numeric_limits<int>::max()], std::out_of_range);
  EXPECT_THROW((void)NodesView()[0], std::out_of_range);
  EXPECT_THROW((void)NodesView::withoutCoordinates(2, 3)[0], std::out_of_range);
}

TEST(NodesViewOfCoordinates, RefusesRowsThatDoNotComeOutEven) {
  const orvml::Error error = errorOf([] { NodesView(kFourNodes, 3); });

  EXPECT_EQ(error.code(), orvml::Code::sizesDisagree);
  EXPECT_EQ(error.sentence(), "8 values are no rows of 3 coordinates");
  EXPECT_EQ(codeOf([] { NodesView(kFourNodes, 0); }), "orvml.use.sizes-disagree");
  EXPECT_EQ(codeOf([] { NodesView(kFourNodes, -2); }), "orvml.use.sizes-disagree");
}

TEST(NodesViewOfCoordinates, RefusesMoreThan32BitsCount) {
  // Nobody looks behind the first value.
  const std::span<const double> many(kFourNodes.data(), std::size_t{1} << 32U);

  const orvml::Error error = errorOf([&] { NodesView(many, 2); });

  EXPECT_EQ(error.code(), orvml::Code::tooManyValues);
  EXPECT_EQ(error.sentence(), "4294967296 values are more than 32 bits count");
}

TEST(NodesViewWithoutCoordinates, HasItsSizeAlone) {
  const NodesView nodes = NodesView::withoutCoordinates(7, 3);

  EXPECT_EQ(nodes.size(), 7);
  EXPECT_EQ(nodes.dimension(), 3);
  EXPECT_TRUE(nodes.coordinates().empty());
  EXPECT_EQ(nodes.range(2, 5).size(), 3);
  EXPECT_TRUE(nodes.range(2, 5).coordinates().empty());
  EXPECT_EQ(NodesView::withoutCoordinates(-1, -1).size(), 0);
}

class NodesRange : public ::testing::Test {
 protected:
  const Ints ids_ = {10, 11, 12, 13};
  const Doubles sizes_ = {0.5, 1.5, 2.5, 3.5};
  const NodesView nodes_ = {kFourNodes, 2, Attributes({{"id", ids_, true}, {"size", sizes_}})};
};

TEST_F(NodesRange, HasThePartOfCoordinatesAndAttributes) {
  const NodesView part = nodes_.range(1, 3);

  EXPECT_EQ(part.size(), 2);
  EXPECT_EQ(part.dimension(), 2);
  EXPECT_EQ(copyOf(part.coordinates()), (Doubles{1, 0, 1, 1}));
  EXPECT_EQ(copyOf(part.attributes().at("id").ints()), (Ints{11, 12}));
  EXPECT_EQ(copyOf(part.attributes().at("size").doubles()), (Doubles{1.5, 2.5}));
}

TEST_F(NodesRange, CopiesNothing) {
  EXPECT_EQ(nodes_.range(1, 3).coordinates().data(), kFourNodes.data() + 2);
  EXPECT_EQ(nodes_.range(1, 3).attributes().at("id").ints().data(), ids_.data() + 1);
}

TEST_F(NodesRange, KeepsFlags) {
  const NodesView part = nodes_.range(0, 1);

  EXPECT_TRUE(part.attributes().at("id").mustBeTransmitted);
  EXPECT_FALSE(part.attributes().at("size").mustBeTransmitted);
}

TEST_F(NodesRange, MayBeAllOrNone) {
  EXPECT_EQ(copyOf(nodes_.range(0, 4).coordinates()), kFourNodes);
  EXPECT_EQ(nodes_.range(4, 4).size(), 0);
  EXPECT_TRUE(nodes_.range(0, 0).coordinates().empty());
  EXPECT_EQ(nodes_.range(4, 4).attributes().at("id").size(), 0U);
}

TEST_F(NodesRange, OfARangeCountsFromItsBeginning) {
  EXPECT_EQ(copyOf(nodes_.range(1, 4).range(1, 2).coordinates()), (Doubles{1, 1}));
  EXPECT_EQ(copyOf(nodes_.range(1, 4).range(1, 2).attributes().at("id").ints()), (Ints{12}));
}

TEST_F(NodesRange, OutsideIsRefused) {
  EXPECT_THROW((void)nodes_.range(-1, 2), std::out_of_range);
  EXPECT_THROW((void)nodes_.range(3, 2), std::out_of_range);
  EXPECT_THROW((void)nodes_.range(0, 5), std::out_of_range);
}

// Readers of files take attributes of any length; no part of one belongs to a part of the nodes.
TEST_F(NodesRange, LeavesAttributesOutThatHaveNotAValueForEachNode) {
  const NodesView nodes(kFourNodes, 2, Attributes({{"id", ids_}, {"three", kInts}}));

  EXPECT_EQ(namesOf(nodes.range(0, 2).attributes()), Names{"id"});
}

const Ints kTwoTriangles = {0, 1, 2, 2, 1, 3};

TEST(CellGroupView, CountsCells) {
  const CellGroup group(Shape::triangle, 3, kTwoTriangles);

  EXPECT_EQ(group.shape(), Shape::triangle);
  EXPECT_EQ(group.nodesPerCell(), 3);
  EXPECT_EQ(group.size(), 2);
  EXPECT_EQ(group.nodeIndices().data(), kTwoTriangles.data());
  EXPECT_EQ(copyOf(group[1]), (Ints{2, 1, 3}));
}

TEST(CellGroupView, RefusesACellThatIsNotThere) {
  const CellGroup group(Shape::triangle, 3, kTwoTriangles);

  EXPECT_THROW((void)group[-1], std::out_of_range);
  EXPECT_THROW((void)group[2], std::out_of_range);
  EXPECT_THROW((void)CellGroup()[0], std::out_of_range);
}

TEST(CellGroupView, IsARangeOfItsCells) {
  const CellGroup group(Shape::triangle, 3, kTwoTriangles);

  std::vector<Ints> cells;
  for (const std::span<const int> cell : group.cells()) {
    cells.push_back(copyOf(cell));
  }

  EXPECT_EQ(cells, (std::vector<Ints>{{0, 1, 2}, {2, 1, 3}}));
  EXPECT_EQ(CellGroup().cells().size(), 0U);
}

TEST(CellGroupView, GivesARangeThatOutlivesIt) {
  const auto cells = CellGroup(Shape::triangle, 3, kTwoTriangles).cells();

  EXPECT_EQ(copyOf(cells[1]), (Ints{2, 1, 3}));
}

TEST(CellGroupView, RefusesCellsThatDoNotComeOutEven) {
  const orvml::Error error = errorOf([] { CellGroup(Shape::quadrilateral, 4, kTwoTriangles); });

  EXPECT_EQ(error.code(), orvml::Code::sizesDisagree);
  EXPECT_EQ(error.sentence(), "6 values are no rows of 4 node indices");
  EXPECT_EQ(codeOf([] { CellGroup(Shape::none, 0, kTwoTriangles); }), "orvml.use.sizes-disagree");
}

TEST(CellGroupView, WithoutNodesHasEmptyCells) {
  const CellGroup group = CellGroup::withoutNodes(Shape::sphere, 2);

  EXPECT_EQ(group.size(), 2);
  EXPECT_EQ(group.nodesPerCell(), 0);
  EXPECT_TRUE(group[1].empty());
  EXPECT_THROW((void)group[2], std::out_of_range);
  EXPECT_EQ(CellGroup::withoutNodes(Shape::sphere, -2).size(), 0);
}

TEST(CellsViewOfGroups, CountsTheCellsOfAllGroups) {
  const Ints quadrilateral = {0, 1, 3, 2};
  const CellsView cells({CellGroup(Shape::triangle, 3, kTwoTriangles),
                         CellGroup(Shape::quadrilateral, 4, quadrilateral)},
                        Attributes({{"id", kInts}}));

  EXPECT_EQ(cells.size(), 3);
  ASSERT_EQ(cells.groups().size(), 2U);
  EXPECT_EQ(cells.groups()[1].shape(), Shape::quadrilateral);
  EXPECT_EQ(cells.attributes().at("id").size(), 3U);
}

TEST(CellsViewOfGroups, MayBeEmpty) {
  EXPECT_EQ(CellsView().size(), 0);
  EXPECT_TRUE(CellsView().groups().empty());
  EXPECT_TRUE(CellsView(std::vector<CellGroup>()).groups().empty());
}

TEST(CellsViewOfGroups, RefusesMoreThan32BitsCount) {
  const CellGroup many = CellGroup::withoutNodes(Shape::point, std::numeric_limits<int>::max());

  EXPECT_EQ(codeOf([&] { CellsView({many, many}); }), "orvml.use.too-many-values");
}

TEST(DocumentViewOfParts, ShowsWhatItWasMadeFrom) {
  const orvml::InputView view({.identification = {"module", "2.1", "me"},
                               .dimension = 2,
                               .nodes = {kFourNodes, 2},
                               .edges = {},
                               .faces = CellsView({CellGroup(Shape::triangle, 3, kTwoTriangles)}),
                               .elements = {},
                               .parameters = Parameters({{"size", 0.5}}),
                               .vectorParameters = Attributes({{"layers", kInts}})});

  EXPECT_EQ(view.kind(), orvml::Kind::input);
  EXPECT_EQ(view.identification().moduleName, "module");
  EXPECT_EQ(view.dimension(), 2);
  EXPECT_EQ(view.nodes().size(), 4);
  EXPECT_EQ(view.edges().size(), 0);
  EXPECT_EQ(view.cells(Entity::faces).size(), 2);
  EXPECT_EQ(view.parameters().at("size"), 0.5);
  EXPECT_EQ(view.vectorParameters().at("layers").size(), 3U);
}

TEST(DocumentViewOfParts, TellsThePartsOfEachEntity) {
  const Ints one = {1};
  const auto named = [&](const char* name) { return Attributes({{name, one}}); };
  const auto point = [&](int count) {
    return std::vector<CellGroup>{CellGroup::withoutNodes(Shape::point, count)};
  };
  const orvml::OutputView view({.identification = {},
                                .dimension = 2,
                                .nodes = {kFourNodes, 2, named("n")},
                                .edges = CellsView(point(1), named("e")),
                                .faces = CellsView(point(2), named("f")),
                                .elements = CellsView(point(3), named("v")),
                                .parameters = {},
                                .vectorParameters = {}});

  EXPECT_EQ(view.kind(), orvml::Kind::output);
  EXPECT_EQ(view.cells(Entity::nodes).size(), 0);
  EXPECT_EQ(view.cells(Entity::edges).size(), 1);
  EXPECT_EQ(view.cells(Entity::faces).size(), 2);
  EXPECT_EQ(view.cells(Entity::elements).size(), 3);
  EXPECT_EQ(namesOf(view.attributes(Entity::nodes)), Names{"n"});
  EXPECT_EQ(namesOf(view.attributes(Entity::edges)), Names{"e"});
  EXPECT_EQ(namesOf(view.attributes(Entity::faces)), Names{"f"});
  EXPECT_EQ(namesOf(view.attributes(Entity::elements)), Names{"v"});
}

orvml::OutputView documentOfTwoNodes() {
  static const Doubles kTwoPoints = {0, 0, 0, 1, 0, 0};
  static const Ints kEdge = {0, 1};
  static const Ints kColours = {7, 8};
  orvml::DocumentParts parts;
  parts.identification = {"MODULE", "2", "program"};
  parts.dimension = 3;
  parts.nodes = NodesView(kTwoPoints, 3, Attributes({{"COLOUR", kColours, true}, {"B", kColours}}));
  parts.edges = CellsView({CellGroup(Shape::line, 2, kEdge)});
  return orvml::OutputView(std::move(parts));
}

TEST(WithAttribute, AddsOneToNodesAndLeavesAllElse) {
  const orvml::OutputView document = documentOfTwoNodes();
  const Doubles heat = {20, 100};

  const orvml::DocumentView heated = withAttribute(document, Entity::nodes, {"HEAT", heat});

  EXPECT_EQ(namesOf(heated.nodes().attributes()), (Names{"B", "COLOUR", "HEAT"}));
  EXPECT_EQ(heated.nodes().attributes().at("HEAT").doubles().data(), heat.data());
  EXPECT_TRUE(heated.nodes().attributes().at("COLOUR").mustBeTransmitted);
  EXPECT_EQ(orvml_io_tests::contentOf(withAttribute(heated, Entity::nodes, {"HEAT", heat})),
            orvml_io_tests::contentOf(heated));
  EXPECT_EQ(heated.kind(), orvml::Kind::output);
  EXPECT_EQ(heated.identification().moduleName, "MODULE");
  EXPECT_EQ(heated.nodes().coordinates().data(), document.nodes().coordinates().data());
  EXPECT_EQ(heated.edges().size(), 1);
  EXPECT_EQ(document.nodes().attributes().size(), 2U);
}

TEST(WithAttribute, TakesThePlaceOfOneOfItsNameWhateverItsType) {
  const Doubles shades = {0.5, 0.25};

  const orvml::DocumentView document =
      withAttribute(documentOfTwoNodes(), Entity::nodes, {"COLOUR", shades});

  EXPECT_EQ(namesOf(document.nodes().attributes()), (Names{"B", "COLOUR"}));
  EXPECT_EQ(document.nodes().attributes().at("COLOUR").doubles().data(), shades.data());
  EXPECT_FALSE(document.nodes().attributes().at("COLOUR").mustBeTransmitted);
}

TEST(WithAttribute, KnowsEveryKindOfCells) {
  const Ints values = {4};
  for (const Entity entity : {Entity::edges, Entity::faces, Entity::elements}) {
    const orvml::DocumentView document = withAttribute(documentOfTwoNodes(), entity, {"A", values});

    EXPECT_EQ(document.attributes(entity).at("A").ints().data(), values.data());
    EXPECT_EQ(document.cells(entity).groups().size(), entity == Entity::edges ? 1U : 0U);
    EXPECT_EQ(document.nodes().attributes().size(), 2U);
  }
}

TEST(WithAttribute, KeepsNodesWhoseCoordinatesAreNotKnown) {
  orvml::DocumentParts parts;
  parts.dimension = 2;
  parts.nodes = NodesView::withoutCoordinates(3, 2);

  const orvml::DocumentView document =
      withAttribute(orvml::InputView(std::move(parts)), Entity::nodes, {"A", kInts});

  EXPECT_EQ(document.kind(), orvml::Kind::input);
  EXPECT_EQ(document.nodes().size(), 3);
  EXPECT_EQ(document.nodes().attributes().size(), 1U);
}

TEST(ShapeNames, AreThoseOfTheShapes) {
  const std::array<std::string_view, 11> names = {
      "none",  "line",  "triangle", "quadrilateral", "tetrahedron", "hexahedron",
      "prism", "point", "pyramid",  "sphere",        "circle"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(orvml::name(static_cast<Shape>(i)), names[i]);
  }
  EXPECT_EQ(orvml::name(static_cast<Shape>(11)), "unknown");
  EXPECT_EQ(orvml::name(static_cast<Shape>(-1)), "unknown");
}

}  // namespace
}  // namespace orvml_io_tests
