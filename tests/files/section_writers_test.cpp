// The members that write one section of a document, where the exported functions do not reach:
// file identifiers that are none, groups that exist, paths that are too long, other versions.
#include "files/exchange_file_fixture.h"
#include "hdf5/silence.h"
#include "model/document.h"
#include "model/limits.h"
#include "support/group_at.h"

namespace orvml_io_tests {
namespace {

using orvml_io::documentOf;
using orvml_io::Elems;
using orvml_io::Nodes;
using orvml_io::OML_AttributesVector;
using orvml_io::OrvInputAndOrvOutput;

using orvml_io::kLongestPath;
using orvml_io::OpenGroup;

/// The absolute path of a group whose name fills the path up to a length.
std::string groupOfLength(std::size_t length) { return "/" + std::string(length - 1, 'g'); }

/// An attribute store with one vector of each type.
class FilledStore {
 public:
  FilledStore() {
    const int i = 1;
    const double d = 2;
    store_.Set("i", &i, 1, false);
    store_.Set("d", &d, 1, false);
  }
  FilledStore(const FilledStore&) = delete;
  FilledStore& operator=(const FilledStore&) = delete;
  FilledStore(FilledStore&&) = delete;
  FilledStore& operator=(FilledStore&&) = delete;
  ~FilledStore() { store_.DeleteAll(); }
  [[nodiscard]] OML_AttributesVector& get() noexcept { return store_; }

 private:
  OML_AttributesVector store_;
};

class SectionWriters : public ExchangeFileTest {
 protected:
  [[nodiscard]] OrvInputAndOrvOutput& document() { return *documentOf(built_.handle()); }
  [[nodiscard]] OpenGroup root() const { return {file_.id(), 0}; }
  [[nodiscard]] GroupAt at(const std::string& path) const { return {file_.id(), path}; }
  /// A group that could not be opened.
  [[nodiscard]] static OpenGroup noGroup() { return {-1, 0}; }

  BuiltDocument built_ = fullDocument();
  RawFile file_ = RawFile::create(path());
  // Exported functions silence HDF5 for the members that they call.
  orvml_io::Silence silence_;
};

TEST_F(SectionWriters, GroupThatIsNotOpenGivesOne) {
  EXPECT_EQ(document().nodes->Write(noGroup(), 3), 1);
  EXPECT_EQ(document().faces->Write(noGroup(), "/F"), 1);
  EXPECT_EQ(document().WriteParametersVector(noGroup(), "1.4"), 1);
}

TEST_F(SectionWriters, GroupThatIsNotOpenGivesOneForAContainerWithoutTypeGroupsToo) {
  const Elems empty;

  EXPECT_EQ(empty.Write(noGroup(), "/F"), 1);
  EXPECT_EQ(empty.Write(root(), "/F"), 0);
}

TEST_F(SectionWriters, ExistingDocumentGroupIsUsedAsItIs) {
  file_.group("/OrvInput");
  file_.group("/OrvInput/other");

  EXPECT_EQ(document().WriteCommonPart(file_.id(), "/OrvInput", "1.4"), 0);

  EXPECT_TRUE(file_.has("/OrvInput/other"));
  EXPECT_TRUE(file_.has("/OrvInput/dimension"));
}

TEST_F(SectionWriters, ExistingContainerGroupsAreUsedAsTheyAre) {
  for (const char* group : {"/Nodes", "/Nodes/Attributes", "/F", "/F/Attributes"}) {
    file_.group(group);
  }

  EXPECT_EQ(document().nodes->Write(root(), 3), 0);
  EXPECT_EQ(document().faces->Write(root(), "/F"), 0);

  EXPECT_TRUE(file_.has("/Nodes/Attributes/size"));
  EXPECT_TRUE(file_.has("/F/Attributes/surface"));
}

TEST_F(SectionWriters, ExistingDatasetGivesOne) {
  file_.group("/F");
  file_.intVector("/F/element_types", {1});

  EXPECT_EQ(document().faces->Write(root(), "/F"), 1);

  EXPECT_TRUE(file_.has("/F/connectivities"));
}

TEST_F(SectionWriters, SecondDocumentInTheSameGroupGivesOne) {
  ASSERT_EQ(document().WriteCommonPart(file_.id(), "/OrvInput", "1.4"), 0);

  EXPECT_EQ(document().WriteCommonPart(file_.id(), "/OrvInput", "1.4"), 1);
}

TEST_F(SectionWriters, EmptyStoreMakesNoGroup) {
  EXPECT_EQ(OML_AttributesVector().HDF5Write(root(), "/A"), 0);

  EXPECT_FALSE(file_.has("/A"));
}

TEST_F(SectionWriters, EntryOfAnUnknownCodeGivesOneAfterTheEntriesBefore) {
  FilledStore store;
  store.get().SetZeros("j", 'x', 1, false);

  EXPECT_EQ(store.get().HDF5Write(root(), "/A"), 1);

  EXPECT_EQ(file_.members("/A"), (Names{"d", "i"}));
}

TEST_F(SectionWriters, VersionBelowTheNamedFormatWritesPositionsInsteadOfNames) {
  file_.group("/G");

  EXPECT_EQ(document().WriteParametersScalar(at("/G"), "1.3"), 0);
  EXPECT_EQ(document().WriteParametersVector(at("/G"), "1.3"), 0);

  EXPECT_EQ(file_.members("/G"), (Names{"GenericAttributes", "GenericMarkers", "parameters"}));
  EXPECT_EQ(file_.doubles("/G/parameters"), (std::vector<double>{40.0, 0.25}));
}

class NamedVersion : public SectionWriters, public ::testing::WithParamInterface<const char*> {};

TEST_P(NamedVersion, WritesNames) {
  file_.group("/G");

  EXPECT_EQ(document().WriteParametersScalar(at("/G"), GetParam()), 0);
  EXPECT_EQ(document().WriteParametersVector(at("/G"), GetParam()), 0);

  EXPECT_EQ(file_.members("/G"), (Names{"ParametersVector", "parameters"}));
  EXPECT_EQ(file_.shape("/G/parameters").typeClass, H5T_COMPOUND);
}

// Versions are compared as numbers.
INSTANTIATE_TEST_SUITE_P(FromOnePointFourOn, NamedVersion,
                         ::testing::Values("1.4", "1.40", "1.4.9", "1.5", "2", "2.0", "10.0"));

TEST_F(SectionWriters, DocumentGroupMayFillThePathUpToTheLongestOfItsMembers) {
  const std::string group = groupOfLength(kLongestPath - std::string("/ParametersVector").size());
  const BuiltDocument empty = BuiltDocument::input(3);

  EXPECT_EQ(documentOf(empty.handle())->WriteCommonPart(file_.id(), group.c_str(), "1.4"), 0);
  EXPECT_TRUE(file_.has(group + "/dimension"));
}

TEST_F(SectionWriters, DocumentGroupThatLeavesNoRoomForTheDimensionGivesOne) {
  const std::string group = groupOfLength(kLongestPath + 1 - std::string("/dimension").size());
  const BuiltDocument empty = BuiltDocument::input(3);

  EXPECT_EQ(documentOf(empty.handle())->WriteCommonPart(file_.id(), group.c_str(), "1.4"), 1);
  EXPECT_EQ(file_.members(group), Names{});
}

/// A sub-path that the writer glues to the path of a group.
struct Suffix {
  const char* name;
  const char* text;
  int (*write)(OrvInputAndOrvOutput&, const OpenGroup&);

