#include "exchange/record.h"

#include "exchange/check.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>

namespace orvml_examples {

namespace {

std::string shortened(const std::string& json) {
  constexpr std::size_t kShown = 60;
  return json.size() <= kShown ? json : json.substr(0, kShown) + "...";
}

/// The two texts from a little before the place where they begin to differ.
std::string difference(const std::string& sent, const std::string& read) {
  constexpr std::size_t kBefore = 20;
  const auto places = std::mismatch(sent.begin(), sent.end(), read.begin(), read.end());
  const auto place = static_cast<std::size_t>(places.first - sent.begin());
  const std::size_t from = place > kBefore ? place - kBefore : 0;
  return "sent " + shortened(sent.substr(from)) + ", read " + shortened(read.substr(from));
}

}  // namespace

std::string toJson(int value) { return std::to_string(value); }

std::string toJson(double value) {
  require(std::isfinite(value), "a value that is not finite has no JSON form");
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  std::string text(buffer.data(), end);
  // A reader of JSON takes a number without point and exponent for an integer and loses -0.0.
  return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string toJson(const std::string& text) {
  for (const char c : text) {
    require(c >= ' ' && c <= '~' && c != '"' && c != '\\', "a text needs escapes: " + text);
  }
  return '"' + text + '"';
}

void Record::add(std::string key, std::string json) {
  entries_.emplace_back(std::move(key), std::move(json));
}

const std::string* Record::find(const std::string& key) const {
  for (const auto& [name, json] : entries_) {
    if (name == key) {
      return &json;
    }
  }
  return nullptr;
}

void Record::save(const std::string& path) const {
  std::ofstream file(path);
  const char* separator = "{\n";
  for (const auto& [key, json] : entries_) {
    file << separator << '"' << key << "\": " << json;
    separator = ",\n";
  }
  file << "\n}\n";
  require(file.flush().good(), "cannot write " + path);
}

Record Record::load(const std::string& path) {
  std::ifstream file(path);
  require(file.is_open(), "cannot open " + path);
  Record record;
  std::string line;
  while (std::getline(file, line)) {
    const std::size_t keyEnd = line.find("\": ");
    if (line.empty() || line[0] != '"' || keyEnd == std::string::npos) {
      continue;
    }
    if (line.back() == ',') {
      line.pop_back();
    }
    record.add(line.substr(1, keyEnd - 1), line.substr(keyEnd + 3));
  }
  require(!record.entries_.empty(), path + " records nothing");
  return record;
}

void requireSameValues(const Record& sent, const Record& read, const std::string& mayDiffer) {
  require(read.entries().size() == sent.entries().size(),
          "what was read has " + std::to_string(read.entries().size()) + " values, what was sent " +
              std::to_string(sent.entries().size()));
  for (const auto& [key, sentJson] : sent.entries()) {
    const std::string* readJson = read.find(key);
    require(readJson != nullptr, key + " was sent but not read");
    const bool isAllowed = !mayDiffer.empty() && key.compare(0, mayDiffer.size(), mayDiffer) == 0;
    require(isAllowed || *readJson == sentJson,
            key + " differs from what was sent: " + difference(sentJson, *readJson));
  }
}

}  // namespace orvml_examples
