#pragma once

#include "hdf5/id.h"

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

}  // namespace orvml_io
