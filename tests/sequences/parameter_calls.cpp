// Scalar and vector parameters.
#include "sequences/caller.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvml_io_tests {

namespace {

bool setIntParameter(Caller& caller) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  const int value = caller.random.anyInt();
  caller.log("OrvML_IO_SetParameter", document, name, value);
  EXPECT_EQ(OrvML_IO_SetParameter(document.handle, name.c_str(), value), 0);
  document.model.scalars[name] = value;
  return true;
}

bool setDoubleParameter(Caller& caller) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  const double value = caller.random.anyDouble();
  caller.log("OrvML_IO_SetParameter", document, name, value);
  EXPECT_EQ(OrvML_IO_SetParameter(document.handle, name.c_str(), value), 0);
  document.model.scalars[name] = value;
  return true;
}

/// A block that is replaced stays allocated: the caller has it from now on.
template <class T>
bool setVector(Caller& caller, std::vector<T> values, int length) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  caller.log("OrvML_IO_SetParameterVector", document, name, length);
  EXPECT_EQ(OrvML_IO_SetParameterVector(document.handle, name.c_str(), values.data(), length), 0);
  const auto replaced = document.model.vectors.find(name);
  if (replaced != document.model.vectors.end()) {
    caller.memory.take(replaced->second);
  }
  T* block = nullptr;
  OrvML_IO_GetParameterVector(document.handle, name.c_str(), block, length);
  EXPECT_NE(block, values.data());
  document.model.vectors[name] = {std::move(values), false, block};
  return true;
}

bool setIntVector(Caller& caller) {
  const int length = caller.random.between(-1, 4);
  return setVector(caller, caller.random.ints(std::max(length, 0)), length);
}

bool setDoubleVector(Caller& caller) {
  const int length = caller.random.between(-1, 4);
  return setVector(caller, caller.random.doubles(std::max(length, 0)), length);
}

bool deleteVector(Caller& caller) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  caller.log("OrvML_IO_DeleteParameterVector", document, name);
  EXPECT_EQ(OrvML_IO_DeleteParameterVector(document.handle, name.c_str()), 0);
  document.model.vectors.erase(name);
  return true;
}

/// Writes a value into the block of a parameter, which changes the parameter.
bool writeIntoVector(Caller& caller) {
  LiveDocument& document = caller.document();
  NamedVectors& vectors = document.model.vectors;
  const auto filled = std::find_if(vectors.begin(), vectors.end(),
                                   [](const auto& named) { return named.second.length() > 0; });
  if (filled == vectors.end()) {
    return false;
  }
  caller.log("write into the vector parameter", document, filled->first);
  writeIntoBlock(filled->second, caller.random);
  return true;
}

}  // namespace

std::vector<Call> parameterCalls() {
  return {{"SetParameter(int)", setIntParameter},
          {"SetParameter(double)", setDoubleParameter},
          {"SetParameterVector(int)", setIntVector},
          {"SetParameterVector(double)", setDoubleVector},
          {"DeleteParameterVector", deleteVector},
          {"writing into a vector parameter", writeIntoVector}};
}

}  // namespace orvml_io_tests
