#include "hdf5/vector_batch.h"

#include "hdf5/read_array.h"

namespace orvml_io {

namespace {

std::size_t valueBytesOf(char code) noexcept {
  return code == kIntCode ? sizeof(int) : sizeof(double);
}

WantedArray wanted(const OpenVector& vector, const Extent& extent) noexcept {
  return {vector.dataset, extent, vector.length, vector.code};
}

}  // namespace

void VectorBatch::add(OpenVector vector, const Extent& extent) {
  if (file_.arrays() != nullptr) {
    if (const void* lent = file_.arrays()->lend(wanted(vector, extent))) {
      pending_.push_back({std::move(vector), extent, lent});
      return;
    }
  }
  const ReadCost cost =
      readCostOf(vector.dataset, extent, vector.length, valueBytesOf(vector.code));
  if (!file_.couldAfford(group_, vector.link, cost)) {
    any_.add(kFailed);
    hasRefused_ = true;
    return;
  }
  cost_ = cost_ + cost;
  pending_.push_back({std::move(vector), extent, nullptr});
}

MallocBlock VectorBatch::readBlock(const Pending& pending) {
  const OpenVector& vector = pending.vector;
  if (pending.lent != nullptr) {
    return borrowedBlock(pending.lent);
  }
  MallocBlock block = makeUntouchedBlock(vector.length, valueBytesOf(vector.code));
  const WantedArray values = wanted(vector, pending.extent);
  const int status = vector.code == kIntCode
                         ? readInto(file_, values, static_cast<int*>(block.get()))
                         : readInto(file_, values, static_cast<double*>(block.get()));
  if (status != kOk) {
    file_.report(Trouble::unreadable, group_, vector.link, [] { return "cannot be read"; });
    return nullptr;
  }
  return block;
}

}  // namespace orvml_io
