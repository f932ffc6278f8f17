#include "lower_cells.h"

#include "agreement.h"
#include "exchange.h"
#include "routes.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace orvml::parallel::detail {

namespace {

constexpr int kNoNode = -1;

/// The users of each of some nodes, ascending: what ranks answer who were asked for them.
Bins<int> usersOfAsked(const Bins<int>& asked, const NodeUse& use) {
  const auto isBefore = [](const Use& user, int node) { return user.first < node; };
  Bins<int> answers(asked.size());
  for (std::size_t rank = 0; rank < asked.size(); ++rank) {
    for (const int node : asked[rank]) {
      std::vector<int>& answer = answers[rank];
      const std::size_t counter = answer.size();
      answer.push_back(0);
      auto user = std::lower_bound(use.users.begin(), use.users.end(), node, isBefore);
      for (; user != use.users.end() && user->first == node; ++user) {
        answer.push_back(user->second);
        ++answer[counter];
      }
    }
  }
  return answers;
}

/// The ranks that use the lowest node of each of this rank's cells.
class Candidates {
 public:
  /// Collective.
  Candidates(const Communicator& comm, const SliceCells& lower,
             std::span<const std::int64_t> offsets, const NodeUse& use)
      : offsets_(offsets) {
    Bins<int> asked;
    together(comm, [&] {
      asked.resize(static_cast<std::size_t>(comm.size()));
      for (std::size_t cell = 0; cell < lower.size(); ++cell) {
        const std::span<const int> nodes = lower.nodesOf(cell);
        lowest_.push_back(nodes.empty() ? kNoNode : *std::min_element(nodes.begin(), nodes.end()));
      }
      nodes_ = sortedOnce(lowest_);
      std::erase(nodes_, kNoNode);
      for (const int node : nodes_) {
        asked[static_cast<std::size_t>(homeOf(offsets, node))].push_back(node);
      }
    });
    const Bins<int> received = exchangeBins(comm, std::move(asked));
    Bins<int> answers;
    together(comm, [&] { answers = usersOfAsked(received, use); });
    answers = exchangeBins(comm, std::move(answers));
    // Homes ascend with the nodes: their answers one after the other are in the order of nodes.
    together(comm, [&] {
      for (const std::vector<int>& answer : answers) {
        for (std::size_t i = 0; i < answer.size(); i += static_cast<std::size_t>(answer[i]) + 1) {
          starts_.push_back(users_.size());
          const auto first = answer.begin() + static_cast<std::ptrdiff_t>(i) + 1;
          users_.insert(users_.end(), first, first + answer[i]);
        }
      }
      starts_.push_back(users_.size());
    });
  }

  [[nodiscard]] std::span<const int> of(std::size_t cell) const {
    if (lowest_[cell] == kNoNode) {
      return {};
    }
    const auto found = std::lower_bound(nodes_.begin(), nodes_.end(), lowest_[cell]);
    const auto node = static_cast<std::size_t>(found - nodes_.begin());
    return std::span<const int>(users_).subspan(starts_[node], starts_[node + 1] - starts_[node]);
  }

  /// The rank of a cell that no dealt cell has all nodes of.
  [[nodiscard]] int ownerByNode(std::size_t cell, int rank) const {
    if (lowest_[cell] == kNoNode) {
      return rank;
    }
    const std::span<const int> users = of(cell);
    return users.empty() ? homeOf(offsets_, lowest_[cell]) : users.front();
  }

 private:
  std::span<const std::int64_t> offsets_;
  std::vector<int> lowest_;  // the lowest node of each cell
  std::vector<int> nodes_;   // each of them once, ascending
  std::vector<std::size_t> starts_;
  std::vector<int> users_;
};

/// The cells that each node belongs to.
class CellsOfNodes {
 public:
  explicit CellsOfNodes(const DealtCells& cells) : cells_(cells) {
    for (std::size_t cell = 0; cell < cells.numbers().size(); ++cell) {
      for (const int node : cells.nodesOf(cell)) {
        pairs_.emplace_back(node, static_cast<int>(cell));
      }
    }
    std::sort(pairs_.begin(), pairs_.end());
  }

