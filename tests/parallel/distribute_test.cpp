#include <orvml/fingerprint.hpp>
#include <orvml/load.hpp>
#include <orvml/parallel/distribute.hpp>
#include <orvml/parallel/load.hpp>
#include <orvml/parallel/save.hpp>
#include <orvml/save.hpp>

#include "support/agreed_error.h"
#include "support/calls.h"
#include "support/documents.h"
#include "support/parts.h"
#include "support/shared_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>
#include <stdexcept>
#include <tuple>

namespace orvml_parallel_tests {

namespace {

using orvml::Entity;
using orvml::parallel::Distribution;
using orvml::parallel::Method;
using orvml::parallel::Part;

constexpr Entity kCells[] = {Entity::edges, Entity::faces, Entity::elements};

/// The cells of one kind, each as its node indices, in the order of the document.
std::vector<std::vector<int>> cellsOf(const orvml::CellsView& cells) {
  std::vector<std::vector<int>> all;
  for (const orvml::CellGroup& group : cells.groups()) {
    for (const std::span<const int> cell : group.cells()) {
      all.emplace_back(cell.begin(), cell.end());
    }
  }
  return all;
}

Entity highestOf(const orvml::DocumentView& whole) {
  return whole.elements().size() > 0 ? Entity::elements
         : whole.faces().size() > 0  ? Entity::faces
                                     : Entity::edges;
}

using Row = std::tuple<NamedDocument, Method, bool>;

std::string nameOfRow(const testing::TestParamInfo<Row>& row) {
  constexpr const char* kMethods[] = {"ByBlocks", "ByCoordinates", "ByGraph"};
  std::string name = std::get<0>(row.param).name +
                     kMethods[static_cast<int>(std::get<1>(row.param))] +
                     (std::get<2>(row.param) ? "WithGhosts" : "");
  std::erase(name, ' ');
  return name;
}

/// A document, and the part of it that this rank has.
class Distributed : public testing::TestWithParam<Row> {
 protected:
  Distributed()
      : whole_(std::get<0>(GetParam()).make()),
        part_(orvml::parallel::distribute(MPI_COMM_WORLD,
                                          partOf(whole_.view(), unevenly(ranks()), rank()),
                                          {std::get<1>(GetParam()), std::get<2>(GetParam())})) {}

  [[nodiscard]] std::vector<int> ownedNumbers(Entity entity) const {
    std::vector<int> owned;
    const std::span<const int> numbers = part_.globalNumbers(entity);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (part_.owners(entity)[i] == rank()) {
        owned.push_back(numbers[i]);
      }
    }
    return owned;
  }

  /// Which nodes the cells use that this rank owns, of the highest dimension.
  [[nodiscard]] std::set<int> nodesOfOwnedCells() const {
    const auto cells = cellsOf(whole_.cells(highestOf(whole_.view())));
    std::set<int> nodes;
    for (const int number : ownedNumbers(highestOf(whole_.view()))) {
      const std::vector<int>& cell = cells[static_cast<std::size_t>(number)];
      nodes.insert(cell.begin(), cell.end());
    }
    return nodes;
  }

