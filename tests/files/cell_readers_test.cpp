// Reading cells where the readers of whole documents do not reach, and next to cells that fail.
#include "files/exchange_file_fixture.h"
#include "hdf5/source_file.h"
#include "model/document.h"
#include "support/group_at.h"

namespace orvml_io_tests {
namespace {

class CellReaders : public ExchangeFileTest {};

TEST_F(CellReaders, NegativeFileGivesOne) {
  orvml_io::Elems elems;
  orvml_io::SourceFile none(-1);

  EXPECT_EQ(elems.Read(none, none.root(), "/F", "1.4", ORVML_FACES), 1);
  EXPECT_EQ(elems.ReadAttributes(none, none.root(), 1, "1.4", ORVML_FACES), 1);
}

TEST_F(CellReaders, NoTypeGroupsEndTheReadingWhateverTheContainerHeld) {
  RawFile file = RawFile::create(path());
  file.group("/F");
  file.intVector("/F/element_types", {});
  orvml_io::Elems elems;
  elems.numberOfElements = 2;
  orvml_io::SourceFile source(file.id());

  EXPECT_EQ(elems.Read(source, source.root(), "/F", "1.4", ORVML_FACES), 0);
}

TEST_F(CellReaders, PathThatIsTooLongGivesOne) {
  RawFile file = RawFile::create(path());
  const BuiltDocument built = BuiltDocument::input(3);
  orvml_io::OrvInputAndOrvOutput& document = *orvml_io::documentOf(built.handle());
  const std::string path = "/" + std::string(2000, 'g');
  for (const char* member : {"", "/Edges", "/Faces", "/Elements"}) {
    file.group(path + member);
  }
  const GroupAt group(file.id(), path);
  orvml_io::SourceFile source(file.id());

  EXPECT_EQ(document.ReadEdges(source, group), 1);
  EXPECT_EQ(document.ReadFaces(source, group), 1);
  EXPECT_EQ(document.ReadElements(source, group), 1);
}

/// The result of reading cells from a group whose path leaves some bytes to the names in it.
class CellsInALongPath : public ExchangeFileTest,
                         public ::testing::WithParamInterface<std::size_t> {};

TEST_P(CellsInALongPath, GiveOneWhenANameDoesNotFit) {
  RawFile file = RawFile::create(path());
  const std::string group = "/" + std::string(1022 - GetParam(), 'g');
  file.elements(group, {1}, {TRIANGLE}, {3}, {0, 1, 2});
  orvml_io::Elems elems;
  orvml_io::SourceFile source(file.id());

  EXPECT_EQ(elems.Read(source, source.root(), group.c_str(), "1.4", ORVML_FACES), 1);

  elems.DeleteContent();
  elems.DeleteAuxiliarContent();
}

// No room for "/element_types", and room for that but not for "/number_of_elements_by_type".
INSTANTIATE_TEST_SUITE_P(RoomFor, CellsInALongPath, ::testing::Values(0, 13, 14, 26));

TEST_F(CellReaders, FailureInOneKindLeavesTheOtherKindsRead) {
  BuiltDocument built = fullDocument();
  written(built).close();
  const hid_t id = H5Fopen(path(), H5F_ACC_RDWR, H5P_DEFAULT);
  ASSERT_GE(H5Ldelete(id, "/OrvInput/Edges/connectivities", H5P_DEFAULT), 0);
  H5Fclose(id);

  const ReadDocument document = readInput(path());

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(connectivitiesOf(document.handle(), ORVML_EDGES), std::vector<int>{});
  EXPECT_EQ(connectivitiesOf(document.handle(), ORVML_FACES),
            connectivitiesOf(built.handle(), ORVML_FACES));
  EXPECT_EQ(connectivitiesOf(document.handle(), ORVML_ELEMENTS),
            connectivitiesOf(built.handle(), ORVML_ELEMENTS));
}

}  // namespace
}  // namespace orvml_io_tests
