#include "document_json.h"

#include "console.h"
#include "facts.h"
#include "json.h"
#include "messages.h"
#include "numbers.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace orvml_tool {

namespace {

using orvml::Entity;

/// A value with the way to it, for the messages.
class Item {
 public:
  Item(const Json& json, std::string path, const std::string& file)
      : json_(json), path_(std::move(path)), file_(file) {}

  [[noreturn]] void refuse(const std::string& what) const {
    throw Refusal(file_ + ": " + (path_.empty() ? "the document" : printable(path_)) + " " + what,
                  "share/orvml/schema/document.schema.json says what a document is made of");
  }

  /// The members, none of which may have another name.
  [[nodiscard]] Item object(std::initializer_list<std::string_view> names) const {
    if (!json_.is_object()) {
      refuse("is no object");
    }
    for (const auto& [name, value] : json_.items()) {
      if (std::find(names.begin(), names.end(), name) == names.end()) {
        refuse("has the member '" + name + "', which means nothing");
      }
    }
    return *this;
  }

  /// The items of an array, or the members of an object whatever their names are.
  template <class Use>
  void forEach(Use&& use) const {
    if (!json_.is_structured()) {
      refuse("is neither an array nor an object");
    }
    for (const auto& [name, value] : json_.items()) {
      use(name, Item(value, path_ + "/" + name, file_));
    }
  }

  [[nodiscard]] bool has(const char* name) const { return json_.contains(name); }
  [[nodiscard]] bool isArray() const { return json_.is_array(); }
  [[nodiscard]] Item at(const char* name) const {
    if (!has(name)) {
      refuse(std::string("has no ") + name);
    }
    return {json_.at(name), path_ + "/" + name, file_};
  }

  [[nodiscard]] std::string text() const {
    if (!json_.is_string()) {
      refuse("is no text");
    }
    return json_.get<std::string>();
  }

  [[nodiscard]] bool truth() const {
    if (!json_.is_boolean()) {
      refuse("is neither true nor false");
    }
    return json_.get<bool>();
  }

  [[nodiscard]] bool isInt() const {
    return json_.is_number_integer() && json_ >= Json(INT_MIN) && json_ <= Json(INT_MAX);
  }

  [[nodiscard]] int integer() const {
    if (!isInt()) {
      refuse("is no integer of 32 bits");
    }
    return json_.get<int>();
  }

  /// JSON has no numbers that are not finite: texts stand for them.
  [[nodiscard]] double number() const {
    const auto named = json_.is_string() ? numberIn(json_.get<std::string>()) : std::nullopt;
    if (!json_.is_number() && !named) {
      refuse("is no number");
    }
    return named ? *named : json_.get<double>();
  }

