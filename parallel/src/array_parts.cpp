#include "array_parts.h"

#include "agreement.h"

#include <span>
#include <type_traits>

namespace orvml::parallel::detail {

namespace {

using orvml_io::DatasetId;
using orvml_io::DataspaceId;
using orvml_io::PropertyListId;

/// One call to HDF5: some ranges of an array.
template <class Pointer>
struct Call {
  hid_t dataset = -1;
  const ArrayPart<Pointer>* part = nullptr;
  DataspaceId inFile;
  DataspaceId inMemory;
  std::int64_t firstValue = 0;

  [[nodiscard]] hid_t memoryType() const noexcept {
    return part->holdsInts ? H5T_NATIVE_INT : H5T_NATIVE_DOUBLE;
  }
  [[nodiscard]] Pointer values() const noexcept {
    using Byte =
        std::conditional_t<std::is_const_v<std::remove_pointer_t<Pointer>>, const char, char>;
    const std::size_t valueBytes = part->holdsInts ? sizeof(int) : sizeof(double);
    return static_cast<Byte*>(part->values) + static_cast<std::size_t>(firstValue) * valueBytes;
  }
};

/// How values move. What lies in one stretch, as writers make it, moves as the caller wishes; in
/// chunks, ranks find their values together, or each of them would read the index of the chunks.
PropertyListId propertiesOf(Transfer transfer, hid_t dataset) {
  PropertyListId properties(H5Pcreate(H5P_DATASET_XFER));
  const bool isOneStretch = H5Dget_offset(dataset) != HADDR_UNDEF;
  (void)H5Pset_dxpl_mpio(properties.get(), transfer == Transfer::independent && isOneStretch
                                               ? H5FD_MPIO_INDEPENDENT
                                               : H5FD_MPIO_COLLECTIVE);
  return properties;
}

/// What the file was opened with does not reach its datasets in every release of HDF5.
PropertyListId describedByTheFirst() {
  PropertyListId access(H5Pcreate(H5P_DATASET_ACCESS));
  (void)H5Pset_all_coll_metadata_ops(access.get(), true);
  return access;
}

template <class Pointer>
std::vector<DatasetId> openAll(const Communicator& comm, const SharedFile& file,
                               const std::vector<ArrayPart<Pointer>>& parts) {
  const PropertyListId access = describedByTheFirst();
  std::vector<DatasetId> datasets;
  together(comm, [&] { datasets.reserve(parts.size()); });
  for (const auto& part : parts) {
    datasets.emplace_back(H5Dopen2(file.id(), part.object.c_str(), access.get()));
  }
  return datasets;
}

template <class Pointer>
Call<Pointer> callOf(const SharedFile& file, const ArrayPart<Pointer>& part, hid_t dataset,
                     std::span<const Range> ranges, std::int64_t firstValue) {
  Call<Pointer> call = {dataset, &part, selectionOf(dataset, ranges), memoryOf(countOf(ranges)),
                        firstValue};
  if (!call.inFile.valid() || !call.inMemory.valid()) {
    file.throwFailed(part.object);
  }
  return call;
}

/// Prepares all that can fail on one rank alone, so that none waits for it in a call of HDF5 that
/// all have to make: as many of an array on every rank.
template <class Pointer>
std::vector<Call<Pointer>> prepared(const Communicator& comm, const SharedFile& file,
                                    const std::vector<ArrayPart<Pointer>>& parts,
                                    const std::vector<DatasetId>& datasets) {
  std::vector<std::vector<std::vector<Range>>> rangesOfCalls;
  std::vector<std::int64_t> numbers;
  together(comm, [&] {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (!datasets[i].valid()) {
        file.throwFailed(parts[i].object);
      }
      rangesOfCalls.push_back(callsOf(parts[i].ranges));
      numbers.push_back(static_cast<std::int64_t>(rangesOfCalls.back().size()));
    }
  });
  comm.greatest(numbers);
  std::vector<Call<Pointer>> calls;
  together(comm, [&] {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      rangesOfCalls[i].resize(static_cast<std::size_t>(numbers[i]));
      std::int64_t firstValue = 0;
      for (const std::vector<Range>& ranges : rangesOfCalls[i]) {
        calls.push_back(callOf(file, parts[i], datasets[i].get(), ranges, firstValue));
        firstValue += countOf(ranges);
      }
    }
  });
  return calls;
}

/// Makes every call, whatever became of the ones before: the other ranks make them too.
template <class Pointer, class Function>
void transferAll(const Communicator& comm, const SharedFile& file,
                 const std::vector<ArrayPart<Pointer>>& parts, Transfer transfer,
                 Function function) {
  const std::vector<DatasetId> datasets = openAll(comm, file, parts);
  const std::vector<Call<Pointer>> calls = prepared(comm, file, parts, datasets);
  const std::string* failed = nullptr;
  for (const Call<Pointer>& call : calls) {
    const PropertyListId properties = propertiesOf(transfer, call.dataset);
    if (function(call.dataset, call.memoryType(), call.inMemory.get(), call.inFile.get(),
                 properties.get(), call.values()) < 0 &&
        failed == nullptr) {
      failed = &call.part->object;
    }
  }
  together(comm, [&] {
    if (failed != nullptr) {
      file.throwFailed(*failed);
    }
  });
}

}  // namespace

std::vector<Range> rangesOfGroups(const std::vector<GroupOutline>& whole,
                                  const std::vector<Range>& here, bool areIndices) {
  std::vector<Range> ranges;
  std::int64_t firstOfGroup = 0;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    const std::int64_t width = areIndices ? whole[i].nodesPerCell : 1;
    ranges.push_back({firstOfGroup + here[i].first * width, here[i].count * width});
    firstOfGroup += whole[i].cells * width;
  }
  return ranges;
}

void readParts(const Communicator& comm, const SharedFile& file,
               const std::vector<ArrayPart<void*>>& parts, Transfer transfer) {
  transferAll(comm, file, parts, transfer, H5Dread);
}

void writeParts(const Communicator& comm, const SharedFile& file,
                const std::vector<ArrayPart<const void*>>& parts, Transfer transfer) {
  transferAll(comm, file, parts, transfer, H5Dwrite);
}

}  // namespace orvml::parallel::detail
