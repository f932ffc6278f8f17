#include "support/document_queries.h"

namespace orvml_io_tests {

namespace {

template <class T>
std::optional<std::vector<T>> copyOf(int status, const T* values, int length) {
  if (status != 0) {
    return std::nullopt;
  }
  return std::vector<T>(values, values + length);
}

template <class T>
std::optional<std::vector<T>> parameterOf(void* document, const std::string& name) {
  T* values = nullptr;
  int length = 0;
  const int status = OrvML_IO_GetParameterVector(document, name.c_str(), values, length);
  return copyOf(status, values, length);
}

template <class T>
std::optional<std::vector<T>> attributeOf(void* document, ORVML_TYPE_OF_ENTITY entity,
                                          const std::string& name, ORVML_TYPE_OF_VALUE type) {
  if (OrvML_IO_GetAttributeType(document, name.c_str(), entity) != type) {
    return std::nullopt;
  }
  T* values = nullptr;
  int length = 0;
  const int status =
      OrvML_IO_GetAttributesEntitiesVector(document, entity, name.c_str(), values, length);
  return copyOf(status, values, length);
}

}  // namespace

std::optional<double> scalarOf(void* document, const std::string& name) {
  double value = 0;
  if (OrvML_IO_GetParameter(document, name.c_str(), value) != 0) {
    return std::nullopt;
  }
  return value;
}

std::optional<std::vector<int>> intParameterOf(void* document, const std::string& name) {
  return parameterOf<int>(document, name);
}

std::optional<std::vector<double>> doubleParameterOf(void* document, const std::string& name) {
  return parameterOf<double>(document, name);
}

std::optional<std::vector<int>> intAttributeOf(void* document, ORVML_TYPE_OF_ENTITY entity,
                                               const std::string& name) {
  return attributeOf<int>(document, entity, name, ORVML_INT);
}

std::optional<std::vector<double>> doubleAttributeOf(void* document, ORVML_TYPE_OF_ENTITY entity,
                                                     const std::string& name) {
  return attributeOf<double>(document, entity, name, ORVML_DOUBLE);
}

std::vector<std::string> transmittedNames(void* document, ORVML_TYPE_OF_ENTITY entity) {
  std::vector<std::string> names;
  const int count = OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(document, entity);
  for (int i = 0; i < count; ++i) {
    names.emplace_back(OrvML_IO_GetAttributeNameThatMustBeTransmitted(document, entity, i));
  }
  return names;
}

std::string creatorOf(void* document) {
  char buffer[80] = "untouched";
  return OrvML_IO_GetOrvMeshLibraryIOCreator(document, buffer);
}

}  // namespace orvml_io_tests
