// Equal content has equal fingerprints; one bit of content makes another one, in its part alone.
#include <orvml/orvml.hpp>

#include "cpp_files/sample.h"
#include "hostile/valid_files.h"
#include "orvml_io.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <set>

namespace orvml_io_tests {
namespace {

using orvml::Digest;
using orvml::Fingerprint;
using orvml::Shape;

struct Values {
  std::vector<int> ints;
  std::vector<double> doubles;  // when there are no ints
  bool holdsInts = true;
  bool flag = false;
};

using Vectors = std::map<std::string, Values>;

struct Group {
  int shape;
  int nodesPerCell;
  std::vector<int> indices;
};

struct Cells {
  std::vector<Group> groups;
  Vectors attributes;
};

/// A content of which everything can be changed, whether it makes sense or not.
struct Content {
  std::string module = "module";
  std::string version = "1.0";
  std::string creator = "creator";
  int dimension = 2;
  bool isInput = true;
  std::vector<double> coordinates = {0, 0.5, 1, -0.0, 2, 3};
  Vectors nodeAttributes;
  Cells cells[3];
  std::map<std::string, double> parameters = {{"a", 1}, {"bc", -2.5}};
  Vectors vectors;

  Content() {
    const Vectors three = {{"ints", {{1, 2, 3}, {}, true, false}},
                           {"kept", {{}, {0.25, 4, -1}, false, true}}};
    nodeAttributes = three;
    vectors = three;
    vectors["kept"].flag = false;
    for (Cells& one : cells) {
      one.groups = {{2, 2, {0, 1, 1, 2}}, {3, 3, {0, 1, 2}}};
      one.attributes = three;
    }
  }
};

orvml::Attributes viewOf(const Vectors& vectors) {
  std::vector<orvml::Attribute> views;
  for (const auto& [name, values] : vectors) {
    const std::string_view view = name;
    if (values.holdsInts) {
      views.emplace_back(view, std::span<const int>(values.ints), values.flag);
    } else {
      views.emplace_back(view, std::span<const double>(values.doubles), values.flag);
    }
  }
  return orvml::Attributes(std::move(views));
}

orvml::CellsView viewOf(const Cells& cells) {
  std::vector<orvml::CellGroup> groups;
  for (const Group& group : cells.groups) {
    groups.emplace_back(static_cast<Shape>(group.shape), group.nodesPerCell,
                        std::span<const int>(group.indices));
  }
  return orvml::CellsView(std::move(groups), viewOf(cells.attributes));
}

Fingerprint fingerprintOf(const Content& content) {
  std::vector<orvml::Parameter> parameters;
  for (const auto& [name, value] : content.parameters) {
    parameters.emplace_back(std::string_view(name), value);
  }
  const orvml::DocumentParts parts = {
      .identification = {content.module, content.version, content.creator},
      .dimension = content.dimension,
      .nodes =
          orvml::NodesView(content.coordinates, content.dimension, viewOf(content.nodeAttributes)),
      .edges = viewOf(content.cells[0]),
      .faces = viewOf(content.cells[1]),
      .elements = viewOf(content.cells[2]),
      .parameters = orvml::Parameters(std::move(parameters)),
      .vectorParameters = viewOf(content.vectors)};
  return content.isInput ? fingerprint(orvml::InputView(parts))
                         : fingerprint(orvml::OutputView(parts));
}

using Part = Digest Fingerprint::*;

constexpr Part kParts[] = {
    &Fingerprint::identification, &Fingerprint::nodes,           &Fingerprint::edges,
    &Fingerprint::faces,          &Fingerprint::elements,        &Fingerprint::nodeAttributes,
    &Fingerprint::edgeAttributes, &Fingerprint::faceAttributes,  &Fingerprint::elementAttributes,
    &Fingerprint::parameters,     &Fingerprint::vectorParameters};
constexpr Part kCells[] = {&Fingerprint::edges, &Fingerprint::faces, &Fingerprint::elements};
constexpr Part kCellAttributes[] = {&Fingerprint::edgeAttributes, &Fingerprint::faceAttributes,
                                    &Fingerprint::elementAttributes};

/// Changes contents one after the other, and sees that each gives a document of its own.
class ChangedContent : public ::testing::Test {
 protected:
  /// Expects that a change shows in these parts, in the document and nowhere else.
  void change(const std::vector<Part>& parts, const std::function<void(Content&)>& change) {
    Content content;
    change(content);
    const Fingerprint changed = fingerprintOf(content);
    for (const Part part : kParts) {
      const bool isMeant = std::find(parts.begin(), parts.end(), part) != parts.end();
      EXPECT_EQ(changed.*part != original_.*part, isMeant) << count_;
    }
    EXPECT_TRUE(digests_.insert(changed.document).second) << "change " << count_;
    ++count_;
  }

