// Vector parameters and attributes in a written file.
#include "files/exchange_file_fixture.h"

namespace orvml_io_tests {
namespace {

class WrittenVectorParameters : public ExchangeFileTest {
 protected:
  BuiltDocument document_ = BuiltDocument::input(3);
};

TEST_F(WrittenVectorParameters, IntegersAreAVectorOfNativeInts) {
  const RawFile file = written(document_.vector("v", std::vector<int>{3, -2, 1}));

  EXPECT_EQ(file.shape("/OrvInput/ParametersVector/v").extents, Extents{3});
  EXPECT_TRUE(isStoredAs(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_INT));
  EXPECT_EQ(file.ints("/OrvInput/ParametersVector/v"), (std::vector<int>{3, -2, 1}));
}

TEST_F(WrittenVectorParameters, DoublesAreAVectorOfNativeDoubles) {
  const RawFile file = written(document_.vector("v", std::vector<double>{0.5, -0.25}));

  EXPECT_EQ(file.shape("/OrvInput/ParametersVector/v").extents, Extents{2});
  EXPECT_TRUE(isStoredAs(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_DOUBLE));
  EXPECT_EQ(file.doubles("/OrvInput/ParametersVector/v"), (std::vector<double>{0.5, -0.25}));
}

TEST_F(WrittenVectorParameters, NeverCarryTheTransmissionFlag) {
  const RawFile file = written(document_.vector("v", std::vector<int>{1}));

  EXPECT_EQ(file.attributes("/OrvInput/ParametersVector/v"), Names{});
  EXPECT_EQ(file.attributes("/OrvInput/ParametersVector"), Names{});
}

TEST_F(WrittenVectorParameters, LengthZeroIsAnEmptyVector) {
  document_.vector("d", std::vector<double>{}).vector("i", std::vector<int>{});

  const RawFile file = written(document_);

  EXPECT_EQ(file.shape("/OrvInput/ParametersVector/d").extents, Extents{0});
  EXPECT_EQ(file.shape("/OrvInput/ParametersVector/i").extents, Extents{0});
  EXPECT_TRUE(isStoredAs(file, "/OrvInput/ParametersVector/d", H5T_NATIVE_DOUBLE));
  EXPECT_TRUE(isStoredAs(file, "/OrvInput/ParametersVector/i", H5T_NATIVE_INT));
}

TEST_F(WrittenVectorParameters, NegativeLengthIsWrittenAsZero) {
  const int value = 1;
  OrvML_IO_SetParameterVector(document_.handle(), "v", &value, -3);

  EXPECT_EQ(written(document_).shape("/OrvInput/ParametersVector/v").extents, Extents{0});
}

TEST_F(WrittenVectorParameters, ShareANameWithAScalar) {
  document_.scalar("same", 1.5).vector("same", std::vector<int>{7});

  const RawFile file = written(document_);

  EXPECT_TRUE(file.isDataset("/OrvInput/parameters"));
  EXPECT_EQ(file.ints("/OrvInput/ParametersVector/same"), std::vector<int>{7});
}

TEST_F(WrittenVectorParameters, NamesAreLinkNamesByteByByte) {
  const std::string longest(79, 'n');
  document_.vector("two words", std::vector<int>{1})
      .vector("a.b", std::vector<int>{2})
      .vector("maill\xc3\xa9", std::vector<int>{3})
      .vector(longest.c_str(), std::vector<int>{4});

  EXPECT_EQ(written(document_).members("/OrvInput/ParametersVector"),
            (Names{"a.b", "maill\xc3\xa9", longest, "two words"}));
}

class WrittenAttributes : public ExchangeFileTest, public ::testing::WithParamInterface<Container> {
 protected:
  [[nodiscard]] static std::string attributePath(const char* name) {
    return GetParam().group() + "/Attributes/" + name;
  }
  BuiltDocument document_ = fullDocument();
};

TEST_P(WrittenAttributes, IntegersAreAVectorOfNativeInts) {
  document_.attribute(GetParam().entity, "i", std::vector<int>{5, 6});

  const RawFile file = written(document_);

  EXPECT_EQ(file.shape(attributePath("i")).extents, Extents{2});
  EXPECT_TRUE(isStoredAs(file, attributePath("i"), H5T_NATIVE_INT));
  EXPECT_EQ(file.ints(attributePath("i")), (std::vector<int>{5, 6}));
}

TEST_P(WrittenAttributes, DoublesAreAVectorOfNativeDoubles) {
  document_.attribute(GetParam().entity, "d", std::vector<double>{0.5, 1.5});

  const RawFile file = written(document_);

  EXPECT_EQ(file.shape(attributePath("d")).extents, Extents{2});
  EXPECT_TRUE(isStoredAs(file, attributePath("d"), H5T_NATIVE_DOUBLE));
  EXPECT_EQ(file.doubles(attributePath("d")), (std::vector<double>{0.5, 1.5}));
}

TEST_P(WrittenAttributes, FlaggedOneCarriesOneNativeIntOfValueOne) {
  document_.attribute(GetParam().entity, "flagged", std::vector<int>{5}, true);

  const RawFile file = written(document_);

  const std::string path = attributePath("flagged");
  EXPECT_EQ(file.attributes(path), Names{"MustBeTransmitted"});
  const RawShape shape = file.attributeShape(path, "MustBeTransmitted");
  EXPECT_EQ(shape.extents, Extents{1});
  EXPECT_EQ(shape.typeClass, H5T_INTEGER);
  EXPECT_EQ(shape.typeBytes, 4U);
  EXPECT_TRUE(shape.isSigned);
  EXPECT_EQ(file.intAttribute(path, "MustBeTransmitted"), 1);
}

TEST_P(WrittenAttributes, UnflaggedOneCarriesNoAttribute) {
  document_.attribute(GetParam().entity, "plain", std::vector<double>{5}, false);

  EXPECT_EQ(written(document_).attributes(attributePath("plain")), Names{});
}

TEST_P(WrittenAttributes, UserAttributesAreFlaggedAndFunctionAttributesAreNot) {
  OrvML_IO_CreateAttribute(document_.handle(), "user", GetParam().entity, ORVML_USER_ATTRIBUTE,
                           ORVML_INT);
  OrvML_IO_CreateAttribute(document_.handle(), "function", GetParam().entity,
                           ORVML_FUNCTION_ATTRIBUTE, ORVML_INT);

  const RawFile file = written(document_);

  EXPECT_TRUE(file.hasAttribute(attributePath("user"), "MustBeTransmitted"));
  EXPECT_FALSE(file.hasAttribute(attributePath("function"), "MustBeTransmitted"));
}

TEST_P(WrittenAttributes, LengthIsItsOwnAndNotTheNumberOfEntities) {
  document_.attribute(GetParam().entity, "long", std::vector<int>(9, 1))
      .attribute(GetParam().entity, "empty", std::vector<int>{});

  const RawFile file = written(document_);

  EXPECT_EQ(file.shape(attributePath("long")).extents, Extents{9});
  EXPECT_EQ(file.shape(attributePath("empty")).extents, Extents{0});
}

TEST_P(WrittenAttributes, DeletedOnesAreNotWritten) {
  OrvML_IO_DeleteAttributesEntitiesVector(document_.handle(), GetParam().entity);

  EXPECT_FALSE(written(document_).has(GetParam().group() + "/Attributes"));
}

TEST_P(WrittenAttributes, FlagsStandOnMembersAndNotOnTheGroup) {
  document_.attribute(GetParam().entity, "flagged", std::vector<int>{5}, true);

  const RawFile file = written(document_);

  EXPECT_EQ(file.attributes(GetParam().group() + "/Attributes"), Names{});
  EXPECT_FALSE(file.hasAttribute("/", "MustBeTransmitted"));
}

INSTANTIATE_TEST_SUITE_P(Each, WrittenAttributes, ::testing::ValuesIn(kAllContainers), RowName());

}  // namespace
}  // namespace orvml_io_tests
