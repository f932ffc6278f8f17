#pragma once

#include <orvml/parallel/transfer.hpp>

#include "communicator.h"
#include "outline.h"
#include "selection.h"
#include "shared_file.h"

#include <string>
#include <vector>

namespace orvml::parallel::detail {

/// The part of a stored array that this rank reads into memory, or writes from it. Every rank has
/// as many ranges, some of them empty.
template <class Pointer>
struct ArrayPart {
  std::string object;  ///< absolute path in the file
  bool holdsInts = false;
  std::vector<Range> ranges;
  Pointer values = nullptr;  ///< one after the other, borrowed
};

/// Where in an array of a whole the values of some cells lie: of each group one range, of node
/// indices or of one value for each cell.
///
/// @param here  which cells of each group
[[nodiscard]] std::vector<Range> rangesOfGroups(const std::vector<GroupOutline>& whole,
                                                const std::vector<Range>& here, bool areIndices);

/// Reads the parts of all ranks, one array after the other. Collective: every rank gives the same
/// arrays in the same order. Every rank throws the same Error.
void readParts(const Communicator& comm, const SharedFile& file,
               const std::vector<ArrayPart<void*>>& parts, Transfer transfer);

/// Writes them likewise.
void writeParts(const Communicator& comm, const SharedFile& file,
                const std::vector<ArrayPart<const void*>>& parts, Transfer transfer);

}  // namespace orvml::parallel::detail
