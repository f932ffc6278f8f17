#include "hdf5/diagnosis.h"

#include <hdf5.h>

namespace orvml_io {

namespace {

herr_t keepWhetherAbsent(unsigned /*position*/, const H5E_error2_t* error, void* isAbsent) {
  constexpr herr_t kStop = 1;
  *static_cast<bool*>(isAbsent) = error->min_num == H5E_NOTFOUND;
  return kStop;
}

/// HDF5 calls it for the innermost entry first; a positive answer ends the walk.
herr_t keepDescription(unsigned /*position*/, const H5E_error2_t* error, void* data) {
  constexpr herr_t kStop = 1;
  try {
    *static_cast<std::string*>(data) = error->desc == nullptr ? "" : error->desc;
  } catch (...) {
    // Exceptions must not cross HDF5's frames. Without memory there is no reason to tell.
    return -1;
  }
  return kStop;
}

}  // namespace

std::string lastHdf5Reason() {
  std::string reason;
  (void)H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, keepDescription, &reason);
  return reason;
}

bool lastFailureWasAbsence() noexcept {
  bool isAbsent = false;
  (void)H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, keepWhetherAbsent, &isAbsent);
  return isAbsent;
}

}  // namespace orvml_io
