#include "hdf5/vector_batch.h"

namespace orvml_io {

namespace {

std::size_t valueBytesOf(char code) noexcept {
  return code == kIntCode ? sizeof(int) : sizeof(double);
}

}  // namespace

void VectorBatch::add(OpenVector vector, const Extent& extent) {
  const ReadCost cost =
      readCostOf(vector.dataset, extent, vector.length, valueBytesOf(vector.code));
  if (!file_.couldAfford(group_, vector.link, cost)) {
    any_.add(kFailed);
    hasRefused_ = true;
    return;
  }
  cost_ = cost_ + cost;
  pending_.push_back({std::move(vector), static_cast<int>(extent.numberOfValues)});
}

MallocBlock VectorBatch::readBlock(const Pending& pending) {
  const OpenVector& vector = pending.vector;
  MallocBlock block = makeBlock(vector.length, valueBytesOf(vector.code), file_.freshMemory());
  const int status = vector.code == kIntCode
                         ? readFresh(vector.dataset, pending.numberOfValues,
                                     static_cast<int*>(block.get()), vector.length)
                         : readFresh(vector.dataset, pending.numberOfValues,
                                     static_cast<double*>(block.get()), vector.length);
  if (status != kOk) {
    file_.report(Trouble::unreadable, group_, vector.link, [] { return "cannot be read"; });
    return nullptr;
  }
  return block;
}

}  // namespace orvml_io