  orvml::Output whole_;
  Part part_;
};

INSTANTIATE_TEST_SUITE_P(Documents, Distributed,
                         testing::Combine(testing::ValuesIn(documents()),
                                          testing::Values(Method::block, Method::coordinates,
                                                          Method::graph),
                                          testing::Bool()),
                         nameOfRow);

TEST_P(Distributed, EveryNodeAndCellHasOneOwner) {
  for (const Entity entity : {Entity::nodes, Entity::edges, Entity::faces, Entity::elements}) {
    std::vector<int> all = gathered(ownedNumbers(entity));
    std::sort(all.begin(), all.end());

    const int size = entity == Entity::nodes ? whole_.nodes().size() : whole_.cells(entity).size();
    std::vector<int> expected(static_cast<std::size_t>(size));
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(expected, all) << "entity " << static_cast<int>(entity);
  }
}

TEST_P(Distributed, NodesHaveTheirCoordinatesAndValues) {
  const orvml::DocumentView view = part_.view();
  const std::span<const int> numbers = part_.globalNumbers(Entity::nodes);
  ASSERT_EQ(static_cast<std::size_t>(view.nodes().size()), numbers.size());

  const orvml::NodesView whole = whole_.nodes();
  for (int i = 0; i < view.nodes().size(); ++i) {
    const int number = numbers[static_cast<std::size_t>(i)];
    EXPECT_TRUE(std::ranges::equal(whole[number], view.nodes()[i])) << "node " << number;
    for (const orvml::Attribute& attribute : whole.attributes()) {
      const orvml::Attribute& found = view.nodes().attributes().at(attribute.name);
      EXPECT_EQ(attribute.mustBeTransmitted, found.mustBeTransmitted);
      if (attribute.holdsInts()) {
        EXPECT_EQ(attribute.ints()[static_cast<std::size_t>(number)],
                  found.ints()[static_cast<std::size_t>(i)]);
      } else {
        EXPECT_EQ(attribute.doubles()[static_cast<std::size_t>(number)],
                  found.doubles()[static_cast<std::size_t>(i)]);
      }
    }
  }
}

TEST_P(Distributed, CellsHaveTheirNodesAndValues) {
  const orvml::DocumentView view = part_.view();
  const std::span<const int> nodes = part_.globalNumbers(Entity::nodes);
  for (const Entity entity : kCells) {
    const auto expected = cellsOf(whole_.cells(entity));
    const auto found = cellsOf(view.cells(entity));
    const std::span<const int> numbers = part_.globalNumbers(entity);
    ASSERT_EQ(numbers.size(), found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
      std::vector<int> cell = found[i];
      for (int& node : cell) {
        node = nodes[static_cast<std::size_t>(node)];
      }
      EXPECT_EQ(expected[static_cast<std::size_t>(numbers[i])], cell);
    }
    for (const orvml::Attribute& attribute : view.attributes(entity)) {
      if (attribute.holdsInts()) {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
          EXPECT_EQ(numbers[i] + 1000 * static_cast<int>(entity), attribute.ints()[i]);
        }
      }
    }
  }
}

TEST_P(Distributed, OwnedOnesComeFirstInTheOrderOfTheWhole) {
  EXPECT_EQ(static_cast<std::size_t>(part_.ownedNodes()), ownedNumbers(Entity::nodes).size());
  for (int i = 0; i < part_.ownedNodes(); ++i) {
    EXPECT_EQ(rank(), part_.owners(Entity::nodes)[static_cast<std::size_t>(i)]);
  }
  const orvml::DocumentView view = part_.view();
  for (const Entity entity : kCells) {
    const std::vector<int> owned = part_.ownedCells(entity);
    ASSERT_EQ(view.cells(entity).groups().size(), owned.size());
    std::size_t first = 0;
    for (std::size_t group = 0; group < owned.size(); ++group) {
      const int size = view.cells(entity).groups()[group].size();
      const auto numbers =
          part_.globalNumbers(entity).subspan(first, static_cast<std::size_t>(size));
      EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.begin() + owned[group]));
      EXPECT_TRUE(std::is_sorted(numbers.begin() + owned[group], numbers.end()));
      for (int i = 0; i < size; ++i) {
        const int owner = part_.owners(entity)[first + static_cast<std::size_t>(i)];
        EXPECT_EQ(i < owned[group], owner == rank());
      }
      first += static_cast<std::size_t>(size);
    }
  }
}