  friend std::ostream& operator<<(std::ostream& stream, const Suffix& suffix) {
    return stream << suffix.text;
  }
};

class LongestPath : public SectionWriters, public ::testing::WithParamInterface<Suffix> {
 protected:
  [[nodiscard]] std::string groupThatLeaves(std::size_t room) {
    return groupOfLength(kLongestPath - room);
  }
};

TEST_P(LongestPath, OfAMemberIsWritten) {
  const std::string group = groupThatLeaves(std::string(GetParam().text).size());
  file_.group(group);

  EXPECT_EQ(GetParam().write(document(), at(group)), 0);

  EXPECT_TRUE(file_.has(group + GetParam().text));
}

TEST_P(LongestPath, WithOneByteMoreGivesOne) {
  const std::string group = groupThatLeaves(std::string(GetParam().text).size() - 1);
  file_.group(group);

  EXPECT_EQ(GetParam().write(document(), at(group)), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Each, LongestPath,
    ::testing::Values(Suffix{"Table", "/parameters",
                             [](OrvInputAndOrvOutput& document, const OpenGroup& group) {
                               return document.WriteParametersScalar(group, "1.4");
                             }},
                      Suffix{"VectorParameter", "/ParametersVector/volumes_sizes",
                             [](OrvInputAndOrvOutput& document, const OpenGroup& group) {
                               return document.WriteParametersVector(group, "1.4");
                             }},
                      Suffix{"Coordinates", "/Nodes/Attributes/forced",
                             [](OrvInputAndOrvOutput& document, const OpenGroup& group) {
                               document.nodes->attributes.Delete("size");
                               return document.WriteNodes(group);
                             }},
                      Suffix{"CellsPerGroup", "/Edges/number_of_nodes_by_element",
                             [](OrvInputAndOrvOutput& document, const OpenGroup& group) {
                               document.edges->attributes.DeleteAll();
                               return document.WriteEdges(group);
                             }},
                      Suffix{"CellAttribute", "/Elements/Attributes/an_attribute_of_a_long_name",
                             [](OrvInputAndOrvOutput& document, const OpenGroup& group) {
                               const int value = 1;
                               document.elements->attributes.Set("an_attribute_of_a_long_name",
                                                                 &value, 1, false);
                               return document.WriteElements(group);
                             }}),
    RowName());

TEST_F(SectionWriters, PathThatIsFarTooLongGivesOneEverywhere) {
  const std::string path = groupOfLength(5000);
  file_.group(path);
  const GroupAt group = at(path);

  EXPECT_EQ(document().WriteNodes(group), 1);
  EXPECT_EQ(document().WriteEdges(group), 1);
  EXPECT_EQ(document().WriteFaces(group), 1);
  EXPECT_EQ(document().WriteElements(group), 1);
  EXPECT_EQ(document().WriteParametersScalar(group, "1.4"), 1);
  EXPECT_EQ(document().WriteParametersVector(group, "1.4"), 1);
}

}  // namespace
}  // namespace orvml_io_tests
