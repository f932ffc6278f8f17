#include "agreement.h"
#include "partition.h"

#include <ptscotch.h>

#include <stdexcept>
#include <type_traits>

namespace orvml::parallel::detail {

namespace {

static_assert(std::is_same_v<SCOTCH_Num, int>, "PT-Scotch with numbers of 32 bits");

/// A graph that ranks share, as PT-Scotch has it. Collective to make and to free.
class SharedGraph {
 public:
  explicit SharedGraph(const Communicator& comm)
      : isMade_(SCOTCH_dgraphInit(&graph_, comm.get()) == 0) {}
  SharedGraph(const SharedGraph&) = delete;
  SharedGraph& operator=(const SharedGraph&) = delete;
  SharedGraph(SharedGraph&&) = delete;
  SharedGraph& operator=(SharedGraph&&) = delete;
  ~SharedGraph() {
    if (isMade_) {
      SCOTCH_dgraphExit(&graph_);
    }
  }
  [[nodiscard]] bool isMade() const noexcept { return isMade_; }
  [[nodiscard]] SCOTCH_Dgraph* get() noexcept { return &graph_; }

 private:
  SCOTCH_Dgraph graph_;
  bool isMade_;
};

/// The strategy that PT-Scotch chooses by itself.
class Strategy {
 public:
  Strategy() { (void)SCOTCH_stratInit(&strategy_); }
  Strategy(const Strategy&) = delete;
  Strategy& operator=(const Strategy&) = delete;
  Strategy(Strategy&&) = delete;
  Strategy& operator=(Strategy&&) = delete;
  ~Strategy() { SCOTCH_stratExit(&strategy_); }
  [[nodiscard]] SCOTCH_Strat* get() noexcept { return &strategy_; }

 private:
  SCOTCH_Strat strategy_;
};

void requireDone(const Communicator& comm, bool isDone) {
  together(comm, [isDone] {
    if (!isDone) {
      throw std::runtime_error("PT-Scotch cannot part the cells");
    }
  });
}

}  // namespace

std::vector<int> partitionByGraph(const Communicator& comm, const SliceCells& cells,
                                  const SliceNodes& nodes) {
  CellGraph graph = graphOf(comm, cells, nodes.offsets);
  std::vector<int> ranks;
  together(comm, [&] {
    ranks.resize(cells.size() + 1);  // a place also where there is no cell
    graph.neighbours.reserve(graph.neighbours.size() + 1);
  });
  SharedGraph shared(comm);
  requireDone(comm, shared.isMade());
  const auto count = static_cast<int>(cells.size());
  const auto arcs = static_cast<int>(graph.neighbours.size());
  graph.neighbours.push_back(0);  // likewise
  int* starts = graph.starts.data();
  // The same random numbers each time; messages that overtake each other still make a difference.
  SCOTCH_randomReset();
  requireDone(
      comm, SCOTCH_dgraphBuild(shared.get(), 0, count, count, starts, starts + 1, nullptr, nullptr,
                               arcs, arcs, graph.neighbours.data(), nullptr, nullptr) == 0);
  Strategy strategy;
  requireDone(comm,
              SCOTCH_dgraphPart(shared.get(), comm.size(), strategy.get(), ranks.data()) == 0);
  ranks.pop_back();
  return ranks;
}

}  // namespace orvml::parallel::detail