TEST_P(Distributed, ANodeIsOwnedByTheLowestRankThatUsesIt) {
  const std::set<int> used = nodesOfOwnedCells();
  std::vector<int> lowest(static_cast<std::size_t>(whole_.nodes().size()), ranks());
  for (const int node : used) {
    lowest[static_cast<std::size_t>(node)] = rank();
  }
  MPI_Allreduce(MPI_IN_PLACE, lowest.data(), static_cast<int>(lowest.size()), MPI_INT, MPI_MIN,
                MPI_COMM_WORLD);

  const std::span<const int> numbers = part_.globalNumbers(Entity::nodes);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const int expected = lowest[static_cast<std::size_t>(numbers[i])];
    if (expected < ranks()) {
      EXPECT_EQ(expected, part_.owners(Entity::nodes)[i]) << "node " << numbers[i];
    }
  }
}

TEST_P(Distributed, ACellBelowIsWhereACellIsThatHasItsNodes) {
  const Entity highest = highestOf(whole_.view());
  const auto cells = cellsOf(whole_.cells(highest));
  std::vector<int> owners(cells.size());
  for (const int number : ownedNumbers(highest)) {
    owners[static_cast<std::size_t>(number)] = rank();
  }
  MPI_Allreduce(MPI_IN_PLACE, owners.data(), static_cast<int>(owners.size()), MPI_INT, MPI_MAX,
                MPI_COMM_WORLD);

  for (const Entity entity : kCells) {
    const auto below = cellsOf(whole_.cells(entity));
    for (const int number : entity == highest ? std::vector<int>() : ownedNumbers(entity)) {
      int expected = ranks();
      for (std::size_t i = 0; i < cells.size(); ++i) {
        if (std::ranges::all_of(below[static_cast<std::size_t>(number)], [&](int node) {
              return std::ranges::find(cells[i], node) != cells[i].end();
            })) {
          expected = std::min(expected, owners[i]);
        }
      }
      if (expected < ranks()) {
        EXPECT_EQ(expected, rank())
            << "cell " << number << " of entity " << static_cast<int>(entity);
      }
    }
  }
}

TEST_P(Distributed, GhostsAreTheCellsOfOthersAroundTheOwnedOnes) {
  const Entity highest = highestOf(whole_.view());
  const std::set<int> used = nodesOfOwnedCells();
  const std::vector<int> owned = ownedNumbers(highest);
  std::set<int> expected(owned.begin(), owned.end());
  const auto cells = cellsOf(whole_.cells(highest));
  for (std::size_t i = 0; i < cells.size() && std::get<2>(GetParam()); ++i) {
    if (std::ranges::any_of(cells[i], [&](int node) { return used.count(node) > 0; })) {
      expected.insert(static_cast<int>(i));
    }
  }

  const std::span<const int> numbers = part_.globalNumbers(highest);
  EXPECT_EQ(expected, std::set<int>(numbers.begin(), numbers.end()));
  EXPECT_EQ(expected.size(), numbers.size());
}

TEST_P(Distributed, ExchangeGivesEachCopyTheValuesOfItsOwner) {
  const std::span<const int> nodes = part_.globalNumbers(Entity::nodes);
  std::vector<double> values(2 * nodes.size(), -1);
  for (std::size_t i = 0; i < static_cast<std::size_t>(part_.ownedNodes()); ++i) {
    values[2 * i] = nodes[i] + 0.5;
    values[2 * i + 1] = rank();
  }
  part_.exchangeNodes(values, 2);
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    EXPECT_EQ(nodes[i] + 0.5, values[2 * i]);
    EXPECT_EQ(part_.owners(Entity::nodes)[i], values[2 * i + 1]);
  }

  for (const Entity entity : kCells) {
    const std::span<const int> numbers = part_.globalNumbers(entity);
    std::vector<int> colours(numbers.size(), -1);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      colours[i] = part_.owners(entity)[i] == rank() ? 7 * numbers[i] : -1;
    }
    part_.exchangeCells(entity, colours);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      EXPECT_EQ(7 * numbers[i], colours[i]);
    }
  }
}

