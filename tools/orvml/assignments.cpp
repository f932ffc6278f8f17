#include "assignments.h"

#include "console.h"
#include "file_bytes.h"
#include "messages.h"
#include "numbers.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvml_tool {

namespace {

using orvml::Entity;

struct Assignment {
  std::string name;
  std::string value;
};

/// Splits at the last "=": names may have some, numbers have none. The name of a file may, so there
/// it is the first one before its "@".
Assignment assignmentIn(const std::string& text, const char* form) {
  const std::size_t file = text.find("=@");
  const std::size_t equals = file == std::string::npos ? text.rfind('=') : file;
  if (equals == std::string::npos || equals == 0) {
    throw Refusal("'" + printable(text) + "' sets nothing", std::string("write ") + form);
  }
  return {text.substr(0, equals), text.substr(equals + 1)};
}

[[noreturn]] void throwNoNumber(std::string_view word, const char* what) {
  throw Refusal("'" + printable(word) + "' is no " + what,
                "write numbers with a point, such as 0.25 or 1e-3, and commas between them");
}

/// The words between commas, blanks and line breaks.
std::vector<std::string_view> wordsOf(std::string_view text) {
  constexpr std::string_view kSeparators = ", \t\r\n";
  std::vector<std::string_view> words;
  for (std::size_t begin = text.find_first_not_of(kSeparators); begin != std::string_view::npos;) {
    const std::size_t end = std::min(text.find_first_of(kSeparators, begin), text.size());
    words.push_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(kSeparators, end);
  }
  return words;
}

std::vector<int> intsOf(const std::vector<std::string_view>& words) {
  std::vector<int> values;
  for (const std::string_view word : words) {
    const auto value = integerIn(word);
    if (!value) {
      throwNoNumber(word, "integer of 32 bits");
    }
    values.push_back(*value);
  }
  return values;
}

std::vector<double> doublesOf(const std::vector<std::string_view>& words) {
  std::vector<double> values;
  for (const std::string_view word : words) {
    const auto value = numberIn(word);
    if (!value) {
      throwNoNumber(word, "number");
    }
    values.push_back(*value);
  }
  return values;
}

/// Takes "int:" or "double:" from the front of a text; returns whether ints are meant.
std::optional<bool> takeType(std::string_view& text) {
  constexpr std::array<std::pair<std::string_view, bool>, 2> kTypes = {
      {{"int:", true}, {"double:", false}}};
  for (const auto& [prefix, areInts] : kTypes) {
    if (text.starts_with(prefix)) {
      text.remove_prefix(prefix.size());
      return areInts;
    }
  }
  return std::nullopt;
}

/// @param present  the vector whose place the values take, or null: it says of which type they are
///                 where the text does not. Where neither does they are ints when all look like
///                 that.
Numbers numbersIn(std::string_view text, const orvml::Attribute* present) {
  auto areInts = takeType(text);
  const std::string file = text.starts_with('@') ? bytesOf(std::string(text.substr(1))) : "";
  const auto words = wordsOf(text.starts_with('@') ? std::string_view(file) : text);
  if (!areInts && present != nullptr) {
    areInts = present->holdsInts();
  }
  const auto looksLikeInt = [](std::string_view word) { return integerIn(word).has_value(); };
  if (areInts.value_or(std::all_of(words.begin(), words.end(), looksLikeInt))) {
    return intsOf(words);
  }
  return doublesOf(words);
}

/// One value stands for all.
Numbers repeated(Numbers numbers, std::size_t size) {
  std::visit(
      [&](auto& values) {
        if (values.size() == 1) {
          const auto value = values.front();
          values.assign(size, value);
        }
      },
      numbers);
  return numbers;
}

std::pair<Entity, std::string> placeOf(const std::string& name) {
  constexpr std::array<std::pair<std::string_view, Entity>, 4> kPlaces = {
      {{"nodes/", Entity::nodes},
       {"edges/", Entity::edges},
       {"faces/", Entity::faces},
       {"elements/", Entity::elements}}};
  for (const auto& [prefix, entity] : kPlaces) {
    if (name.starts_with(prefix)) {
      return {entity, name.substr(prefix.size())};
    }
  }
  throw Refusal("'" + printable(name) + "' does not say of what it is an attribute",
                "begin it with nodes/, edges/, faces/ or elements/");
}

void setAttribute(Draft& draft, const std::string& text, bool mustBeTransmitted) {
  const auto [path, value] = assignmentIn(text, "ENTITY/NAME=VALUES, such as faces/size=0.5");
  const auto [entity, name] = placeOf(path);
  const orvml::Attribute* present = draft.attributes(entity).find(name);
  const bool isTransmitted =
      mustBeTransmitted || (present != nullptr && present->mustBeTransmitted);
  draft.setAttribute(entity, name, repeated(numbersIn(value, present), draft.sizeOf(entity)),
                     isTransmitted);
}

}  // namespace

void Assignments::applyTo(Draft& draft) const {
  for (const std::string& text : parameters) {
    const auto [name, value] = assignmentIn(text, "NAME=VALUE, such as size=0.25");
    const auto number = numberIn(value);
    if (!number) {
      throwNoNumber(value, "number");
    }
    draft.setParameter(name, *number);
  }
  for (const std::string& text : vectorParameters) {
    const auto [name, value] = assignmentIn(text, "NAME=VALUES, such as sizes=0.5,0.25");
    draft.setVectorParameter(name, numbersIn(value, draft.vectorParameters().find(name)));
  }
  for (const std::string& text : attributes) {
    setAttribute(draft, text, mustBeTransmitted);
  }
}

void addAssignments(CLI::App& command, Assignments& assignments) {
  command.add_option("--param", assignments.parameters, "NAME=VALUE: set a scalar parameter")
      ->allow_extra_args(false);
  command
      .add_option("--vector", assignments.vectorParameters,
                  "NAME=VALUES: set a vector parameter; VALUES are numbers with commas between "
                  "them or @ and a file with numbers, behind int: or double: where that is open")
      ->allow_extra_args(false);
  command
      .add_option("--attribute", assignments.attributes,
                  "ENTITY/NAME=VALUES: set an attribute of nodes, edges, faces or elements; one "
                  "value stands for all")
      ->allow_extra_args(false);
  command.add_flag("--transmit", assignments.mustBeTransmitted,
                   "the attributes that are set must be transmitted back");
}

}  // namespace orvml_tool
