#include "files/failing_call.h"

#include <hdf5.h>

#include <string_view>
#include <utility>

namespace orvml_io_tests {

namespace {

struct Plan {
  bool active = false;
  Hdf5Function function = Hdf5Function::closeFile;
  std::string target;
  herr_t result = -1;
  int hits = 0;
};

Plan& plan() {
  static Plan instance;
  return instance;
}

bool endsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool mustFail(Hdf5Function function, std::string_view name) {
  if (!plan().active || plan().function != function || !endsWith(name, plan().target)) {
    return false;
  }
  ++plan().hits;
  return true;
}

/// The path from the root of what is named relative to a location; of that itself without a name.
std::string absolutePath(hid_t location, std::string_view path) {
  if (path.substr(0, 1) == "/") {
    return std::string(path);
  }
  if (path.substr(0, 2) == "./") {
    path.remove_prefix(2);
  }
  char parent[1024] = {};
  (void)H5Iget_name(location, parent, sizeof parent);
  return path.empty() ? std::string(parent) : std::string(parent) + "/" + std::string(path);
}

}  // namespace

FailingCall::FailingCall(Hdf5Function function, std::string target, herr_t result) {
  plan() = Plan{true, function, std::move(target), result, 0};
}

FailingCall::~FailingCall() { plan().active = false; }

int FailingCall::hits() const noexcept { return plan().hits; }

// The linker sends every call of X to __wrap_X and __real_X to HDF5. The names are given to the
// assembler alone, because C++ reserves them.
extern "C" {

hid_t realCreateAttribute(hid_t object, const char* name, hid_t type, hid_t space, hid_t creation,
                          hid_t access) __asm__("__real_H5Acreate2");
hid_t wrappedCreateAttribute(hid_t object, const char* name, hid_t type, hid_t space,
                             hid_t creation, hid_t access) __asm__("__wrap_H5Acreate2");
hid_t realCreateDataset(hid_t location, const char* path, hid_t type, hid_t space, hid_t link,
                        hid_t creation, hid_t access) __asm__("__real_H5Dcreate2");
hid_t wrappedCreateDataset(hid_t location, const char* path, hid_t type, hid_t space, hid_t link,
                           hid_t creation, hid_t access) __asm__("__wrap_H5Dcreate2");
herr_t realCloseFile(hid_t file) __asm__("__real_H5Fclose");
herr_t wrappedCloseFile(hid_t file) __asm__("__wrap_H5Fclose");
herr_t realWrite(hid_t dataset, hid_t type, hid_t memory, hid_t target, hid_t transfer,
                 const void* values) __asm__("__real_H5Dwrite");
herr_t wrappedWrite(hid_t dataset, hid_t type, hid_t memory, hid_t target, hid_t transfer,
                    const void* values) __asm__("__wrap_H5Dwrite");

hid_t wrappedCreateAttribute(hid_t object, const char* name, hid_t type, hid_t space,
                             hid_t creation, hid_t access) {
  return mustFail(Hdf5Function::createAttribute, name)
             ? H5I_INVALID_HID
             : realCreateAttribute(object, name, type, space, creation, access);
}

hid_t wrappedCreateDataset(hid_t location, const char* path, hid_t type, hid_t space, hid_t link,
                           hid_t creation, hid_t access) {
  return mustFail(Hdf5Function::createDataset, absolutePath(location, path))
             ? H5I_INVALID_HID
             : realCreateDataset(location, path, type, space, link, creation, access);
}

herr_t wrappedCloseFile(hid_t file) {
  const herr_t result = realCloseFile(file);
  return mustFail(Hdf5Function::closeFile, "") ? plan().result : result;
}

herr_t wrappedWrite(hid_t dataset, hid_t type, hid_t memory, hid_t target, hid_t transfer,
                    const void* values) {
  return mustFail(Hdf5Function::writeDataset, absolutePath(dataset, ""))
             ? plan().result
             : realWrite(dataset, type, memory, target, transfer, values);
}

}  // extern "C"

}  // namespace orvml_io_tests
