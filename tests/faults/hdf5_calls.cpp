#include "faults/hdf5_calls.h"

#include <dlfcn.h>

#include <cstdlib>

namespace orvml_io_tests {

namespace {

FailurePlan plan;
const char* failedFunction = nullptr;

/// Tells whether code lies in this program, which holds the library, and not in HDF5.
bool isOfThisProgram(const void* code) noexcept {
  static const void* const program = [] {
    Dl_info info = {};
    return ::dladdr(reinterpret_cast<const void*>(&isOfThisProgram), &info) != 0 ? info.dli_fbase
                                                                                 : nullptr;
  }();
  Dl_info info = {};
  return ::dladdr(code, &info) != 0 && info.dli_fbase == program;
}

}  // namespace

/// Called by the stand-in of an HDF5 function. Returns the address of the function, or null when
/// the call has to fail.
extern "C" void* orvmlIoTestsEnterHdf5(const char* function, const void* returnAddress) {
  if (plan.isActive() && isOfThisProgram(returnAddress) && plan.mustFail()) {
    failedFunction = failedFunction == nullptr ? function : failedFunction;
    return nullptr;
  }
  void* const inHdf5 = ::dlsym(RTLD_NEXT, function);
  if (inHdf5 == nullptr) {
    std::abort();  // the program is linked without a library that it needs
  }
  return inHdf5;
}

FailingHdf5Call::FailingHdf5Call(int n, Failing failing) noexcept {
  failedFunction = nullptr;
  plan.begin(n, failing);
}

FailingHdf5Call::~FailingHdf5Call() { plan.end(); }

int FailingHdf5Call::calls() const noexcept { return plan.events(); }

std::string FailingHdf5Call::function() const {
  return failedFunction == nullptr ? "" : failedFunction;
}

}  // namespace orvml_io_tests
