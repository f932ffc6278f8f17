#pragma once

#include "hdf5/datasets.h"
#include "hdf5/source_file.h"
#include "values/attributes_vector.h"

#include <string>
#include <utility>
#include <vector>

namespace orvml_io {

/// A dataset of a group that is to be read into a vector.
struct OpenVector {
  std::string link;    ///< the name of its link in the group
  int position = 0;    ///< that name as a number, in a positional layout
  hid_t dataset = -1;  ///< open, by contract for good
  char code = 0;       ///< kIntCode or kDoubleCode
  int length = 0;      ///< values of the vector, at least as many as the dataset has
  bool mustBeTransmitted = false;
};

/// The vectors of one group. All are opened before the first is read, so that what they take
/// together is known before memory is spent: hundreds of links to one dataset are refused as a
/// whole.
class VectorBatch {
 public:
  /// Borrows both.
  VectorBatch(SourceFile& file, const OpenGroup& group) : file_(file), group_(group) {}

  /// Adds a vector; what it lacks of its length will be zeros. One that alone is more than the read
  /// may still take counts as failed and does not touch the others.
  void add(OpenVector vector, const Extent& extent);

  /// Reads each vector into a block and hands it over.
  ///
  /// @param store  called with the OpenVector and its MallocBlock
  /// @return 1 when any vector could not be read
  template <class Store>
  [[nodiscard]] int read(Store store) {
    if (!file_.affords(group_, "", cost_)) {
      hasRefused_ = true;
      return kFailed;
    }
    for (const Pending& pending : pending_) {
      MallocBlock block = readBlock(pending);
      any_.add(block ? kOk : kFailed);
      if (block) {
        store(pending.vector, std::move(block));
      }
    }
    return any_.status();
  }

  /// Tells whether anything was refused as more than the read may take.
  [[nodiscard]] bool hasRefused() const noexcept { return hasRefused_; }

 private:
  struct Pending {
    OpenVector vector;
    Extent extent;
    const void* lent;  // null: its values have to be read
  };

  [[nodiscard]] MallocBlock readBlock(const Pending& pending);

  SourceFile& file_;
  OpenGroup group_;
  std::vector<Pending> pending_;
  ReadCost cost_;
  AnyFailure any_;
  bool hasRefused_ = false;
};

}  // namespace orvml_io
