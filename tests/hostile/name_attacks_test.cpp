// Names that no writer of the library makes: too long, not UTF-8, without their end.
#include "hostile/attacked_file.h"
#include "hostile/stored_vectors.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/open_ids.h"

#include <vector>

namespace orvml_io_tests {
namespace {

const std::string kNodeAttributes = "/OrvInput/Nodes/Attributes";

// The longest path is one of 1023 bytes.
std::size_t longestNameIn(const std::string& group) { return 1023 - group.size() - 1; }

class AttackedNames : public AttackedFile {
 protected:
  /// Adds a vector behind a link that was made from within its group: the name may be longer than a
  /// path can be.
  void addVector(const std::string& group, const std::string& name) {
    const hid_t parent = H5Gopen2(file().id(), group.c_str(), H5P_DEFAULT);
    const hsize_t length = 5;
    const int values[5] = {1, 2, 3, 4, 5};
    const hid_t space = H5Screate_simple(1, &length, nullptr);
    const hid_t dataset = H5Dcreate2(parent, name.c_str(), H5T_NATIVE_INT, space, H5P_DEFAULT,
                                     H5P_DEFAULT, H5P_DEFAULT);
    ASSERT_GE(dataset, 0) << name;
    ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), 0);
    H5Dclose(dataset);
    H5Sclose(space);
    H5Gclose(parent);
  }

  /// Replaces the table of parameters by one whose names are these fields of 80 bytes.
  void replaceTable(const std::vector<std::pair<std::string, double>>& parameters) {
    file().remove("/OrvInput/parameters");
    file().parameterTable("/OrvInput/parameters", parameters);
  }

  /// Reads the document once more, for what the test asks of it.
  void* document() {
    if (document_.get() == nullptr) {
      (void)OrvML_IO_ReadOrvInput(path(), document_.out());
    }
    return document_.get();
  }

 private:
  OpenIds ids_;
  Handle document_;
};

class AttackedNameLengths : public AttackedNames,
                            public ::testing::WithParamInterface<std::size_t> {};

TEST_P(AttackedNameLengths, ThatFitAPathAreReadWhole) {
  const std::string name(GetParam(), 'n');
  addVector(kVectors, name);
  addVector(kNodeAttributes, name);

  EXPECT_EQ(read().status, 0);

  EXPECT_TRUE(intParameterOf(document(), name).has_value());
}

INSTANTIATE_TEST_SUITE_P(Lengths, AttackedNameLengths,
                         ::testing::Values(std::size_t{1}, std::size_t{79}, std::size_t{80},
                                           std::size_t{255}, longestNameIn(kVectors),
                                           longestNameIn(kNodeAttributes)));

TEST_F(AttackedNames, OfVectorsThatDoNotFitAPathGiveOneAndTheOthersAreRead) {
  addVector(kVectors, std::string(longestNameIn(kVectors) + 1, 'a'));
  addVector(kVectors, "z");

  EXPECT_EQ(read().status, 1);

  EXPECT_TRUE(intParameterOf(document(), "z").has_value());
}

TEST_F(AttackedNames, OfAttributesThatDoNotFitAPathGiveOneAndTheOthersAreRead) {
  addVector(kNodeAttributes, std::string(longestNameIn(kNodeAttributes) + 1, 'a'));
  addVector(kNodeAttributes, std::string(60000, 'b'));
  addVector(kNodeAttributes, "z");

  EXPECT_EQ(read().status, 1);

  EXPECT_TRUE(intAttributeOf(document(), ORVML_NODES, "z").has_value());
}

TEST_F(AttackedNames, OfEightyBytesAndMoreAreReadButNotWritten) {
  addVector(kVectors, std::string(80, 'n'));
  ASSERT_EQ(read().status, 0);
  const TempFile rewritten;

  EXPECT_EQ(OrvML_IO_WriteOrvInput(rewritten.path(), document()), 1);
}

class AttackedNameBytes : public AttackedNames,
                          public ::testing::WithParamInterface<const char*> {};

TEST_P(AttackedNameBytes, AreKeptAsTheyAre) {
  const std::string name = GetParam();
  addVector(kVectors, name);
  addVector(kNodeAttributes, name);
  replaceTable({{name, 2.5}});

  EXPECT_EQ(read().status, 0);

  void* const found = document();
  EXPECT_TRUE(intParameterOf(found, name).has_value());
  EXPECT_TRUE(intAttributeOf(found, ORVML_NODES, name).has_value());
  EXPECT_EQ(scalarOf(found, name), 2.5);
}

INSTANTIATE_TEST_SUITE_P(Bytes, AttackedNameBytes,
                         ::testing::Values("\xff\xfe\xfd", "\xc3", "\xed\xa0\x80", "\x80\x01\x7f",
                                           "\n\r\t", "a b", "%s%n", "..", "a\\b", "MAX_ID"));

TEST_F(AttackedNames, OfParametersWithoutAnEndAreCutToFit) {
  replaceTable({{std::string(80, 'x'), 1.0}});

  EXPECT_EQ(read().status, 0);

  EXPECT_EQ(scalarOf(document(), std::string(79, 'x')), 1.0);
}

TEST_F(AttackedNames, OfParametersMayBeEmpty) {
  replaceTable({{"", 1.0}});

  EXPECT_EQ(read().status, 0);

  EXPECT_EQ(scalarOf(document(), ""), 1.0);
}

TEST_F(AttackedNames, OfParametersThatOccurTwiceKeepTheLastValue) {
  replaceTable({{"twice", 1.0}, {"twice", 2.0}});

  EXPECT_EQ(read().status, 0);

  EXPECT_EQ(scalarOf(document(), "twice"), 2.0);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document()), 1U);
}

TEST_F(AttackedNames, OfParametersMayHoldSlashes) {
  replaceTable({{"/OrvInput/../x", 1.0}});

  EXPECT_EQ(read().status, 0);

  EXPECT_EQ(scalarOf(document(), "/OrvInput/../x"), 1.0);
}

}  // namespace
}  // namespace orvml_io_tests