  /// Changes each bit of an object that lies in a content.
  void changeBits(Part part, std::size_t bytes, const std::function<void*(Content&)>& place) {
    for (std::size_t bit = 0; bit < 8 * bytes; ++bit) {
      change({part}, [&](Content& content) {
        auto* changed = static_cast<unsigned char*>(place(content)) + bit / 8;
        *changed = static_cast<unsigned char>(*changed ^ (1U << bit % 8));
      });
    }
  }

  /// Changes each bit of a text that is found in a content.
  void changeText(Part part, const std::function<std::string&(Content&)>& text) {
    Content content;
    changeBits(part, text(content).size(), [&](Content& made) { return text(made).data(); });
    change({part}, [&](Content& made) { text(made) += 'x'; });
    change({part}, [&](Content& made) { text(made).pop_back(); });
  }

  /// Changes each bit of values, names and flags, and how many there are.
  void changeVectors(Part part, const std::function<Vectors&(Content&)>& of,
                     bool haveFlags = true) {
    changeBits(part, 3 * sizeof(int), [&](Content& made) { return of(made)["ints"].ints.data(); });
    changeBits(part, 3 * sizeof(double),
               [&](Content& made) { return of(made)["kept"].doubles.data(); });
    for (const char* name : {"ints", "kept"}) {
      for (std::size_t bit = 0; bit < 8 * std::strlen(name); ++bit) {
        change({part}, [&](Content& made) {
          auto node = of(made).extract(name);
          char& changed = node.key()[bit / 8];
          changed = static_cast<char>(changed ^ (1 << bit % 8));
          of(made).insert(std::move(node));
        });
      }
      change({part}, [&](Content& made) { of(made).erase(name); });
      if (haveFlags) {
        change({part}, [&](Content& made) { of(made)[name].flag = !of(made)[name].flag; });
      }
    }
    change({part}, [&](Content& made) { of(made)["ints"].ints.pop_back(); });
    change({part}, [&](Content& made) { of(made)["kept"].doubles.push_back(0); });
    change({part}, [&](Content& made) { of(made)["none"] = {}; });
    change({part}, [&](Content& made) { of(made)["none"] = {{}, {}, false, false}; });
    // The same bytes as values of the other type.
    change({part}, [&](Content& made) {
      Values& values = of(made)["kept"];
      values.ints.resize(6);
      std::memcpy(values.ints.data(), values.doubles.data(), 6 * sizeof(int));
      values.holdsInts = true;
    });
  }

