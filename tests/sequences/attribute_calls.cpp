// Attributes of nodes, edges, faces and volume elements.
#include "sequences/caller.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvml_io_tests {

namespace {

ORVML_TYPE_OF_VALUE anyValueType(Random& random) {
  static const std::vector<int> types = {0, 1, 0, 1, 0, 1, 2, 3};
  return static_cast<ORVML_TYPE_OF_VALUE>(random.oneOf(types));
}

ORVML_TYPE_OF_ATTRIBUTE anyAttributeType(Random& random) {
  static const std::vector<int> types = {0, 1, 0, 1, 7};
  return static_cast<ORVML_TYPE_OF_ATTRIBUTE>(random.oneOf(types));
}

bool isKnown(ORVML_TYPE_OF_VALUE type) { return type == ORVML_INT || type == ORVML_DOUBLE; }

/// Values for an attribute of a type; zeros that a creating function makes.
NamedVector zerosOf(ORVML_TYPE_OF_VALUE type, int length) {
  const auto count = static_cast<std::size_t>(std::max(length, 0));
  if (type == ORVML_INT) {
    return {std::vector<int>(count), false, nullptr};
  }
  return {std::vector<double>(count), false, nullptr};
}

NamedVector anyValuesOf(ORVML_TYPE_OF_VALUE type, int length, Random& random) {
  if (type == ORVML_INT) {
    return {random.ints(std::max(length, 0)), false, nullptr};
  }
  return {random.doubles(std::max(length, 0)), false, nullptr};
}

void* dataOf(NamedVector& vector) {
  return std::visit([](auto& values) -> void* { return values.data(); }, vector.values);
}

/// Notes an attribute. The block of one that is replaced stays allocated: the caller has it from
/// now on.
void note(Caller& caller, NamedVectors& attributes, const std::string& name, NamedVector vector) {
  const auto replaced = attributes.find(name);
  if (replaced != attributes.end()) {
    caller.memory.take(replaced->second);
  }
  attributes[name] = std::move(vector);
}

bool createWithLength(Caller& caller) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  const ORVML_TYPE_OF_VALUE type = anyValueType(caller.random);
  const int length = caller.random.between(-1, 4);
  const bool flag = caller.random.chance(50);
  caller.log("OrvML_IO_CreateAttributesEntitiesVector", document, entity, type, name, length, flag);
  NamedVectors* attributes = document.model.attributesOf(entity);
  void* block = OrvML_IO_CreateAttributesEntitiesVector(document.handle, entity, type, name.c_str(),
                                                        length, flag);
  const bool isMade = attributes != nullptr && isKnown(type);
  EXPECT_EQ(block != nullptr, isMade);
  if (isMade) {
    NamedVector zeros = zerosOf(type, length);
    zeros.mustBeTransmitted = flag;
    zeros.block = block;
    note(caller, *attributes, name, std::move(zeros));
  }
  return true;
}

bool createPerEntity(Caller& caller) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  const ORVML_TYPE_OF_ATTRIBUTE attributeType = anyAttributeType(caller.random);
  const ORVML_TYPE_OF_VALUE type = anyValueType(caller.random);
  caller.log("OrvML_IO_CreateAttribute", document, name, entity, attributeType, type);
  NamedVectors* attributes = document.model.attributesOf(entity);
  void* block =
      OrvML_IO_CreateAttribute(document.handle, name.c_str(), entity, attributeType, type);
  const bool isMade = attributes != nullptr && isKnown(type);
  EXPECT_EQ(block != nullptr, isMade);
  if (isMade) {
    NamedVector zeros = zerosOf(type, document.model.countOf(entity));
    zeros.mustBeTransmitted = attributeType == ORVML_USER_ATTRIBUTE;
    zeros.block = block;
    note(caller, *attributes, name, std::move(zeros));
  }
  return true;
}

/// Notes an attribute that was set: the values were copied.
void noteSet(Caller& caller, LiveDocument& document, ORVML_TYPE_OF_ENTITY entity,
             const std::string& name, NamedVector vector) {
  vector.block = OrvML_IO_GetAttribute(document.handle, name.c_str(), entity);
  EXPECT_NE(vector.block, dataOf(vector));
  note(caller, *document.model.attributesOf(entity), name, std::move(vector));
}

