// Exported functions of the parameters. A valid handle is required.
#include "model/document.h"
#include "orvml_io.h"

using orvml_io::documentOf;
using orvml_io::OML_AttributesVector;

namespace {

/// Contract: both overloads of the getter hand out the block without looking at its type, so the
/// caller has to know what was stored.
template <class T>
int handOut(void* handle, const char* name, T*& values, int& n) {
  const OML_AttributesVector::Entry* entry = documentOf(handle)->parametersVector.find(name);
  values = entry == nullptr ? nullptr : static_cast<T*>(entry->data);
  n = entry == nullptr ? 0 : entry->length;
  return entry == nullptr ? 1 : 0;
}

}  // namespace

int OrvML_IO_SetParameter(void* handle, const char* name, int value) {
  return OrvML_IO_SetParameter(handle, name, static_cast<double>(value));
}

int OrvML_IO_SetParameter(void* handle, const char* name, double value) {
  return documentOf(handle)->parametersScalar.Set(name, value);
}

int OrvML_IO_GetParameter(void* handle, const char* name, double& value) {
  const double* found = documentOf(handle)->parametersScalar.find(name);
  if (found == nullptr) {
    return 1;
  }
  value = *found;
  return 0;
}

bool OrvML_IO_ParameterExists(void* handle, const char* name) {
  double unused = 0.0;
  return OrvML_IO_GetParameter(handle, name, unused) == 0;
}

// Vector parameters never carry the must-be-transmitted flag: it has no meaning for them.
int OrvML_IO_SetParameterVector(void* handle, const char* name, const int* values, int n) {
  return documentOf(handle)->parametersVector.Set(name, values, n, false);
}

int OrvML_IO_SetParameterVector(void* handle, const char* name, const double* values, int n) {
  return documentOf(handle)->parametersVector.Set(name, values, n, false);
}

int OrvML_IO_GetParameterVector(void* handle, const char* name, int*& values, int& n) {
  return handOut(handle, name, values, n);
}

int OrvML_IO_GetParameterVector(void* handle, const char* name, double*& values, int& n) {
  return handOut(handle, name, values, n);
}

int OrvML_IO_DeleteParameterVector(void* handle, const char* name) {
  return documentOf(handle)->parametersVector.Delete(name);
}
