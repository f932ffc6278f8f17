// The parameters and the attributes of a document.
#include "exchange/check.h"
#include "preprocessor/agreement.h"
#include "preprocessor/document.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace orvml_examples {

namespace {

const AgreedAttribute& agreedAttribute(const char* name) {
  for (const AgreedAttribute& attribute : kAttributes) {
    if (std::strcmp(attribute.name, name) == 0) {
      return attribute;
    }
  }
  throw CheckFailed(std::string("nobody agreed upon an attribute ") + name);
}

template <class T>
constexpr ORVML_TYPE_OF_VALUE kValueType = std::is_same_v<T, int> ? ORVML_INT : ORVML_DOUBLE;

template <class T>
std::vector<T> vectorParameter(void* handle, const char* name) {
  T* values = nullptr;
  int length = 0;
  requireOk(OrvML_IO_GetParameterVector(handle, name, values, length),
            std::string("OrvML_IO_GetParameterVector of ") + name);
  return std::vector<T>(values, values + length);
}

template <class T>
std::vector<T> attribute(void* handle, const char* name, int count) {
  const AgreedAttribute& agreed = agreedAttribute(name);
  T* values = nullptr;
  int length = 0;
  requireOk(OrvML_IO_GetAttributesEntitiesVector(handle, agreed.entity, name, values, length),
            std::string("OrvML_IO_GetAttributesEntitiesVector of ") + name);
  require(OrvML_IO_GetAttribute(handle, name, agreed.entity) == values,
          std::string("the two getters hand out different blocks of ") + name);
  require(OrvML_IO_GetAttributeType(handle, name, agreed.entity) == agreed.valueType,
          std::string(name) + " has values of another type than agreed");
  require(length == count, std::string(name) + " has not one value for each entity");
  return std::vector<T>(values, values + length);
}

/// A user attribute is copied from an array of ours; a computed one is filled in place, in the
/// block that the library made.
template <class T>
void setAgreedAttribute(void* handle, const AgreedAttribute& agreed, const std::vector<T>& values) {
  if (agreed.origin == ORVML_USER_ATTRIBUTE) {
    requireOk(OrvML_IO_SetAttribute(handle, agreed.name, values.data(), agreed.entity,
                                    agreed.origin, agreed.valueType),
              std::string("OrvML_IO_SetAttribute of ") + agreed.name);
    return;
  }
  void* block =
      OrvML_IO_CreateAttribute(handle, agreed.name, agreed.entity, agreed.origin, agreed.valueType);
  require(block != nullptr, std::string("OrvML_IO_CreateAttribute made no ") + agreed.name);
  std::copy(values.begin(), values.end(), static_cast<T*>(block));
}

template <class T>
void setAttributeValues(void* handle, const char* name, int count, const std::vector<T>& values) {
  const AgreedAttribute& agreed = agreedAttribute(name);
  require(agreed.valueType == kValueType<T>,
          std::string(name) + " was agreed upon with values of another type");
  require(values.size() == static_cast<std::size_t>(count),
          std::string(name) + " needs one value for each entity");
  setAgreedAttribute(handle, agreed, values);
}

template <class T>
void setVectorParameter(void* handle, const char* name, const std::vector<T>& values) {
  const int length = static_cast<int>(values.size());
  requireOk(OrvML_IO_SetParameterVector(handle, name, values.data(), length),
            std::string("OrvML_IO_SetParameterVector of ") + name);
}

}  // namespace

void Document::setParameter(const char* name, int value) {
  requireOk(OrvML_IO_SetParameter(handle_, name, value),
            std::string("OrvML_IO_SetParameter of ") + name);
}

void Document::setParameter(const char* name, double value) {
  requireOk(OrvML_IO_SetParameter(handle_, name, value),
            std::string("OrvML_IO_SetParameter of ") + name);
}

void Document::setParameter(const char* name, const std::vector<int>& values) {
  setVectorParameter(handle_, name, values);
}

void Document::setParameter(const char* name, const std::vector<double>& values) {
  setVectorParameter(handle_, name, values);
}

bool Document::hasParameter(const char* name) const {
  return OrvML_IO_ParameterExists(handle_, name);
}

double Document::parameter(const char* name) const {
  double value = 0.0;
  requireOk(OrvML_IO_GetParameter(handle_, name, value),
            std::string("OrvML_IO_GetParameter of ") + name);
  return value;
}

std::size_t Document::numberOfParameters() const { return OrvML_IO_GetNumberOfParameters(handle_); }

std::size_t Document::numberOfVectorParameters() const {
  return OrvML_IO_GetNumberOfParametersVector(handle_);
}

bool Document::hasVectorParameter(const char* name) const {
  int* values = nullptr;
  int length = 0;
  return OrvML_IO_GetParameterVector(handle_, name, values, length) == 0;
}

std::vector<int> Document::intParameter(const char* name) const {
  return vectorParameter<int>(handle_, name);
}

std::vector<double> Document::doubleParameter(const char* name) const {
  return vectorParameter<double>(handle_, name);
}

void Document::setAttribute(const char* name, const std::vector<int>& values) {
  setAttributeValues(handle_, name, numberOf(agreedAttribute(name).entity), values);
}

void Document::setAttribute(const char* name, const std::vector<double>& values) {
  setAttributeValues(handle_, name, numberOf(agreedAttribute(name).entity), values);
}

ORVML_TYPE_OF_VALUE Document::attributeType(const char* name) const {
  return OrvML_IO_GetAttributeType(handle_, name, agreedAttribute(name).entity);
}

std::vector<int> Document::intAttribute(const char* name) const {
  return attribute<int>(handle_, name, numberOf(agreedAttribute(name).entity));
}

std::vector<double> Document::doubleAttribute(const char* name) const {
  return attribute<double>(handle_, name, numberOf(agreedAttribute(name).entity));
}

std::vector<std::string> Document::namesToTransmit(ORVML_TYPE_OF_ENTITY entity) const {
  std::vector<std::string> found;
  const int count = OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle_, entity);
  for (int index = 0; index < count; ++index) {
    const char* name = OrvML_IO_GetAttributeNameThatMustBeTransmitted(handle_, entity, index);
    require(name != nullptr, "a counted attribute to transmit has no name");
    found.emplace_back(name);
  }
  return found;
}

}  // namespace orvml_examples