  Fingerprint original_ = fingerprintOf(Content());
  std::set<Digest> digests_ = {original_.document};
  int count_ = 0;
};

TEST_F(ChangedContent, ShowsInEveryBitOfTheIdentification) {
  changeText(
      &Fingerprint::identification, [](Content & made) -> auto& { return made.module; });
  changeText(
      &Fingerprint::identification, [](Content & made) -> auto& { return made.version; });
  changeText(
      &Fingerprint::identification, [](Content & made) -> auto& { return made.creator; });
  change({&Fingerprint::identification}, [](Content& made) { made.isInput = false; });
  change({&Fingerprint::identification}, [](Content& made) {
    made.module += made.version[0];  // moves the border between two texts
    made.version.erase(0, 1);
  });
}

TEST_F(ChangedContent, ShowsInEveryBitOfTheNodes) {
  changeBits(&Fingerprint::nodes, 6 * sizeof(double),
             [](Content& made) { return made.coordinates.data(); });
  change({&Fingerprint::nodes, &Fingerprint::identification},
         [](Content& made) { made.dimension = 3; });
  change({&Fingerprint::nodes}, [](Content& made) { made.coordinates.resize(8); });
  change({&Fingerprint::nodes}, [](Content& made) { made.coordinates.resize(4); });
}

TEST_F(ChangedContent, ShowsInEveryBitOfTheCells) {
  for (std::size_t kind = 0; kind < 3; ++kind) {
    const Part part = kCells[kind];
    for (const std::size_t group : {0U, 1U}) {
      changeBits(part, sizeof(int),
                 [&](Content& made) { return &made.cells[kind].groups[group].shape; });
      changeBits(part, (group == 0 ? 4 : 3) * sizeof(int),
                 [&](Content& made) { return made.cells[kind].groups[group].indices.data(); });
    }
    const auto groups = [](Content & made, std::size_t of) -> auto& {
      return made.cells[of].groups;
    };
    change({part}, [&](Content& made) { groups(made, kind)[0].nodesPerCell = 4; });
    change({part}, [&](Content& made) { groups(made, kind)[0].nodesPerCell = 1; });
    change({part}, [&](Content& made) { groups(made, kind)[1].nodesPerCell = 1; });
    change({part}, [&](Content& made) { groups(made, kind)[0].indices.resize(2); });
    change({part}, [&](Content& made) { groups(made, kind).pop_back(); });
    change({part}, [&](Content& made) { groups(made, kind).push_back({1, 2, {}}); });
    change({part}, [&](Content& made) { std::swap(groups(made, kind)[0], groups(made, kind)[1]); });
  }
}

TEST_F(ChangedContent, ShowsInEveryBitOfTheAttributes) {
  changeVectors(
      &Fingerprint::nodeAttributes, [](Content & made) -> auto& { return made.nodeAttributes; });
  for (std::size_t kind = 0; kind < 3; ++kind) {
    changeVectors(
        kCellAttributes[kind], [&](Content & made) -> auto& {
          return made.cells[kind].attributes;
        });
  }
}

TEST_F(ChangedContent, ShowsInEveryBitOfTheParameters) {
  changeBits(&Fingerprint::parameters, sizeof(double),
             [](Content& made) { return &made.parameters["a"]; });
  changeBits(&Fingerprint::parameters, sizeof(double),
             [](Content& made) { return &made.parameters["bc"]; });
  change({&Fingerprint::parameters}, [](Content& made) { made.parameters.erase("a"); });
  change({&Fingerprint::parameters}, [](Content& made) { made.parameters["c"] = 0; });
  change({&Fingerprint::parameters}, [](Content& made) {
    made.parameters = {{"ab", 1}, {"c", -2.5}};  // moves the border between two names
  });
  changeVectors(
      &Fingerprint::vectorParameters, [](Content & made) -> auto& { return made.vectors; }, false);
}

TEST_F(ChangedContent, DoesNotShowWhereNothingIsChanged) {
  Content content;
  content.vectors["kept"].flag = true;  // which means nothing there

  EXPECT_EQ(fingerprintOf(content), original_);
}

TEST(EqualContent, HasTheSameFingerprintAfterAllThatKeepsIt) {
  const OpenIds ids;
  const TempFile saved;
  const TempFile written;
  orvml::Input made = inputWithEverything();
  const Fingerprint expected = fingerprint(made.view());
  orvml::save(saved.path(), made);
  ASSERT_EQ(OrvML_IO_WriteOrvInput(written.path(), orvml::handle(made)), 0);
  const orvml::Input copy = made.clone();
  const orvml::Input loaded = orvml::loadInput(saved.path());
  const orvml::Input ofFlatFile = orvml::loadInput(written.path());

  EXPECT_EQ(fingerprint(copy.view()), expected);
  EXPECT_EQ(fingerprint(loaded.view()), expected);
  EXPECT_EQ(fingerprint(ofFlatFile.view()), expected);
  const orvml::MappedFile mapped(saved.path());
  EXPECT_EQ(fingerprint(mapped.input()), expected);
}

// The flat readers find no flags, by contract.
TEST(EqualContent, LosesItsFlagsThroughAFlatReaderAndNothingElse) {
  const OpenIds ids;
  const TempFile saved;
  orvml::Input made = inputWithEverything();
  orvml::save(saved.path(), made);
  void* handle = nullptr;
  ASSERT_EQ(OrvML_IO_ReadOrvInput(saved.path(), handle), 0);
  const orvml::Input adopted = orvml::adoptInput(handle);
  const Fingerprint expected = fingerprint(made.view());
  const Fingerprint found = fingerprint(adopted.view());

  for (const Part part : kParts) {
    const bool carriesFlags =
        part == &Fingerprint::nodeAttributes || part == &Fingerprint::edgeAttributes ||
        part == &Fingerprint::faceAttributes || part == &Fingerprint::elementAttributes;
    EXPECT_EQ(found.*part != expected.*part, carriesFlags);
  }
}

TEST(EqualContent, OfAnOldFileStaysWhenItIsSavedInThePresentFormat) {
  for (const ValidFile& file : validFiles()) {
    SCOPED_TRACE(file.name);
    const TempFile old;
    const TempFile renewed;
    file.make(old.path());
    const orvml::Loaded loaded = orvml::load(old.path(), {.policy = orvml::Policy::tolerant});
    ASSERT_TRUE(loaded.input.has_value());
    try {
      orvml::save(renewed.path(), *loaded.input);
    } catch (const orvml::Error& error) {
      EXPECT_EQ(error.code(), orvml::Code::nameNotAllowed) << error.what();  // old names
      continue;
    }
    EXPECT_EQ(digestAt(renewed.path()), digestOf(*loaded.input));
  }
}

TEST(DigestTexts, HaveThirtyTwoDigitsTheMostSignificantFirst) {
  Digest digest;
  digest.bytes[0] = 0xf0;
  digest.bytes[15] = 0x0e;

  EXPECT_EQ(digest.text(), "f000000000000000000000000000000e");
}

}  // namespace
}  // namespace orvml_io_tests