 private:
  const Json& json_;
  std::string path_;
  const std::string& file_;
};

void requireArray(const Item& item) {
  if (!item.isArray()) {
    item.refuse("is no array");
  }
}

std::vector<double> doublesOf(const Item& item) {
  requireArray(item);
  std::vector<double> values;
  item.forEach([&](const auto&, const Item& value) { values.push_back(value.number()); });
  return values;
}

std::vector<int> intsOf(const Item& item) {
  requireArray(item);
  std::vector<int> values;
  item.forEach([&](const auto&, const Item& value) { values.push_back(value.integer()); });
  return values;
}

/// Without a type they are ints when all look like that.
Numbers numbersOf(const Item& values, const std::string& type) {
  bool areInts = true;
  requireArray(values);
  values.forEach([&](const auto&, const Item& value) { areInts = areInts && value.isInt(); });
  if (type.empty() ? areInts : type == "int") {
    return intsOf(values);
  }
  return doublesOf(values);
}

/// A vector is an array, or an object that says more of one.
Numbers vectorOf(const Item& item, bool& mustBeTransmitted) {
  if (item.isArray()) {
    return numbersOf(item, "");
  }
  const Item object = item.object({"type", "values", "mustBeTransmitted"});
  const std::string type = object.has("type") ? object.at("type").text() : "";
  if (!type.empty() && type != "int" && type != "double") {
    object.at("type").refuse("is neither int nor double");
  }
  mustBeTransmitted = object.has("mustBeTransmitted") && object.at("mustBeTransmitted").truth();
  return numbersOf(object.at("values"), type);
}

void setAttributes(Draft& draft, Entity entity, const Item& item) {
  if (!item.has("attributes")) {
    return;
  }
  item.at("attributes").forEach([&](const std::string& name, const Item& vector) {
    bool mustBeTransmitted = false;
    Numbers numbers = vectorOf(vector, mustBeTransmitted);
    draft.setAttribute(entity, name, std::move(numbers), mustBeTransmitted);
  });
}

void setNodes(Draft& draft, const Item& item, int dimension) {
  const Item nodes = item.object({"coordinates", "attributes"});
  std::vector<double> coordinates;
  nodes.at("coordinates").forEach([&](const auto&, const Item& node) {
    const std::vector<double> point = doublesOf(node);
    if (point.size() != static_cast<std::size_t>(dimension)) {
      node.refuse("has not as many coordinates as the dimension");
    }
    coordinates.insert(coordinates.end(), point.begin(), point.end());
  });
  draft.setNodes(std::move(coordinates));
  setAttributes(draft, Entity::nodes, nodes);
}

orvml::Shape shapeOf(const Item& item) {
  constexpr int kShapes = 11;
  const std::string text = item.text();
  for (int number = 0; number < kShapes; ++number) {
    if (name(static_cast<orvml::Shape>(number)) == text) {
      return static_cast<orvml::Shape>(number);
    }
  }
  item.refuse("is no shape");
}

Draft::Group groupOf(const Item& item) {
  const Item object = item.object({"shape", "cells"});
  Draft::Group group;
  group.shape = shapeOf(object.at("shape"));
  object.at("cells").forEach([&](const auto&, const Item& cell) {
    const std::vector<int> nodes = intsOf(cell);
    const auto size = static_cast<int>(nodes.size());
    if (size == 0 || (group.nodesPerCell != 0 && group.nodesPerCell != size)) {
      cell.refuse("has not as many nodes as the cells before it; give it a group of its own");
    }
    group.nodesPerCell = size;
    group.nodeIndices.insert(group.nodeIndices.end(), nodes.begin(), nodes.end());
  });
  if (group.nodesPerCell == 0) {
    item.refuse("has no cell");
  }
  return group;
}

void setCells(Draft& draft, Entity entity, const Item& item) {
  const Item cells = item.object({"groups", "attributes"});
  std::vector<Draft::Group> groups;
  cells.at("groups").forEach(
      [&](const auto&, const Item& group) { groups.push_back(groupOf(group)); });
  draft.setCells(entity, std::move(groups));
  setAttributes(draft, entity, cells);
}

void setParameters(Draft& draft, const Item& document) {
  if (document.has("parameters")) {
    document.at("parameters").forEach([&](const std::string& name, const Item& value) {
      draft.setParameter(name, value.number());
    });
  }
  if (document.has("vectorParameters")) {
    document.at("vectorParameters").forEach([&](const std::string& name, const Item& vector) {
      bool unused = false;
      draft.setVectorParameter(name, vectorOf(vector, unused));
    });
  }
}

void setMesh(Draft& draft, const Item& document, int dimension) {
  if (document.has("nodes")) {
    setNodes(draft, document.at("nodes"), dimension);
  }
  constexpr std::pair<const char*, Entity> kKinds[] = {
      {"edges", Entity::edges}, {"faces", Entity::faces}, {"elements", Entity::elements}};
  for (const auto& [name, entity] : kKinds) {
    if (document.has(name)) {
      setCells(draft, entity, document.at(name));
    }
  }
}

void setIdentification(Draft& draft, const Item& document) {
  const auto textOf = [&](const char* name) {
    return document.has(name) ? document.at(name).text() : std::string();
  };
  draft.setModule(textOf("module"));
  draft.setModuleFormatVersion(textOf("moduleFormatVersion"));
  draft.setCreator(textOf("creator"));
}

orvml::Kind kindOf(const Item& document) {
  const std::string kind = document.has("kind") ? document.at("kind").text() : "input";
  if (kind != "input" && kind != "output") {
    document.at("kind").refuse("is neither input nor output");
  }
  return kind == "input" ? orvml::Kind::input : orvml::Kind::output;
}

Json parsed(std::string_view text, const std::string& shown) {
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw Refusal(shown + ": is no JSON: " + printable(std::string_view(error.what())),
                  "share/orvml/schema/document.schema.json says what a document is made of");
  }
}

}  // namespace

Draft draftFromJson(std::string_view text, const std::string& shown) {
  const Json json = parsed(text, shown);
  const Item document =
      Item(json, "", shown)
          .object({"kind", "module", "moduleFormatVersion", "creator", "dimension", "nodes",
                   "edges", "faces", "elements", "parameters", "vectorParameters"});
  const int dimension = document.at("dimension").integer();
  if (dimension != 2 && dimension != 3) {
    document.at("dimension").refuse("is neither 2 nor 3");
  }
  Draft draft(kindOf(document), dimension);
  setIdentification(draft, document);
  setMesh(draft, document, dimension);
  setParameters(draft, document);
  return draft;
}

}  // namespace orvml_tool
