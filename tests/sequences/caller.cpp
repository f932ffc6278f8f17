#include "sequences/caller.h"

#include "support/raw_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace orvml_io_tests {

namespace {

constexpr std::size_t kLinesKept = 25;
constexpr std::size_t kMostDocuments = 7;
constexpr std::size_t kMostPaths = 80;
constexpr int kCallsBetweenFullChecks = 50;

/// All kinds of call in a random order. What fills documents, and what needs filled ones, stands in
/// it several times, so that documents hold something when they are cleared, written or compared.
std::vector<Call> shuffledCalls(Random& random) {
  std::vector<Call> deck = everyCall();
  for (const auto& often :
       {meshCalls(), parameterCalls(), attributeCalls(), fileCalls(), comparisonCalls()}) {
    for (int repeat = 0; repeat < 6; ++repeat) {
      deck.insert(deck.end(), often.begin(), often.end());
    }
  }
  random.shuffle(deck);
  return deck;
}

void writePlainText(const char* path) { std::ofstream(path) << "no exchange file\n"; }

}  // namespace

std::vector<Call> everyCall() {
  std::vector<Call> all;
  for (const auto& family : {identificationCalls(), lifecycleCalls(), clearingCalls(), meshCalls(),
                             parameterCalls(), attributeCalls(), fileCalls(), comparisonCalls()}) {
    all.insert(all.end(), family.begin(), family.end());
  }
  return all;
}

Caller::Caller(Random& source) : random(source), lastWords_([this] { return lastCalls(); }) {
  writePlainText(newPath().path.path());
  RawFile::create(newPath().path.path()).close();
}

Caller::~Caller() {
  for (const auto& document : documents_) {
    takeLeftovers(*document, memory);
    OrvML_IO_DeleteOrvInputHandle(document->handle);
  }
}

void Caller::run(int numberOfCalls) {
  std::vector<Call> deck;
  for (int calls = 0; calls < numberOfCalls && !::testing::Test::HasFailure();) {
    if (deck.empty()) {
      deck = shuffledCalls(random);
    }
    const Call call = deck.back();
    deck.pop_back();
    touched_.clear();
    if (!call.make(*this)) {
      continue;
    }
    ++made_[call.name];
    expectTouched();
    if (++calls % kCallsBetweenFullChecks == 0) {
      expectEverything();
    }
  }
  if (::testing::Test::HasFailure()) {
    ADD_FAILURE() << lastCalls();
  }
}

std::string Caller::lastCalls() const {
  std::string text = "The last calls of the sequence:\n";
  for (const std::string& line : lines_) {
    text += "  " + line + "\n";
  }
  return text;
}

LiveDocument& Caller::document() {
  if (documents_.empty()) {
    add(OrvML_IO_NewOrvInputHandle(), DocumentModel());
  }
  LiveDocument& chosen =
      *documents_[static_cast<std::size_t>(random.below(static_cast<int>(documents_.size())))];
  touched_.insert(&chosen);
  return chosen;
}

LiveDocument* Caller::documentOrNone() { return random.chance(5) ? nullptr : &document(); }

bool Caller::makeRoom() {
  if (documents_.size() < kMostDocuments) {
    return true;
  }
  if (random.chance(80)) {
    return false;
  }
  LiveDocument& deleted = document();
  log("OrvML_IO_DeleteOrvInputHandle", deleted);
  remove(deleted, OrvML_IO_DeleteOrvInputHandle);
  return true;
}

void Caller::add(void* handle, DocumentModel model) {
  const std::string label = "#" + std::to_string(++documentsAdded_);
  addLine("    gives " + label);
  documents_.push_back(std::make_unique<LiveDocument>(handle, std::move(model), label));
  noteAddresses(*documents_.back());
  touched_.insert(documents_.back().get());
}

void Caller::remove(LiveDocument& document, void (*deleter)(void*&)) {
  takeLeftovers(document, memory);
  deleter(document.handle);
  EXPECT_EQ(document.handle, nullptr);
  touched_.erase(&document);
  documents_.erase(std::find_if(documents_.begin(), documents_.end(),
                                [&document](const auto& held) { return held.get() == &document; }));
}

ExchangePath& Caller::newPath() {
  if (paths_.size() >= kMostPaths) {
    return anyPath();
  }
  paths_.push_back(std::make_unique<ExchangePath>());
  return *paths_.back();
}

ExchangePath& Caller::anyPath() {
  return *paths_[static_cast<std::size_t>(random.below(static_cast<int>(paths_.size())))];
}

void Caller::addLine(std::string line) {
  lines_.push_back(std::move(line));
  if (lines_.size() > kLinesKept) {
    lines_.pop_front();
  }
}

void Caller::expectTouched() {
  for (const LiveDocument* document : touched_) {
    expectState(*document);
  }
}

void Caller::expectEverything() const {
  for (const auto& document : documents_) {
    expectState(*document);
  }
  expectNullHandleState();
  memory.expectUntouched();
}

std::optional<std::string> anyText(Random& random) {
  static const std::vector<std::optional<std::string>> texts = {
      std::nullopt,         "",  "ORVML_OCTREE_MESHER", "2.1", "\xc3\xa9",
      std::string(79, 'x'), " ", std::string(80, 'y'),  "a",   std::string(200, 'z')};
  return random.oneOf(texts);
}

const std::string& anyName(Random& random) {
  const std::vector<std::string>& names = commonNames();
  const int last = static_cast<int>(names.size()) - 1;
  const int lastWritable = last - kUnwritableNames;
  const int index =
      random.chance(2) ? random.between(lastWritable + 1, last) : random.between(0, lastWritable);
  return names[static_cast<std::size_t>(index)];
}

ORVML_TYPE_OF_ENTITY anyEntity(Random& random) {
  static const std::vector<int> kinds = {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 4, -1};
  return static_cast<ORVML_TYPE_OF_ENTITY>(random.oneOf(kinds));
}

const DocumentModel* modelOf(const LiveDocument* document) {
  return document == nullptr ? nullptr : &document->model;
}

bool coordinatesReach(const NodesModel& nodes, int count, int dimension) {
  if (count == 0) {
    return true;
  }
  if (count < 0 || dimension < 0) {
    return false;
  }
  return nodes.coords == nullptr ||
         static_cast<std::size_t>(count) * static_cast<std::size_t>(dimension) <=
             nodes.coords->values.size();
}

}  // namespace orvml_io_tests
