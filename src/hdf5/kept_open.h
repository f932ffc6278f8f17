#pragma once

#include "hdf5/id.h"

#include <vector>

namespace orvml_io {

/// Identifiers that stay open after a call, one enumerator for each place.
///
/// Contract: because of them HDF5 keeps a file open once a document was found in it. Reading it
/// again works; writing to its path in the same process gives 1 and leaves it as it was.
enum class KeptOpen {
  documentGroup,           ///< the group of the document, after every read that found it
  containerGroup,          ///< the group of nodes, edges, faces or elements, where it exists
  containerProbe,          ///< "coordinates" and "element_types", opened to see that they exist
  extentProbe,             ///< each vector whose length was asked for
  legacyProbe,             ///< each positional dataset, opened to see that it exists
  fileAfterMarkerFailure,  ///< a new file whose marker or version could not be written
};

/// Lets go of an identifier that stays open by contract and returns it for further use.
template <herr_t (*Close)(hid_t)>
hid_t keepOpen(OwnedId<Close> id, KeptOpen /*why*/) noexcept {
  return id.release();
}

/// Takes the identifiers that would stay open by contract from a reader that makes no such promise,
/// and closes them when it goes.
class ClosedAtTheEnd {
 public:
  ClosedAtTheEnd() = default;
  ClosedAtTheEnd(const ClosedAtTheEnd&) = delete;
  ClosedAtTheEnd& operator=(const ClosedAtTheEnd&) = delete;
  ClosedAtTheEnd(ClosedAtTheEnd&&) = delete;
  ClosedAtTheEnd& operator=(ClosedAtTheEnd&&) = delete;
  ~ClosedAtTheEnd() = default;

  hid_t add(GroupId id) { return groups_.emplace_back(std::move(id)).get(); }
  hid_t add(DatasetId id) { return datasets_.emplace_back(std::move(id)).get(); }

 private:
  std::vector<GroupId> groups_;
  std::vector<DatasetId> datasets_;
};

}  // namespace orvml_io
