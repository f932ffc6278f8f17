#include "failure_watch.h"

#include "hdf5/diagnosis.h"

namespace orvml::detail {

FailureWatch::FailureWatch() noexcept { (void)H5Eset_auto2(H5E_DEFAULT, remember, this); }

herr_t FailureWatch::remember(hid_t /*stack*/, void* watch) {
  try {
    static_cast<FailureWatch*>(watch)->lastReason_ = orvml_io::lastHdf5Reason();
  } catch (...) {
    // Exceptions must not cross HDF5's frames. Without memory the reason stays untold.
  }
  return 0;
}

}  // namespace orvml::detail
