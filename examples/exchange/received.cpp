#include "exchange/received.h"

#include "exchange/check.h"

#include <algorithm>

namespace orvml_examples {

namespace {

/// A file does not bring the must-be-transmitted flags back. It is the only difference allowed.
bool isLostByFiles(const std::string& key) {
  return key.compare(0, sizeof kTransmittedKeys - 1, kTransmittedKeys) == 0;
}

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

void valuesAgree(const Received& received) {
  const Record read = recordOf(received.document, received.group);
  require(read.entries().size() == received.sent.entries().size(),
          "what was read has " + std::to_string(read.entries().size()) + " values, what was sent " +
              std::to_string(received.sent.entries().size()));
  for (const auto& [key, sentJson] : received.sent.entries()) {
    const std::string* readJson = read.find(key);
    require(readJson != nullptr, key + " was sent but not read");
    require(isLostByFiles(key) || *readJson == sentJson,
            key + " differs from what was sent: " + difference(sentJson, *readJson));
  }
}

void flagsDoNotComeBack(const Received& received) {
  for (const auto entity : {ORVML_NODES, ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    require(received.document.namesToTransmit(entity).empty(),
            "an attribute that was read from a file has the must-be-transmitted flag");
  }
}

using Comparison = void (*)(const Received&);
constexpr Comparison kComparisons[] = {valuesAgree, flagsDoNotComeBack};

}  // namespace

void requireReceivedAsSent(const Received& received) {
  for (const Comparison comparison : kComparisons) {
    comparison(received);
  }
}

}  // namespace orvml_examples