/// A view with one more attribute of nodes, and one of elements.
orvml::DocumentView withResults(const orvml::DocumentView& view, const std::vector<double>& nodes,
                                const std::vector<int>& elements) {
  return withAttribute(withAttribute(view, Entity::nodes, {"temperature", nodes}), Entity::elements,
                       {"colour", elements});
}

TEST_P(Distributed, ResultsGoBackToTheSlicesAndIntoTheFileOfOneProcess) {
  const SharedFolder folder;
  if (rank() == 0) {
    orvml::save(folder.path("mesh.h5"), whole_, {.flush = false});
  }
  MPI_Barrier(MPI_COMM_WORLD);
  const auto slice = orvml::parallel::loadOutput(MPI_COMM_WORLD, folder.path("mesh.h5"));
  const Part part = orvml::parallel::distribute(MPI_COMM_WORLD, slice.view(),
                                                {std::get<1>(GetParam()), std::get<2>(GetParam())});
  std::vector<double> heat;
  for (const int number : part.globalNumbers(Entity::nodes)) {
    heat.push_back(std::cos(number));
  }
  std::vector<int> colours;
  for (const int number : part.globalNumbers(Entity::elements)) {
    colours.push_back(number % 5);
  }

  const std::vector<double> heatOfSlice =
      part.toSlice(Entity::nodes, std::span<const double>(heat));
  const std::vector<int> coloursOfSlice =
      part.toSlice(Entity::elements, std::span<const int>(colours));
  orvml::parallel::save(MPI_COMM_WORLD, folder.path("solved.h5"),
                        withResults(slice.view(), heatOfSlice, coloursOfSlice), {.flush = false});

  std::vector<double> allHeat;
  for (int i = 0; i < whole_.nodes().size(); ++i) {
    allHeat.push_back(std::cos(i));
  }
  std::vector<int> allColours;
  for (int i = 0; i < whole_.elements().size(); ++i) {
    allColours.push_back(i % 5);
  }
  const orvml::Output solved = orvml::loadOutput(folder.path("solved.h5"));
  EXPECT_EQ(orvml::fingerprint(withResults(whole_.view(), allHeat, allColours)),
            orvml::fingerprint(solved.view()));
}

/// A part of a cube of cells, by a method.
Part partOfCube(int side, Method method) {
  const orvml::Output cube = boxOf(side, side, side);
  return orvml::parallel::distribute(MPI_COMM_WORLD, partOf(cube.view(), evenly(ranks()), rank()),
                                     {method, true});
}

class DistributedCube : public testing::TestWithParam<Method> {};

INSTANTIATE_TEST_SUITE_P(Methods, DistributedCube,
                         testing::Values(Method::coordinates, Method::graph));

TEST_P(DistributedCube, IsDealtOutEvenly) {
  const Part part = partOfCube(20, GetParam());

  EXPECT_LE(part.ownedCells(Entity::elements)[0], 1.1 * 8000 / ranks());
}

TEST_P(DistributedCube, IsDealtOutInTheSameWayEachTime) {
  const auto ownedCells = [](const Part& part) {
    const std::span<const int> numbers = part.globalNumbers(Entity::elements);
    return std::vector<int>(numbers.begin(),
                            numbers.begin() + part.ownedCells(Entity::elements)[0]);
  };
  const std::vector<int> first = ownedCells(partOfCube(12, GetParam()));
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(first, ownedCells(partOfCube(12, GetParam())));
  }
}

TEST_P(DistributedCube, ExchangesOneMessageWithEachNeighbour) {
  const Part part = partOfCube(20, GetParam());
  std::vector<double> values(part.globalNumbers(Entity::nodes).size());

  const Calls before = callsSoFar();
  part.exchangeNodes(values);
  const Calls calls = callsSoFar() - before;

  EXPECT_LE(calls.messages, static_cast<std::int64_t>(part.neighbours().size()));
  EXPECT_EQ(0, calls.collectives);
}

