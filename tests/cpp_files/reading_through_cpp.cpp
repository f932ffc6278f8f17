#include "cpp_files/reading_through_cpp.h"

#include <orvml/orvml.hpp>

#include "cpp_files/every_view.h"
#include "cpp_files/sample.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

namespace orvml_io_tests {

namespace {

using orvml::Code;
using orvml::Fingerprint;
using orvml::Policy;

/// What a way to read gave: the fingerprints of the documents, or the error.
struct Gained {
  std::optional<Fingerprint> input;
  std::optional<Fingerprint> output;
  std::optional<Code> error;
  std::string sentence;

  /// The sentence tells nothing about what was gained.
  friend bool operator==(const Gained& a, const Gained& b) {
    return a.input == b.input && a.output == b.output && a.error == b.error;
  }
  friend std::ostream& operator<<(std::ostream& stream, const Gained& gained) {
    if (gained.error) {
      return stream << text(*gained.error) << ", " << gained.sentence;
    }
    return stream << (gained.input ? gained.input->document.text() : "no input") << " and "
                  << (gained.output ? gained.output->document.text() : "no output");
  }
};

/// Nothing may be open after a piece of work that was not open before.
class NothingLeftOpen {
 public:
  explicit NothingLeftOpen(const char* work) : work_(work), descriptors_(openDescriptors()) {}
  NothingLeftOpen(const NothingLeftOpen&) = delete;
  NothingLeftOpen& operator=(const NothingLeftOpen&) = delete;
  NothingLeftOpen(NothingLeftOpen&&) = delete;
  NothingLeftOpen& operator=(NothingLeftOpen&&) = delete;
  ~NothingLeftOpen() {
    EXPECT_EQ(ids_.opened(), IdCounts()) << work_;
    EXPECT_EQ(openDescriptors(), descriptors_) << work_;
  }

