#include "array_parts.h"

#include "agreement.h"

#include <algorithm>
#include <optional>
#include <span>

namespace orvml::parallel::detail {

namespace {

using orvml_io::DatasetId;
using orvml_io::DataspaceId;
using orvml_io::PropertyListId;

/// One call to HDF5: some ranges of an array.
struct Call {
  hid_t dataset = -1;
  const std::string* object = nullptr;
  bool holdsInts = false;
  DataspaceId inFile;
  DataspaceId inMemory;
  std::int64_t firstValue = 0;

  [[nodiscard]] hid_t memoryType() const noexcept {
    return holdsInts ? H5T_NATIVE_INT : H5T_NATIVE_DOUBLE;
  }
  [[nodiscard]] std::size_t firstByte() const noexcept {
    return static_cast<std::size_t>(firstValue) * (holdsInts ? sizeof(int) : sizeof(double));
  }
};

/// How values move. What lies in one stretch, as writers make it, moves with one call of each rank
/// for its own: nobody waits for a rank whose call fails, and none reads for others, as the
/// collective calls of some MPI libraries have one rank do. In chunks, ranks find their values
/// together, or each of them would read the index of the chunks.
PropertyListId transferOf(hid_t dataset) {
  PropertyListId transfer(H5Pcreate(H5P_DATASET_XFER));
  const bool isOneStretch = H5Dget_offset(dataset) != HADDR_UNDEF;
  (void)H5Pset_dxpl_mpio(transfer.get(),
                         isOneStretch ? H5FD_MPIO_INDEPENDENT : H5FD_MPIO_COLLECTIVE);
  return transfer;
}

/// What the file was opened with does not reach its datasets in every release of HDF5.
PropertyListId describedByTheFirst() {
  PropertyListId access(H5Pcreate(H5P_DATASET_ACCESS));
  (void)H5Pset_all_coll_metadata_ops(access.get(), true);
  return access;
}

template <class Pointer>
std::vector<DatasetId> openAll(const SharedFile& file,
                               const std::vector<ArrayPart<Pointer>>& parts) {
  const PropertyListId access = describedByTheFirst();
  std::vector<DatasetId> datasets;
  datasets.reserve(parts.size());
  for (const auto& part : parts) {
    datasets.emplace_back(H5Dopen2(file.id(), part.object.c_str(), access.get()));
  }
  return datasets;
}

template <class Pointer>
void addCalls(const SharedFile& file, const ArrayPart<Pointer>& part, hid_t dataset,
              std::vector<Call>& calls) {
  std::int64_t firstValue = 0;
  std::span<const Range> left(part.ranges);
  while (!left.empty()) {
    const auto ranges = left.first(std::min(left.size(), kRangesPerCall));
    left = left.subspan(ranges.size());
    Call call = {dataset,
                 &part.object,
                 part.holdsInts,
                 selectionOf(dataset, ranges),
                 memoryOf(countOf(ranges)),
                 firstValue};
    if (!call.inFile.valid() || !call.inMemory.valid()) {
      file.throwFailed(part.object);
    }
    firstValue += countOf(ranges);
    calls.push_back(std::move(call));
  }
}

/// Prepares all that can fail on one rank alone, so that none waits for it in a call of HDF5 that
/// all have to make.
template <class Pointer>
std::vector<Call> prepared(const Communicator& comm, const SharedFile& file,
                           const std::vector<ArrayPart<Pointer>>& parts,
                           const std::vector<DatasetId>& datasets) {
  std::vector<Call> calls;
  together(comm, [&] {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (!datasets[i].valid()) {
        file.throwFailed(parts[i].object);
      }
      addCalls(file, parts[i], datasets[i].get(), calls);
    }
  });
  return calls;
}

/// Makes every call, whatever became of the ones before: the other ranks make them too.
template <class Pointer, class Transfer>
void transferAll(const Communicator& comm, const SharedFile& file,
                 const std::vector<ArrayPart<Pointer>>& parts, Transfer transfer) {
  const std::vector<DatasetId> datasets = openAll(file, parts);
  const std::vector<Call> calls = prepared(comm, file, parts, datasets);
  const std::string* failed = nullptr;
  for (const Call& call : calls) {
    const auto part = std::find_if(parts.begin(), parts.end(), [&](const auto& candidate) {
      return &candidate.object == call.object;
    });
    if (transfer(call, transferOf(call.dataset).get(), part->values) < 0 && failed == nullptr) {
      failed = call.object;
    }
  }
  together(comm, [&] {
    if (failed != nullptr) {
      file.throwFailed(*failed);
    }
  });
}

}  // namespace

void readParts(const Communicator& comm, const SharedFile& file,
               const std::vector<ArrayPart<void*>>& parts) {
  transferAll(comm, file, parts, [](const Call& call, hid_t how, void* values) {
    return H5Dread(call.dataset, call.memoryType(), call.inMemory.get(), call.inFile.get(), how,
                   static_cast<char*>(values) + call.firstByte());
  });
}

void writeParts(const Communicator& comm, const SharedFile& file,
                const std::vector<ArrayPart<const void*>>& parts) {
  transferAll(comm, file, parts, [](const Call& call, hid_t how, const void* values) {
    return H5Dwrite(call.dataset, call.memoryType(), call.inMemory.get(), call.inFile.get(), how,
                    static_cast<const char*>(values) + call.firstByte());
  });
}

}  // namespace orvml::parallel::detail
