#include "files/failing_call.h"

#include <hdf5.h>
#include <hdf5_hl.h>

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

}  // namespace

FailingCall::FailingCall(Hdf5Function function, std::string target, herr_t result) {
  plan() = Plan{true, function, std::move(target), result, 0};
}

FailingCall::~FailingCall() { plan().active = false; }

int FailingCall::hits() const noexcept { return plan().hits; }

// The linker sends every call of X to __wrap_X and __real_X to HDF5. The names are given to the
// assembler alone, because C++ reserves them.
extern "C" {

herr_t realCloseFile(hid_t file) __asm__("__real_H5Fclose");
herr_t wrappedCloseFile(hid_t file) __asm__("__wrap_H5Fclose");
herr_t realMakeDataset(hid_t location, const char* path, int rank, const hsize_t* extents,
                       hid_t type, const void* values) __asm__("__real_H5LTmake_dataset");
herr_t wrappedMakeDataset(hid_t location, const char* path, int rank, const hsize_t* extents,
                          hid_t type, const void* values) __asm__("__wrap_H5LTmake_dataset");
herr_t realMakeTable(const char* title, hid_t location, const char* path, hsize_t fields,
                     hsize_t records, size_t recordBytes, const char* names[],
                     const size_t* offsets, const hid_t* types, hsize_t chunk, void* fill,
                     int compress, const void* values) __asm__("__real_H5TBmake_table");
herr_t wrappedMakeTable(const char* title, hid_t location, const char* path, hsize_t fields,
                        hsize_t records, size_t recordBytes, const char* names[],
                        const size_t* offsets, const hid_t* types, hsize_t chunk, void* fill,
                        int compress, const void* values) __asm__("__wrap_H5TBmake_table");
herr_t realSetInt(hid_t location, const char* object, const char* name, const int* values,
                  size_t count) __asm__("__real_H5LTset_attribute_int");
herr_t wrappedSetInt(hid_t location, const char* object, const char* name, const int* values,
                     size_t count) __asm__("__wrap_H5LTset_attribute_int");
herr_t realSetString(hid_t location, const char* object, const char* name,
                     const char* text) __asm__("__real_H5LTset_attribute_string");
herr_t wrappedSetString(hid_t location, const char* object, const char* name,
                        const char* text) __asm__("__wrap_H5LTset_attribute_string");

herr_t wrappedCloseFile(hid_t file) {
  const herr_t result = realCloseFile(file);
  return mustFail(Hdf5Function::closeFile, "") ? plan().result : result;
}

herr_t wrappedMakeDataset(hid_t location, const char* path, int rank, const hsize_t* extents,
                          hid_t type, const void* values) {
  return mustFail(Hdf5Function::makeDataset, path)
             ? plan().result
             : realMakeDataset(location, path, rank, extents, type, values);
}

herr_t wrappedMakeTable(const char* title, hid_t location, const char* path, hsize_t fields,
                        hsize_t records, size_t recordBytes, const char* names[],
                        const size_t* offsets, const hid_t* types, hsize_t chunk, void* fill,
                        int compress, const void* values) {
  return mustFail(Hdf5Function::makeTable, path)
             ? plan().result
             : realMakeTable(title, location, path, fields, records, recordBytes, names, offsets,
                             types, chunk, fill, compress, values);
}

herr_t wrappedSetInt(hid_t location, const char* object, const char* name, const int* values,
                     size_t count) {
  return mustFail(Hdf5Function::setIntAttribute, name)
             ? plan().result
             : realSetInt(location, object, name, values, count);
}

herr_t wrappedSetString(hid_t location, const char* object, const char* name, const char* text) {
  return mustFail(Hdf5Function::setStringAttribute, name)
             ? plan().result
             : realSetString(location, object, name, text);
}

}  // extern "C"

}  // namespace orvml_io_tests