template <class T>
bool setWithLength(Caller& caller, std::vector<T> values, int length) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  const bool flag = caller.random.chance(50);
  caller.log("OrvML_IO_SetAttributesEntitiesVector", document, entity, name, length, flag);
  const int result = OrvML_IO_SetAttributesEntitiesVector(document.handle, entity, name.c_str(),
                                                          values.data(), length, flag);
  const bool hasContainer = document.model.attributesOf(entity) != nullptr;
  EXPECT_EQ(result, hasContainer ? 0 : 1);
  if (hasContainer) {
    noteSet(caller, document, entity, name, {std::move(values), flag, nullptr});
  }
  return true;
}

bool setInts(Caller& caller) {
  const int length = caller.random.between(-1, 4);
  return setWithLength(caller, caller.random.ints(std::max(length, 0)), length);
}

bool setDoubles(Caller& caller) {
  const int length = caller.random.between(-1, 4);
  return setWithLength(caller, caller.random.doubles(std::max(length, 0)), length);
}

bool setPerEntity(Caller& caller) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  const ORVML_TYPE_OF_ATTRIBUTE attributeType = anyAttributeType(caller.random);
  const ORVML_TYPE_OF_VALUE type = anyValueType(caller.random);
  NamedVector values = anyValuesOf(type, document.model.countOf(entity), caller.random);
  caller.log("OrvML_IO_SetAttribute", document, name, entity, attributeType, type);
  const int result = OrvML_IO_SetAttribute(document.handle, name.c_str(), dataOf(values), entity,
                                           attributeType, type);
  const bool isSet = document.model.attributesOf(entity) != nullptr && isKnown(type);
  EXPECT_EQ(result, isSet ? 0 : 1);
  if (isSet) {
    values.mustBeTransmitted = attributeType == ORVML_USER_ATTRIBUTE;
    noteSet(caller, document, entity, name, std::move(values));
  }
  return true;
}

template <class Deleter>
bool deleteByName(Caller& caller, const char* function, Deleter deleter) {
  LiveDocument& document = caller.document();
  const std::string& name = anyName(caller.random);
  const ORVML_TYPE_OF_ENTITY entity = anyEntity(caller.random);
  caller.log(function, document, entity, name);
  EXPECT_EQ(deleter(document.handle, entity, name.c_str()), 0);
  if (NamedVectors* attributes = document.model.attributesOf(entity)) {
    attributes->erase(name);
  }
  return true;
}

bool deleteAttributeOfAKind(Caller& caller) {
  return deleteByName(caller, "OrvML_IO_DeleteAttributesEntitiesVector",
                      [](void* handle, ORVML_TYPE_OF_ENTITY entity, const char* name) {
                        return OrvML_IO_DeleteAttributesEntitiesVector(handle, entity, name);
                      });
}

bool deleteAttribute(Caller& caller) {
  return deleteByName(caller, "OrvML_IO_DeleteAttribute",
                      [](void* handle, ORVML_TYPE_OF_ENTITY entity, const char* name) {
                        return OrvML_IO_DeleteAttribute(handle, name, entity);
                      });
}

NamedVector* firstFilledAttribute(DocumentModel& model) {
  for (const ORVML_TYPE_OF_ENTITY entity : kEveryKind) {
    if (NamedVectors* attributes = model.attributesOf(entity)) {
      const auto filled = std::find_if(attributes->begin(), attributes->end(),
                                       [](const auto& named) { return named.second.length() > 0; });
      if (filled != attributes->end()) {
        return &filled->second;
      }
    }
  }
  return nullptr;
}

/// Writes a value into the block of an attribute, which changes the attribute.
bool writeIntoAttribute(Caller& caller) {
  LiveDocument& document = caller.document();
  NamedVector* vector = firstFilledAttribute(document.model);
  if (vector == nullptr) {
    return false;
  }
  caller.log("write into an attribute", document, vector->block);
  writeIntoBlock(*vector, caller.random);
  return true;
}

}  // namespace

std::vector<Call> attributeCalls() {
  return {{"CreateAttributesEntitiesVector", createWithLength},
          {"CreateAttribute", createPerEntity},
          {"SetAttributesEntitiesVector(int)", setInts},
          {"SetAttributesEntitiesVector(double)", setDoubles},
          {"SetAttribute", setPerEntity},
          {"DeleteAttributesEntitiesVector(name)", deleteAttributeOfAKind},
          {"DeleteAttribute", deleteAttribute},
          {"writing into an attribute", writeIntoAttribute}};
}

}  // namespace orvml_io_tests
