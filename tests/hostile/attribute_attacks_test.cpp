// The attributes of a file replaced by attributes of other types and sizes.
#include "hostile/attacked_file.h"
#include "support/row_name.h"

#include <ostream>
#include <vector>

namespace orvml_io_tests {
namespace {

/// Something other than the text or the count that belongs to an attribute.
struct Replacement {
  const char* name;
  void (*add)(RawFile& file, const std::string& object, const std::string& attribute);
};

std::ostream& operator<<(std::ostream& stream, const Replacement& replacement) {
  return stream << replacement.name;
}

void addTyped(RawFile& file, const std::string& object, const std::string& attribute, hid_t type,
              const std::vector<hsize_t>& extents) {
  hsize_t values = 1;
  for (const hsize_t extent : extents) {
    values *= extent;
  }
  const std::vector<char> zeros(values * H5Tget_size(type) + 1, 0);
  file.attribute(object, attribute, type, extents, zeros.data());
}

void addOwned(RawFile& file, const std::string& object, const std::string& attribute, hid_t type,
              const std::vector<hsize_t>& extents) {
  addTyped(file, object, attribute, type, extents);
  H5Tclose(type);
}

hid_t textType(std::size_t bytes) {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, bytes);
  return type;
}

void addNothing(RawFile& /*file*/, const std::string& /*object*/, const std::string& /*name*/) {}

void addDouble(RawFile& file, const std::string& object, const std::string& attribute) {
  addTyped(file, object, attribute, H5T_NATIVE_DOUBLE, {1});
}

void addIntegers(RawFile& file, const std::string& object, const std::string& attribute) {
  addTyped(file, object, attribute, H5T_NATIVE_INT, {3});
}

void addNoIntegers(RawFile& file, const std::string& object, const std::string& attribute) {
  addTyped(file, object, attribute, H5T_NATIVE_INT, {0});
}

void addReference(RawFile& file, const std::string& object, const std::string& attribute) {
  addTyped(file, object, attribute, H5T_STD_REF_OBJ, {});
}

void addRecord(RawFile& file, const std::string& object, const std::string& attribute) {
  const hid_t type = H5Tcreate(H5T_COMPOUND, sizeof(int));
  H5Tinsert(type, "value", 0, H5T_NATIVE_INT);
  addOwned(file, object, attribute, type, {});
}

void addSequence(RawFile& file, const std::string& object, const std::string& attribute) {
  addOwned(file, object, attribute, H5Tvlen_create(H5T_NATIVE_INT), {});
}

void addTexts(RawFile& file, const std::string& object, const std::string& attribute) {
  addOwned(file, object, attribute, textType(8), {4});
}

void addTextsOfVariableLength(RawFile& file, const std::string& object,
                              const std::string& attribute) {
  addOwned(file, object, attribute, textType(H5T_VARIABLE), {4});
}

void addNullSpace(RawFile& file, const std::string& object, const std::string& attribute) {
  const hid_t space = H5Screate(H5S_NULL);
  H5Aclose(H5Acreate_by_name(file.id(), object.c_str(), attribute.c_str(), H5T_NATIVE_INT, space,
                             H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  H5Sclose(space);
}

const Replacement kReplacements[] = {{"Nothing", addNothing},
                                     {"Double", addDouble},
                                     {"Integers", addIntegers},
                                     {"NoIntegers", addNoIntegers},
                                     {"Reference", addReference},
                                     {"Record", addRecord},
                                     {"Sequence", addSequence},
                                     {"Texts", addTexts},
                                     {"TextsOfVariableLength", addTextsOfVariableLength},
                                     {"NullSpace", addNullSpace}};

class AttackedAttributes : public AttackedFile, public ::testing::WithParamInterface<Replacement> {
 protected:
  explicit AttackedAttributes(const char* version = "1.4") : AttackedFile(version) {}

  void replace(const std::string& object, const std::string& attribute) {
    file().removeAttribute(object, attribute);
    GetParam().add(file(), object, attribute);
  }
};

TEST_P(AttackedAttributes, InsteadOfTheMarkerMakeNoExchangeFile) {
  replace("/", "FORMAT");

  const Readings readings = readAll();

  EXPECT_EQ(readings.input.status, 0);
  EXPECT_FALSE(readings.input.hasDocument);
  EXPECT_EQ(readings.both.status, 0);
  EXPECT_FALSE(readings.both.hasInput);
}

// Without a version the table of the current format is taken for positional values.
TEST_P(AttackedAttributes, InsteadOfTheVersionCountAsMissing) {
  replace("/", "ORVMESHLIBRARY_FORMAT_VERSION");

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{5, 3, 4, 2}));
}

TEST_P(AttackedAttributes, InsteadOfTheOtherTextsAreNoFailure) {
  replace("/", "ORVML_IO_CREATOR");
  replace("/", "ORVML_MODULE_NAME");
  replace("/", "ORVML_MODULE_FORMAT_VERSION");

  EXPECT_EQ(read().status, 0);
}

TEST_P(AttackedAttributes, InsteadOfTheTransmissionFlagAreNoFailure) {
  replace("/OrvInput/Nodes/Attributes/size", "MustBeTransmitted");
  GetParam().add(file(), "/OrvInput/Nodes/Attributes", "MustBeTransmitted");
  GetParam().add(file(), "/", "MustBeTransmitted");

  EXPECT_EQ(read().status, 0);
}

INSTANTIATE_TEST_SUITE_P(Replacements, AttackedAttributes, ::testing::ValuesIn(kReplacements),
                         RowName());

class AttackedLegacyAttributes : public AttackedAttributes {
 protected:
  AttackedLegacyAttributes() : AttackedAttributes("1.3") {}
};

TEST_P(AttackedLegacyAttributes, InsteadOfMaxIdGiveOne) {
  replace("/OrvInput/GenericMarkers", "MAX_ID");

  EXPECT_EQ(read().status, 1);
}

TEST_P(AttackedLegacyAttributes, InsteadOfMaxIdInTheLastGroupGiveOne) {
  replace("/OrvInput/Nodes/UserMarkers", "MAX_ID");

  EXPECT_EQ(read().status, 1);
}

TEST_P(AttackedLegacyAttributes, InsteadOfMaxIdInAnEarlierGroupAreForgotten) {
  replace("/OrvInput/Nodes/FunctionAttributes", "MAX_ID");

  EXPECT_EQ(read().status, 0);
}

INSTANTIATE_TEST_SUITE_P(Replacements, AttackedLegacyAttributes, ::testing::ValuesIn(kReplacements),
                         RowName());

class AttackedTexts : public AttackedFile {
 protected:
  void replaceText(const std::string& attribute, const std::string& text) {
    file().removeAttribute("/", attribute);
    file().textAttribute("/", attribute, text);
  }
};

TEST_F(AttackedTexts, OfAnyLengthStayShorterThanEightyBytes) {
  // An attribute may be at most as large as this.
  const std::string longest(60000, 'x');
  replaceText("ORVML_IO_CREATOR", longest);
  replaceText("ORVML_MODULE_NAME", longest);
  replaceText("ORVML_MODULE_FORMAT_VERSION", longest);

  EXPECT_EQ(read().status, 0);
}

TEST_F(AttackedTexts, OfAVersionAreReadByTheirFirstNumber) {
  replaceText("ORVMESHLIBRARY_FORMAT_VERSION", "1.4" + std::string(60000, '9'));

  EXPECT_EQ(read().status, 0);
}

TEST_F(AttackedTexts, ThatAreNotUtf8AreKept) {
  replaceText("ORVML_IO_CREATOR", "\xff\xfe\x80");
  replaceText("ORVML_MODULE_NAME", "\xc3");

  EXPECT_EQ(read().status, 0);
}

TEST_F(AttackedTexts, OfAMarkerThatIsLongIsNoMarker) {
  replaceText("FORMAT", "ORVMESHLIBRARY" + std::string(60000, 'Y'));

  EXPECT_FALSE(read().hasDocument);
}

}  // namespace
}  // namespace orvml_io_tests
