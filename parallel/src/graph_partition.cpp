#include "agreement.h"
#include "partition.h"

#include <ptscotch.h>

#include <stdexcept>
#include <type_traits>

namespace orvml::parallel::detail {

namespace {

static_assert(std::is_same_v<SCOTCH_Num, int>, "PT-Scotch with numbers of 32 bits");

/// How PT-Scotch computes on this rank: in the same way each time, and with one thread, which is
/// what a rank has to itself. With several, which it takes by itself, release 7.0.3 races on graphs
/// of few cells: ranks wait for ever, fall, or claim to be out of memory.
class Context {
 public:
  Context() : isMade_(SCOTCH_contextInit(&context_) == 0) {
    constexpr int kThreads = 1;
    constexpr int kNoCore = -1;  // to be bound to
    isReady_ = isMade_ &&
               SCOTCH_contextOptionSetNum(&context_, SCOTCH_OPTIONNUMDETERMINISTIC, 1) == 0 &&
               SCOTCH_contextThreadSpawn(&context_, kThreads, &kNoCore) == 0;
  }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  Context(Context&&) = delete;
  Context& operator=(Context&&) = delete;
  ~Context() {
    if (isMade_) {
      SCOTCH_contextExit(&context_);
    }
  }
  [[nodiscard]] bool isReady() const noexcept { return isReady_; }
  [[nodiscard]] SCOTCH_Context* get() noexcept { return &context_; }

 private:
  SCOTCH_Context context_;
  bool isMade_;
  bool isReady_ = false;
};

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
  Context context;
  SharedGraph shared(comm);
  SharedGraph inContext(comm);
  requireDone(comm, context.isReady() && shared.isMade() && inContext.isMade());
  const auto count = static_cast<int>(cells.size());
  const auto arcs = static_cast<int>(graph.neighbours.size());
  graph.neighbours.push_back(0);  // likewise
  int* starts = graph.starts.data();
  requireDone(
      comm, SCOTCH_dgraphBuild(shared.get(), 0, count, count, starts, starts + 1, nullptr, nullptr,
                               arcs, arcs, graph.neighbours.data(), nullptr, nullptr) == 0);
  requireDone(comm, SCOTCH_contextBindDgraph(context.get(), shared.get(), inContext.get()) == 0);
  Strategy strategy;
  SCOTCH_randomReset();
  requireDone(comm,
              SCOTCH_dgraphPart(inContext.get(), comm.size(), strategy.get(), ranks.data()) == 0);
  ranks.pop_back();
  return ranks;
}

}  // namespace orvml::parallel::detail