TEST_P(DistributedCube, ExchangesNotMuchMoreThanTheSurfacesOfCubes) {
  const Part part = partOfCube(20, GetParam());
  const auto all = static_cast<double>(part.globalNumbers(Entity::nodes).size());
  double copies = all - part.ownedNodes();
  MPI_Allreduce(MPI_IN_PLACE, &copies, 1, MPI_DOUBLE, MPI_SUM, MPI_COMM_WORLD);

  // The ghosts around a cube of cells bring a layer of nodes beyond its own, which it has half of
  // too. Parts that are no cubes have more surface.
  const double side = 20 / std::cbrt(ranks());
  const double perRank = std::pow(side + 3, 3) - std::pow(side, 3);
  EXPECT_LE(copies / ranks(), 1.5 * perRank);
}

/// The cells of each rank of a box of hexahedra along the curve, where one more node lies far away.
///
/// @param isUsed  whether the last cell has that node as a corner
std::vector<int> cellsOfRanksWithAFarNode(bool isUsed) {
  const orvml::Output box = boxOf(16, 16, 16);
  const auto nodes = box.nodes().coordinates();
  const auto indices = box.elements().groups()[0].nodeIndices();
  std::vector<double> coordinates(nodes.begin(), nodes.end());
  std::vector<int> corners(indices.begin(), indices.end());
  coordinates.insert(coordinates.end(), {1e20, 0, 0});
  if (isUsed) {
    corners.back() = 17 * 17 * 17;
  }
  orvml::DocumentParts parts;
  parts.dimension = 3;
  parts.nodes = orvml::NodesView(coordinates, 3);
  parts.elements = orvml::CellsView({orvml::CellGroup(orvml::Shape::hexahedron, 8, corners)});
  const orvml::OutputView whole(std::move(parts));
  const Part part = orvml::parallel::distribute(
      MPI_COMM_WORLD, partOf(whole, evenly(ranks()), rank()), {Method::coordinates, false});
  return gathered(part.ownedCells(Entity::elements));
}

TEST(DistributeAlongTheCurve, GivesEachRankAsManyWhereverANodeLies) {
  for (const bool isUsed : {false, true}) {
    for (const int cells : cellsOfRanksWithAFarNode(isUsed)) {
      EXPECT_LE(std::abs(cells - 4096 / ranks()), 1);
    }
  }
}

TEST(DistributeAlongTheCurve, DealsOutCellsThatLieInOnePlace) {
  const orvml::Output points = cellsWithoutNodes();
  const Part part =
      orvml::parallel::distribute(MPI_COMM_WORLD, partOf(points.view(), unevenly(ranks()), rank()),
                                  {Method::coordinates, false});

  EXPECT_LE(std::abs(part.ownedCells(Entity::elements)[0] - 15 / ranks()), 1);
}

Calls callsOfDistributing(int side, Method method) {
  const orvml::Output cube = boxOf(side, side, side);
  const orvml::DocumentView slice = partOf(cube.view(), evenly(ranks()), rank());
  const Calls before = callsSoFar();
  const Part part = orvml::parallel::distribute(MPI_COMM_WORLD, slice, {method, true});
  return callsSoFar() - before;
}

TEST(DistributeCounts, CollectiveCallsDoNotGrowWithTheMesh) {
  for (const Method method : {Method::block, Method::coordinates}) {
    const Calls small = callsOfDistributing(6, method);
    const Calls large = callsOfDistributing(24, method);

    EXPECT_GT(small.collectives, 0);
    EXPECT_EQ(small.collectives, large.collectives);
  }
}

TEST(DistributeCounts, CellsThatStayAreNotSent) {
  if (ranks() == 1) {
    GTEST_SKIP() << "there is nobody to send to";
  }
  // What goes over are ghosts, and the nodes that the slices of cells and of nodes do not share:
  // some layers of the cube.
  const Calls calls = callsOfDistributing(24, Method::block);

  constexpr double kLayer = 25. * 25;
  constexpr double kBytes = 200;  // of a node and a cell
  EXPECT_LT(static_cast<double>(calls.messageBytes), 8 * kLayer * kBytes);
}

