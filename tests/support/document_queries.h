#pragma once

#include "orvml_io.h"

#include <optional>
#include <string>
#include <vector>

namespace orvml_io_tests {

// Named values of a document, copied out through the exported functions; no answer when the name is
// absent. The two types of a vector parameter cannot be told apart from outside: the test says
// which it expects. An attribute of the other type gives no answer.

std::optional<double> scalarOf(void* document, const std::string& name);
std::optional<std::vector<int>> intParameterOf(void* document, const std::string& name);
std::optional<std::vector<double>> doubleParameterOf(void* document, const std::string& name);
std::optional<std::vector<int>> intAttributeOf(void* document, ORVML_TYPE_OF_ENTITY entity,
                                               const std::string& name);
std::optional<std::vector<double>> doubleAttributeOf(void* document, ORVML_TYPE_OF_ENTITY entity,
                                                     const std::string& name);

/// The names of the attributes that must be transmitted, in the order of their indices.
std::vector<std::string> transmittedNames(void* document, ORVML_TYPE_OF_ENTITY entity);

/// Who made a document. The getter fills a buffer that holds another text beforehand.
std::string creatorOf(void* document);

}  // namespace orvml_io_tests
