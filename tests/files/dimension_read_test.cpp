// The dimension decides whether a document is kept.
#include "files/exchange_file_fixture.h"
#include "hdf5/silence.h"
#include "hdf5/source_file.h"
#include "model/document.h"
#include "support/group_at.h"

namespace orvml_io_tests {
namespace {

constexpr char kInputDimension[] = "/OrvInput/dimension";
constexpr char kOutputDimension[] = "/OrvOutput/dimension";

class AcceptedDimension : public ExchangeFileTest, public ::testing::WithParamInterface<int> {};

TEST_P(AcceptedDimension, KeepsTheDocument) {
  RawFile file = smallInput();
  replaceInts(file, kInputDimension, {GetParam()});

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetMeshDimension(document.handle()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(TwoAndThree, AcceptedDimension, ::testing::Values(2, 3));

class RejectedDimension : public ExchangeFileTest, public ::testing::WithParamInterface<int> {};

TEST_P(RejectedDimension, MakesAnInputFailWithoutADocument) {
  RawFile file = smallInput();
  replaceInts(file, kInputDimension, {GetParam()});

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(document.handle(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(AnyOther, RejectedDimension, ::testing::Values(1, 0, 4, -1, -2, 1000000));

class OutputDimension : public ExchangeFileTest {};

// Unlike a rejected input, a rejected output keeps the result of its read, here that of a read in
// which every step succeeded.
TEST_F(OutputDimension, OfOneGivesZeroWithoutADocument) {
  RawFile file = smallOutput();
  replaceInts(file, kOutputDimension, {1});

  const ReadDocument document = readAsOutput(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(document.handle(), nullptr);
}

TEST_F(OutputDimension, OfOneGivesOneWhenAStepFailed) {
  RawFile file = smallOutput();
  replaceInts(file, kOutputDimension, {1});
  file.remove("/OrvOutput/parameters");

  const ReadDocument document = readAsOutput(file);

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(document.handle(), nullptr);
}

class FailedOutputDimension : public ExchangeFileTest, public ::testing::WithParamInterface<int> {};

TEST_P(FailedOutputDimension, GivesOneWithoutADocument) {
  RawFile file = smallOutput();
  replaceInts(file, kOutputDimension, {GetParam()});

  const ReadDocument document = readAsOutput(file);

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(document.handle(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(OutsideOneToThree, FailedOutputDimension, ::testing::Values(0, 4, -1));

/// What stands at the place of the dimension, and what reading it alone answers.
struct DimensionRow {
  const char* name;
  void (*make)(RawFile& file, const std::string& path);
  int result;
  int dimension;  // afterwards, of a document whose dimension was 2

  friend std::ostream& operator<<(std::ostream& stream, const DimensionRow& row) {
    return stream << row.name;
  }
};

class SpatialDimension : public ExchangeFileTest,
                         public ::testing::WithParamInterface<DimensionRow> {};

TEST_P(SpatialDimension, IsReadWhenItIsOneValueFromOneToThree) {
  RawFile file = RawFile::create(path());
  file.group("/OrvInput");
  GetParam().make(file, kInputDimension);
  const BuiltDocument built = BuiltDocument::input(2);
  orvml_io::OrvInputAndOrvOutput& document = *orvml_io::documentOf(built.handle());
  const orvml_io::Silence silence;
  orvml_io::SourceFile source(file.id());
  const GroupAt group(file.id(), "/OrvInput");

  EXPECT_EQ(document.ReadSpatialDimension(source, group), GetParam().result);

  EXPECT_EQ(document.meshDimension, GetParam().dimension);
}

template <int Value>
void oneInt(RawFile& file, const std::string& path) {
  file.intVector(path, {Value});
}

const DimensionRow kDimensionRows[] = {
    {"One", oneInt<1>, 0, 1},
    {"Two", oneInt<2>, 0, 2},
    {"Three", oneInt<3>, 0, 3},
    {"ZeroStaysInTheDocument", oneInt<0>, 1, 0},
    {"FourStaysInTheDocument", oneInt<4>, 1, 4},
    {"NegativeStaysInTheDocument", oneInt<-7>, 1, -7},
    {"Missing", [](RawFile&, const std::string&) {}, 1, -1},
    {"Group", [](RawFile& file, const std::string& path) { file.group(path); }, 1, -1},
    {"Unreadable",
     [](RawFile& file, const std::string& path) {
       unreadableDataset(file, path, H5T_NATIVE_INT, {1});
     },
     1, -1},
    {"Text", [](RawFile& file, const std::string& path) { file.dataset(path, H5T_C_S1, {1}, "3"); },
     1, -1},
    {"NoValue", [](RawFile& file, const std::string& path) { file.intVector(path, {}); }, 1, -1},
    {"SeveralValues",
     [](RawFile& file, const std::string& path) {
       file.intVector(path, {3, 3});
     },
     1, -1},
    {"Double", [](RawFile& file, const std::string& path) { file.doubleVector(path, {3.0}); }, 0,
     3},
    {"BigEndianShort",
     [](RawFile& file, const std::string& path) { file.dataset(path, H5T_STD_I16BE, {1}, "\0\3"); },
     0, 3},
};

INSTANTIATE_TEST_SUITE_P(Each, SpatialDimension, ::testing::ValuesIn(kDimensionRows), RowName());

class LongDimensionPath : public ExchangeFileTest {};

TEST_F(LongDimensionPath, GivesOneAndMinusOne) {
  RawFile file = RawFile::create(path());
  file.intVector("/dimension", {3});
  const BuiltDocument built = BuiltDocument::input(2);
  orvml_io::OrvInputAndOrvOutput& document = *orvml_io::documentOf(built.handle());
  orvml_io::SourceFile source(file.id());

  EXPECT_EQ(document.ReadSpatialDimension(source, GroupAt(file.id(), std::string(1020, '/'))), 1);

  EXPECT_EQ(document.meshDimension, -1);
}

}  // namespace
}  // namespace orvml_io_tests
