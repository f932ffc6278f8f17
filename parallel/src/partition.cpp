#include "partition.h"

#include "agreement.h"

namespace orvml::parallel::detail {

std::vector<int> partition(const Communicator& comm, const SliceCells& cells,
                           const SliceNodes& nodes, Method method) {
  const std::int64_t total = comm.sum(static_cast<std::int64_t>(cells.size()));
  if (total > 0 && method == Method::coordinates) {
    return partitionByCurve(comm, cells, nodes);
  }
  if (total > 0 && method == Method::graph) {
    return partitionByGraph(comm, cells, nodes);
  }
  std::vector<int> ranks;
  together(comm, [&] { ranks.assign(cells.size(), comm.rank()); });
  return ranks;
}

}  // namespace orvml::parallel::detail