TEST(DistributeErrors, ComeForADimensionThatTheFormatDoesNotKnow) {
  for (const int dimension : {1, 4, 40, 4000}) {
    const std::vector<double> coordinates(static_cast<std::size_t>(dimension), 1);
    const std::vector<int> indices = {0};
    orvml::DocumentParts parts;
    parts.dimension = dimension;
    parts.nodes = orvml::NodesView(coordinates, dimension);
    parts.elements = orvml::CellsView({orvml::CellGroup(orvml::Shape::point, 1, indices)});

    const std::string error = errorOf([&] {
      (void)orvml::parallel::distribute(MPI_COMM_WORLD, orvml::OutputView(parts),
                                        {Method::coordinates, true});
    });

    EXPECT_NE(std::string::npos, error.find("orvml.document.dimension")) << error;
  }
}

TEST(DistributeErrors, ComeForCellsThatNothingIsStoredOf) {
  orvml::DocumentParts parts;
  parts.dimension = 3;
  parts.elements = orvml::CellsView(
      {orvml::CellGroup::withoutNodes(orvml::Shape::point, rank() == 0 ? 2000000000 : 0)});

  const std::string error = errorOf([&] {
    (void)orvml::parallel::distribute(MPI_COMM_WORLD, orvml::OutputView(parts),
                                      {Method::block, true});
  });

  EXPECT_NE(std::string::npos, error.find("orvml.values.out-of-proportion")) << error;
}

TEST(DistributeErrors, ComeForValuesOfWhichOneRankGivesTooFew) {
  const Part part = partOfCube(3, Method::graph);
  const bool isWrong = rank() == ranks() - 1;
  const std::vector<double> values(part.globalNumbers(Entity::nodes).size() + (isWrong ? 1 : 0));

  const std::string error =
      errorOf([&] { (void)part.toSlice(Entity::nodes, std::span<const double>(values)); });

  EXPECT_NE(std::string::npos, error.find("values are not 1 for each of")) << error;
}

TEST(DistributeErrors, ComeForANodeThatDoesNotExist) {
  const std::vector<int> indices = {0, 1, rank() == ranks() - 1 ? 3 * ranks() : 2};
  const std::vector<double> coordinates = {0, 0, 1, 0, 0, 1};
  orvml::DocumentParts parts;
  parts.dimension = 2;
  parts.nodes = orvml::NodesView(coordinates, 2);
  parts.faces = orvml::CellsView({orvml::CellGroup(orvml::Shape::triangle, 3, indices)});

  const std::string error =
      errorOf([&] { (void)orvml::parallel::distribute(MPI_COMM_WORLD, orvml::OutputView(parts)); });

  EXPECT_NE(std::string::npos,
            error.find("/OrvOutput/Faces/connectivities has the node index " +
                       std::to_string(3 * ranks()) + ", there are " + std::to_string(3 * ranks())))
      << error;
}

TEST(DistributeErrors, ComeForAnAttributeOfAnotherLength) {
  const std::vector<double> coordinates = {0, 0, 1, 0, 0, 1};
  const std::vector<int> more = {1, 2};
  orvml::DocumentParts parts;
  parts.dimension = 2;
  parts.nodes = orvml::NodesView(coordinates, 2, orvml::Attributes({{"more", more}}));

  const std::string error =
      errorOf([&] { (void)orvml::parallel::distribute(MPI_COMM_WORLD, orvml::OutputView(parts)); });

  EXPECT_NE(std::string::npos, error.find("/OrvOutput/Nodes/Attributes/more has ")) << error;
}

TEST(DistributeErrors, ExchangeWantsAValueForEachNode) {
  const Part part = partOfCube(3, Method::graph);
  std::vector<double> values(1);

  EXPECT_THROW(part.exchangeNodes(values), std::invalid_argument);
}

}  // namespace

}  // namespace orvml_parallel_tests