  /// Whether a cell has all of some nodes, of which there is one at least. Those of the node that
  /// the fewest have are looked at: of a hub they may be all.
  [[nodiscard]] bool haveOneWith(std::span<const int> nodes) const {
    std::span<const Pair> fewest = cellsOf(nodes.front());
    for (const int node : nodes.subspan(1)) {
      const std::span<const Pair> others = cellsOf(node);
      fewest = others.size() < fewest.size() ? others : fewest;
    }
    return std::any_of(fewest.begin(), fewest.end(), [&](const Pair& pair) {
      const std::span<const int> cell = cells_.nodesOf(static_cast<std::size_t>(pair.second));
      return std::all_of(nodes.begin(), nodes.end(), [&](int node) {
        return std::find(cell.begin(), cell.end(), node) != cell.end();
      });
    });
  }

 private:
  using Pair = std::pair<int, int>;  // a node and a cell

  [[nodiscard]] std::span<const Pair> cellsOf(int node) const {
    const auto first = std::lower_bound(pairs_.begin(), pairs_.end(), Pair(node, 0));
    const auto last = std::upper_bound(first, pairs_.end(), Pair(node, INT_MAX));
    return {first, last};
  }

  const DealtCells& cells_;
  std::vector<Pair> pairs_;
};

/// Asks each candidate for each of its cells: the number of nodes and the nodes.
Bins<int> questionsOf(const SliceCells& lower, const Candidates& candidates, std::size_t ranks) {
  Bins<int> questions(ranks);
  for (std::size_t cell = 0; cell < lower.size(); ++cell) {
    const std::span<const int> nodes = lower.nodesOf(cell);
    for (const int rank : candidates.of(cell)) {
      std::vector<int>& question = questions[static_cast<std::size_t>(rank)];
      question.push_back(static_cast<int>(nodes.size()));
      question.insert(question.end(), nodes.begin(), nodes.end());
    }
  }
  return questions;
}

/// Answers 1 for a cell of which a dealt cell has all nodes, 0 for another.
Bins<int> answersTo(const Bins<int>& questions, const DealtCells& dealt) {
  const bool isAsked = std::any_of(questions.begin(), questions.end(),
                                   [](const auto& question) { return !question.empty(); });
  Bins<int> answers(questions.size());
  if (!isAsked) {
    return answers;
  }
  const CellsOfNodes cells(dealt);
  for (std::size_t rank = 0; rank < questions.size(); ++rank) {
    std::span<const int> left(questions[rank]);
    while (!left.empty()) {
      const auto count = static_cast<std::size_t>(left.front());
      answers[rank].push_back(cells.haveOneWith(left.subspan(1, count)) ? 1 : 0);
      left = left.subspan(1 + count);
    }
  }
  return answers;
}

/// Takes the answers in the order in which the questions were asked.
std::vector<int> ownersBy(const Bins<int>& answers, const SliceCells& lower,
                          const Candidates& candidates, int rank) {
  std::vector<std::size_t> next(answers.size());
  std::vector<int> owners;
  for (std::size_t cell = 0; cell < lower.size(); ++cell) {
    int owner = candidates.ownerByNode(cell, rank);
    bool isFound = false;
    for (const int candidate : candidates.of(cell)) {
      const auto at = static_cast<std::size_t>(candidate);
      if (answers[at][next[at]++] == 1 && !isFound) {
        owner = candidate;
        isFound = true;
      }
    }
    owners.push_back(owner);
  }
  return owners;
}

}  // namespace

std::vector<int> ownersOfLowerCells(const Communicator& comm, const SliceCells& lower,
                                    std::span<const std::int64_t> offsets, const NodeUse& use,
                                    const DealtCells& dealt) {
  const Candidates candidates(comm, lower, offsets, use);
  Bins<int> questions;
  together(comm, [&] {
    questions = questionsOf(lower, candidates, static_cast<std::size_t>(comm.size()));
  });
  questions = exchangeBins(comm, std::move(questions));
  Bins<int> answers;
  together(comm, [&] { answers = answersTo(questions, dealt); });
  answers = exchangeBins(comm, std::move(answers));
  std::vector<int> owners;
  together(comm, [&] { owners = ownersBy(answers, lower, candidates, comm.rank()); });
  return owners;
}

}  // namespace orvml::parallel::detail
