// Exported functions of the entity attributes. A valid handle is required.
#include "model/document.h"
#include "orvml_io.h"

using orvml_io::documentOf;
using orvml_io::kDoubleCode;
using orvml_io::kIntCode;
using orvml_io::OML_AttributesVector;

namespace {

int countOf(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  if (entity == ORVML_NODES) {
    return documentOf(handle)->GetNumberOfNodes();
  }
  const orvml_io::Elems* elems = documentOf(handle)->GetGenericElems(entity);
  return elems == nullptr ? 0 : elems->numberOfElements;
}

const OML_AttributesVector::Entry* findAttribute(void* handle, const char* name,
                                                 ORVML_TYPE_OF_ENTITY entity) {
  const OML_AttributesVector* store = documentOf(handle)->attributesOf(entity);
  return store == nullptr ? nullptr : store->find(name);
}

template <class T>
int setAttribute(void* handle, ORVML_TYPE_OF_ENTITY entity, const char* name, const T* values,
                 int n, bool mustBeTransmitted) {
  OML_AttributesVector* store = documentOf(handle)->attributesOf(entity);
  return store == nullptr ? 1 : store->Set(name, values, n, mustBeTransmitted);
}

/// Contract: both overloads of the getter hand out the block without looking at its type, and
/// without a store they leave the outputs untouched.
template <class T>
int handOut(void* handle, ORVML_TYPE_OF_ENTITY entity, const char* name, T*& values, int& n) {
  const OML_AttributesVector* store = documentOf(handle)->attributesOf(entity);
  if (store == nullptr) {
    return 1;
  }
  const OML_AttributesVector::Entry* entry = store->find(name);
  values = entry == nullptr ? nullptr : static_cast<T*>(entry->data);
  n = entry == nullptr ? 0 : entry->length;
  return entry == nullptr ? 1 : 0;
}

}  // namespace

void* OrvML_IO_CreateAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                              ORVML_TYPE_OF_VALUE valueType, const char* name,
                                              int n, bool mustBeTransmitted) {
  OML_AttributesVector* store = documentOf(handle)->attributesOf(entity);
  if (store == nullptr || (valueType != ORVML_INT && valueType != ORVML_DOUBLE)) {
    return nullptr;
  }
  return store->SetZeros(name, valueType == ORVML_INT ? kIntCode : kDoubleCode, n,
                         mustBeTransmitted);
}

void* OrvML_IO_CreateAttribute(void* handle, const char* name, ORVML_TYPE_OF_ENTITY entity,
                               ORVML_TYPE_OF_ATTRIBUTE attributeType,
                               ORVML_TYPE_OF_VALUE valueType) {
  return OrvML_IO_CreateAttributesEntitiesVector(handle, entity, valueType, name,
                                                 countOf(handle, entity),
                                                 attributeType == ORVML_USER_ATTRIBUTE);
}

int OrvML_IO_SetAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                         const char* name, const int* values, int n,
                                         bool mustBeTransmitted) {
  return setAttribute(handle, entity, name, values, n, mustBeTransmitted);
}

int OrvML_IO_SetAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                         const char* name, const double* values, int n,
                                         bool mustBeTransmitted) {
  return setAttribute(handle, entity, name, values, n, mustBeTransmitted);
}

int OrvML_IO_SetAttribute(void* handle, const char* name, const void* values,
                          ORVML_TYPE_OF_ENTITY entity, ORVML_TYPE_OF_ATTRIBUTE attributeType,
                          ORVML_TYPE_OF_VALUE valueType) {
  const int n = countOf(handle, entity);
  const bool mustBeTransmitted = attributeType == ORVML_USER_ATTRIBUTE;
  switch (valueType) {
    case ORVML_INT:
      return setAttribute(handle, entity, name, static_cast<const int*>(values), n,
                          mustBeTransmitted);
    case ORVML_DOUBLE:
      return setAttribute(handle, entity, name, static_cast<const double*>(values), n,
                          mustBeTransmitted);
    default:
      return 1;
  }
}

int OrvML_IO_GetAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                         const char* name, int*& values, int& n) {
  return handOut(handle, entity, name, values, n);
}

int OrvML_IO_GetAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                         const char* name, double*& values, int& n) {
  return handOut(handle, entity, name, values, n);
}

void* OrvML_IO_GetAttribute(void* handle, const char* name, ORVML_TYPE_OF_ENTITY entity) {
  if (OrvML_IO_GetAttributeType(handle, name, entity) == ORVML_UNKNOWN_VALUE) {
    return nullptr;
  }
  return findAttribute(handle, name, entity)->data;
}

ORVML_TYPE_OF_VALUE OrvML_IO_GetAttributeType(void* handle, const char* name,
                                              ORVML_TYPE_OF_ENTITY entity) {
  const OML_AttributesVector::Entry* entry = findAttribute(handle, name, entity);
  if (entry != nullptr && entry->code == kIntCode) {
    return ORVML_INT;
  }
  if (entry != nullptr && entry->code == kDoubleCode) {
    return ORVML_DOUBLE;
  }
  return ORVML_UNKNOWN_VALUE;
}

int OrvML_IO_DeleteAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity,
                                            const char* name) {
  OML_AttributesVector* store = documentOf(handle)->attributesOf(entity);
  return store == nullptr ? 0 : store->Delete(name);
}

int OrvML_IO_DeleteAttribute(void* handle, const char* name, ORVML_TYPE_OF_ENTITY entity) {
  return OrvML_IO_DeleteAttributesEntitiesVector(handle, entity, name);
}

int OrvML_IO_DeleteAttributesEntitiesVector(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  if (OML_AttributesVector* store = documentOf(handle)->attributesOf(entity)) {
    store->DeleteAll();
  }
  return 0;
}

int OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(void* handle, ORVML_TYPE_OF_ENTITY entity) {
  int transmitted = 0;
  if (const OML_AttributesVector* store = documentOf(handle)->attributesOf(entity)) {
    for (const auto& named : *store) {
      transmitted += named.second.mustBeTransmitted ? 1 : 0;
    }
  }
  return transmitted;
}

const char* OrvML_IO_GetAttributeNameThatMustBeTransmitted(void* handle,
                                                           ORVML_TYPE_OF_ENTITY entity, int index) {
  const OML_AttributesVector* store = documentOf(handle)->attributesOf(entity);
  if (store == nullptr) {
    return nullptr;
  }
  int flaggedIndex = 0;
  for (const auto& [name, entry] : *store) {
    if (!entry.mustBeTransmitted) {
      continue;
    }
    if (flaggedIndex == index) {
      return name.c_str();
    }
    ++flaggedIndex;
  }
  return nullptr;
}
