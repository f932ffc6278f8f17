// A process that shows a decimal comma to its user writes and reads files like any other: the
// version in a file is the number 1.4 everywhere.
#include "support/decimal_comma.h"

#include "files/exchange_file_fixture.h"

#include <cstdlib>

namespace orvml_io_tests {
namespace {

class FilesWithDecimalComma : public ExchangeFileTest {
 protected:
  void SetUp() override { ASSERT_TRUE(comma_.isSet()); }

 private:
  DecimalComma comma_;
};

TEST_F(FilesWithDecimalComma, AreReadBackByNameAsTheyWereWritten) {
  const BuiltDocument document = fullDocument();
  written(document).close();

  const ReadDocument copy = readInput(path());

  EXPECT_EQ(copy.result, 0);
  EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(document.handle(), copy.handle()));
  EXPECT_TRUE(OrvML_IO_OrvInputsAreEqual(copy.handle(), document.handle()));
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(copy.handle()),
            OrvML_IO_GetNumberOfParametersVector(document.handle()));
}

TEST_F(FilesWithDecimalComma, HoldTheTableOfNamedParameters) {
  BuiltDocument document = BuiltDocument::input(3);
  document.scalar("size", 0.5).vector("layers", std::vector<int>{1, 2});

  const RawFile file = written(document);

  EXPECT_EQ(file.shape("/OrvInput/parameters").typeClass, H5T_COMPOUND);
  EXPECT_TRUE(file.isDataset("/OrvInput/ParametersVector/layers"));
}

TEST_F(FilesWithDecimalComma, OfOthersAreReadByName) {
  RawFile file = smallInput("1.4");

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "size"), 0.5);
}

TEST_F(FilesWithDecimalComma, OfOlderFormatsAreReadByPosition) {
  RawFile file = smallInput("1.3");
  file.remove("/OrvInput/parameters");
  file.doubleVector("/OrvInput/parameters", {0.25});

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(scalarOf(document.handle(), "ORVML_OCTREEMESHER_GENERAL_MESH_SIZE"), 0.25);
}

// What the exported function answers is strtod's answer, and follows the process.
TEST_F(FilesWithDecimalComma, HaveAVersionThatCallersReadAsStrtodDoes) {
  EXPECT_EQ(OrvML_IO_GetFormatVersion_Number("1.4"), std::strtod("1.4", nullptr));
  EXPECT_EQ(OrvML_IO_GetFormatVersion_Number("1.4"), 1.0);
  EXPECT_EQ(OrvML_IO_GetFormatVersion_Number("1,4"), 1.4);
}

}  // namespace
}  // namespace orvml_io_tests
