#include "failure_watch.h"

#include "hdf5/diagnosis.h"

#include <cstdlib>

namespace orvml::detail {

FailureWatch::FailureWatch() noexcept {
  (void)H5Eget_auto2(H5E_DEFAULT, &handler_, &data_);
  (void)H5Eset_auto2(H5E_DEFAULT, remember, this);
}

FailureWatch::~FailureWatch() { (void)H5Eset_auto2(H5E_DEFAULT, handler_, data_); }

herr_t FailureWatch::remember(hid_t /*stack*/, void* watch) {
  try {
    static_cast<FailureWatch*>(watch)->lastReason_ = orvml_io::lastHdf5Reason();
  } catch (...) {
    // Exceptions must not cross HDF5's frames. Without memory the reason stays untold.
  }
  return 0;
}

int FailureWatch::systemError() const {
  constexpr char kNaming[] = "errno = ";
  const std::size_t found = lastReason_.find(kNaming);
  return found == std::string::npos
             ? 0
             : static_cast<int>(
                   std::strtol(lastReason_.c_str() + found + sizeof kNaming - 1, nullptr, 10));
}

}  // namespace orvml::detail