 private:
  const char* work_;
  OpenIds ids_;
  std::ptrdiff_t descriptors_;
};

Fingerprint usedUpView(const orvml::DocumentView& view) {
  (void)touchEverything(view);
  return fingerprint(view);
}

/// Uses a document and a copy of it.
template <class Document>
Fingerprint usedUp(const Document& document) {
  const Fingerprint whole = usedUpView(document.view());
  const Document copy = document.clone();
  EXPECT_EQ(whole.document.text(), usedUpView(copy.view()).document.text());
  return whole;
}

/// Does work that may throw an Error about a file and nothing else.
template <class Work>
Gained gainedFrom(const char* path, const char* what, const Work& work) {
  const NothingLeftOpen nothing(what);
  Gained gained;
  try {
    work(gained);
  } catch (const orvml::Error& error) {
    gained = {{}, {}, error.code(), error.sentence()};
    EXPECT_EQ(error.file(), path);
    EXPECT_FALSE(error.sentence().empty());
    EXPECT_EQ(error.what(), std::string(path) + ": " + error.sentence());
  }
  return gained;
}

void expectTold(const std::vector<orvml::Finding>& findings) {
  for (const orvml::Finding& finding : findings) {
    EXPECT_FALSE(finding.object.empty());
    EXPECT_EQ(finding.sentence.find(finding.object), 0U) << finding.sentence;
  }
}

Gained gainedByLoad(const char* path, const orvml::LoadOptions& options,
                    std::optional<orvml::Loaded>& kept) {
  return gainedFrom(path, "load", [&](Gained& gained) {
    orvml::Loaded loaded = orvml::load(path, options);
    expectTold(loaded.findings);
    if (loaded.input) {
      gained.input = usedUp(*loaded.input);
    }
    if (loaded.output) {
      gained.output = usedUp(*loaded.output);
    }
    kept = std::move(loaded);
  });
}

Gained gainedByMapping(const char* path, Policy policy) {
  return gainedFrom(path, "MappedFile", [&](Gained& gained) {
    const orvml::MappedFile file(path, policy);
    for (const orvml::ReadArray& array : file.readArrays()) {
      EXPECT_FALSE(array.object.empty());
      EXPECT_FALSE(array.reason.empty());
    }
    if (file.hasInput()) {
      gained.input = usedUpView(file.input());
    }
    if (file.hasOutput()) {
      gained.output = usedUpView(file.output());
    }
  });
}

template <class Cells>
void expectSameCells(const orvml::CellsDescription& told, const Cells& cells) {
  // Cells whose groups could not be read are counted, and not shown.
  if (!cells.groups().empty()) {
    EXPECT_EQ(told.size, cells.size());
    EXPECT_EQ(told.groups.size(), cells.groups().size());
    EXPECT_EQ(told.attributes.size(), cells.attributes().size());
  }
}

template <class Loaded>
void expectSameFacts(const std::optional<orvml::DocumentDescription>& told,
                     const std::optional<Loaded>& loaded) {
  ASSERT_EQ(told.has_value(), loaded.has_value());
  if (!loaded) {
    return;
  }
  EXPECT_EQ(told->kind, loaded->kind());
  EXPECT_EQ(told->moduleName, loaded->identification().moduleName);
  EXPECT_EQ(told->creator, loaded->identification().creator);
  EXPECT_EQ(told->dimension, loaded->dimension());
  EXPECT_EQ(told->nodes.size, loaded->nodes().size());
  expectSameCells(told->edges, loaded->edges());
  expectSameCells(told->faces, loaded->faces());
  expectSameCells(told->elements, loaded->elements());
  EXPECT_EQ(told->parameters.size(), loaded->parameters().size());
  EXPECT_EQ(told->vectorParameters.size(), loaded->vectorParameters().size());
}

/// Whether something was lost for that reason.
bool hasLost(const std::optional<orvml::Loaded>& loaded, Code reason) {
  return loaded && std::any_of(loaded->findings.begin(), loaded->findings.end(),
                               [&](const auto& finding) { return finding.code == reason; });
}

/// What describes a file reads no large values: what cannot be read, or takes too much memory,
/// looks whole to it.
bool isWholeToDescribe(const std::optional<orvml::Loaded>& loaded) {
  return loaded && !hasLost(loaded, Code::objectUnreadable) &&
         !hasLost(loaded, Code::memoryOutOfProportion);
}

void expectDescribed(const char* path, const Gained& tolerant,
                     const std::optional<orvml::Loaded>& loaded) {
  const Gained described = gainedFrom(path, "describe", [&](Gained& /*gained*/) {
    const orvml::Description description = orvml::describe(path);
    expectTold(description.findings);
    if (isWholeToDescribe(loaded)) {
      expectSameFacts(description.input, loaded->input);
      expectSameFacts(description.output, loaded->output);
    }
  });
  const bool isNoFile = tolerant.error && *tolerant.error != Code::noDocument;
  EXPECT_EQ(described.error, isNoFile ? tolerant.error : std::nullopt) << described.sentence;
}

/// Saves what was loaded and loads it again; it is refused where a part of it could not be read.
template <class Document>
void expectSaved(const Document& document) {
  const TempFile temp;
  bool isSaved = false;
  (void)gainedFrom(temp.path(), "save", [&](Gained& /*gained*/) {
    try {
      orvml::save(temp.path(), document, {.flush = false});
      isSaved = true;
    } catch (const orvml::Error& error) {
      // What a view cannot hold concerns no file.
      EXPECT_TRUE(error.file().empty()) << error.what();
      EXPECT_TRUE(error.code() == Code::sizesDisagree || error.code() == Code::nameTooLong ||
                  error.code() == Code::nameNotAllowed)
          << error.what();
    }
  });
  if (!isSaved) {
    EXPECT_FALSE(std::filesystem::exists(temp.path()));
    return;
  }
  std::optional<orvml::Loaded> again;
  const Gained gained = gainedByLoad(temp.path(), {}, again);
  const bool isInput = document.kind() == orvml::Kind::input;
  EXPECT_EQ(isInput ? gained.input : gained.output, fingerprint(document.view())) << gained;
}

/// A document may lack nodes and scalar parameters here; the flat readers answer 1 then.
template <class Document>
void expectFlatSuccess(const std::optional<Document>& document, const Reading& flat) {
  if (document && document->nodes().size() > 0 && !document->parameters().empty()) {
    EXPECT_EQ(flat.status, 0) << "what is strictly whole is whole to the flat reader";
  }
}

void expectAgreement(const Gained& strict, const std::optional<orvml::Loaded>& loaded,
                     const Gained& tolerant, const std::optional<orvml::Loaded>& withFindings,
                     const Readings& flat) {
  EXPECT_EQ(tolerant.input.has_value(), flat.input.hasDocument) << tolerant;
  EXPECT_EQ(tolerant.output.has_value(), flat.output.hasDocument) << tolerant;
  if (!strict.error) {
    EXPECT_EQ(strict, tolerant);
    expectFlatSuccess(loaded->input, flat.input);
    expectFlatSuccess(loaded->output, flat.output);
  } else if (!tolerant.error) {
    EXPECT_FALSE(withFindings->findings.empty()) << strict;
  } else {
    EXPECT_EQ(strict.error, tolerant.error);
  }
}

}  // namespace

void readInEveryWayOfCpp(const char* path, const Readings& flat) {
  std::optional<orvml::Loaded> whole;
  const Gained strict = gainedByLoad(path, {}, whole);
  std::optional<orvml::Loaded> loaded;
  const Gained tolerant = gainedByLoad(path, {.policy = Policy::tolerant, .threads = 2}, loaded);
  expectAgreement(strict, whole, tolerant, loaded, flat);
  const Gained strictlyMapped = gainedByMapping(path, Policy::strict);
  const Gained mapped = gainedByMapping(path, Policy::tolerant);
  // Mapped arrays take no memory, so that none is out of proportion.
  if (!hasLost(loaded, Code::memoryOutOfProportion)) {
    EXPECT_EQ(strictlyMapped, strict);
    EXPECT_EQ(mapped, tolerant);
  }
  expectDescribed(path, tolerant, loaded);
  if (loaded && loaded->input) {
    expectSaved(*loaded->input);
  }
  if (loaded && loaded->output) {
    expectSaved(*loaded->output);
  }
}

}  // namespace orvml_io_tests
