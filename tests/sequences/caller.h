#pragma once

#include "sequences/file_model.h"
#include "sequences/last_words.h"
#include "sequences/live_document.h"
#include "sequences/random.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace orvml_io_tests {

class Caller;

/// One kind of call: it chooses its arguments, calls the library, compares the result with what the
/// model says, and changes the model as the call must have changed the document. It answers whether
/// it was made: a call whose arguments no caller may pass is left out.
struct Call {
  const char* name;
  bool (*make)(Caller& caller);
};

std::vector<Call> identificationCalls();
std::vector<Call> lifecycleCalls();
std::vector<Call> clearingCalls();
std::vector<Call> meshCalls();
std::vector<Call> parameterCalls();
std::vector<Call> attributeCalls();
std::vector<Call> fileCalls();
std::vector<Call> comparisonCalls();
std::vector<Call> everyCall();

/// Of the coordinates that callers give: enough for every dimension that is set later.
inline constexpr int kCoordinatesPerNode = 3;

/// A path with what lies there.
struct ExchangePath {
  TempFile path;
  FileModel model;
};

/// A caller who uses several documents and files at once, in a random order of calls.
class Caller {
 public:
  explicit Caller(Random& source);
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;
  Caller(Caller&&) = delete;
  Caller& operator=(Caller&&) = delete;
  ~Caller();

  /// Makes calls until a number of them is made or an expectation fails; then the last calls are
  /// printed.
  void run(int numberOfCalls);
  /// How often each kind of call was made.
  [[nodiscard]] const std::map<std::string, int>& made() const { return made_; }
  /// The outcomes that calls reported: a caller that never meets them shows little.
  [[nodiscard]] const std::set<std::string>& outcomes() const { return outcomes_; }
  [[nodiscard]] std::string lastCalls() const;

  // For the calls.
  Random& random;
  CallerMemory memory;

  LiveDocument& document();
  /// A document or, now and then, null for a null handle.
  LiveDocument* documentOrNone();
  /// Tells whether a further document should be made. When there are many, it is seldom so, and
  /// then one is deleted for it: documents that live long go through more.
  bool makeRoom();
  void add(void* handle, DocumentModel model);
  void remove(LiveDocument& document, void (*deleter)(void*&));

  ExchangePath& newPath();
  ExchangePath& anyPath();

  template <class... Arguments>
  void log(const char* function, const Arguments&... arguments) {
    std::ostringstream line;
    line << function;
    ((line << ' ', show(line, arguments)), ...);
    addLine(line.str());
  }
  void saw(const char* outcome) { outcomes_.insert(outcome); }

 private:
  template <class T>
  static void show(std::ostream& line, const T& value) {
    line << value;
  }
  template <class T>
  static void show(std::ostream& line, const Shared<T>& array) {
    if (array == nullptr) {
      line << "null";
    } else {
      line << array->values.size() << " values at " << static_cast<const void*>(array->address);
    }
  }
  static void show(std::ostream& line, const std::string& text) { line << '"' << text << '"'; }
  static void show(std::ostream& line, const std::optional<std::string>& text) {
    line << (text ? '"' + *text + '"' : "null");
  }
  static void show(std::ostream& line, const LiveDocument& document) { line << document.label; }
  static void show(std::ostream& line, const LiveDocument* document) {
    line << (document == nullptr ? "null" : document->label);
  }

  static void show(std::ostream& line, LiveDocument* document) {
    show(line, static_cast<const LiveDocument*>(document));
  }

  void addLine(std::string line);
  void expectTouched();
  void expectEverything() const;

  LastWords lastWords_;
  OpenIds ids_;
  std::vector<std::unique_ptr<ExchangePath>> paths_;
  std::vector<std::unique_ptr<LiveDocument>> documents_;
  std::set<const LiveDocument*> touched_;
  int documentsAdded_ = 0;
  std::deque<std::string> lines_;
  std::map<std::string, int> made_;
  std::set<std::string> outcomes_;
};

inline void* handleOf(const LiveDocument* document) {
  return document == nullptr ? nullptr : document->handle;
}

/// The model of a document; null for none.
const DocumentModel* modelOf(const LiveDocument* document);

inline const char* pointerTo(const std::optional<std::string>& text) {
  return text ? text->c_str() : nullptr;
}

/// A text for an identification string: none, short, just fitting or too long.
std::optional<std::string> anyText(Random& random);

/// One of the common names; rarely one that cannot be written, which would spoil most files.
const std::string& anyName(Random& random);

/// A kind of entity; now and then a number that is none.
ORVML_TYPE_OF_ENTITY anyEntity(Random& random);

/// Tells whether a caller may say that a document has so many nodes of such a dimension: its array
/// must reach. A missing array is none that could be too short.
bool coordinatesReach(const NodesModel& nodes, int count, int dimension);

}  // namespace orvml_io_tests
