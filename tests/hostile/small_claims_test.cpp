// Files of some kilobytes that claim billions of things cost no more time than they hold.
#include "hostile/attacked_file.h"
#include "hostile/bytes.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/row_name.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <limits>

namespace orvml_io_tests {
namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

class SmallClaims : public AttackedFile {
 protected:
  explicit SmallClaims(const char* version = "1.4") : AttackedFile(version) {}

  /// Replaces a dataset by one of this extent, of which nothing is stored.
  void claim(const std::string& path, hid_t type, const std::vector<hsize_t>& extents) {
    file().remove(path);
    file().dataset(path, type, extents, nullptr);
  }

  /// Expects the result, and that it comes at once. The best of five counts: what else runs on the
  /// machine only adds to the others.
  void expectAtOnce(int expectedStatus) {
    file().close();
    EXPECT_LT(bytesOf(path()).size(), 100U * 1024);
    Milliseconds best(std::numeric_limits<double>::max());
    for (int i = 0; i < 5; ++i) {
      const OpenIds ids;
      Handle document;
      const auto begin = std::chrono::steady_clock::now();
      EXPECT_EQ(OrvML_IO_ReadOrvInput(path(), document.out()), expectedStatus);
      best = std::min<Milliseconds>(best, std::chrono::steady_clock::now() - begin);
    }
    EXPECT_LT(best.count(), 50);
  }
};

TEST_F(SmallClaims, OfBillionsOfNodesAreRefusedAtOnce) {
  claim("/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {INT_MAX, 3});

  expectAtOnce(1);
}

TEST_F(SmallClaims, OfBillionsOfNodesWithoutColumnsAreRefusedAtOnce) {
  claim("/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {INT_MAX, 0});

  expectAtOnce(1);
}

TEST_F(SmallClaims, OfBillionsOfTypeGroupsAreRefusedAtOnce) {
  claim("/OrvInput/Faces/element_types", H5T_NATIVE_INT, {INT_MAX});

  expectAtOnce(1);
}

TEST_F(SmallClaims, OfBillionsOfNodeIndicesAreRefusedAtOnce) {
  file().remove("/OrvInput/Faces");
  file().elements("/OrvInput/Faces", {1 << 30}, {LINEAR}, {1}, {});
  claim("/OrvInput/Faces/connectivities", H5T_NATIVE_INT, {hsize_t{1} << 30});

  expectAtOnce(1);
}

TEST_F(SmallClaims, OfBillionsOfAttributeValuesAreRefusedAtOnce) {
  claim("/OrvInput/Nodes/Attributes/size", H5T_NATIVE_DOUBLE, {INT_MAX});

  expectAtOnce(1);
}

TEST_F(SmallClaims, OfBillionsOfParametersAreRefusedAtOnce) {
  const hid_t name = H5Tcopy(H5T_C_S1);
  H5Tset_size(name, 80);
  const hid_t record = H5Tcreate(H5T_COMPOUND, 88);
  H5Tinsert(record, "name", 0, name);
  H5Tinsert(record, "value", 80, H5T_NATIVE_DOUBLE);
  claim("/OrvInput/parameters", record, {INT_MAX});
  H5Tclose(record);
  H5Tclose(name);

  expectAtOnce(1);
}

class SmallLegacyClaims : public SmallClaims {
 protected:
  SmallLegacyClaims() : SmallClaims("1.3") {}

  template <class Add>
  void replaceMaxId(const Add& add) {
    for (const char* group :
         {"/OrvInput/GenericMarkers", "/OrvInput/GenericAttributes",
          "/OrvInput/Nodes/FunctionAttributes", "/OrvInput/Nodes/UserAttributes",
          "/OrvInput/Nodes/FunctionMarkers", "/OrvInput/Nodes/UserMarkers"}) {
      file().removeAttribute(group, "MAX_ID");
      add(group);
    }
  }
};

TEST_F(SmallLegacyClaims, OfBillionsOfPositionsTakeTheTimeOfTheLinksThatExist) {
  replaceMaxId([this](const char* group) { file().intAttributeValue(group, "MAX_ID", INT_MAX); });

  expectAtOnce(0);
}

/// A type of integers that a count may have, and three in it.
struct CountType {
  const char* name;
  hid_t (*type)();
  unsigned char three[8];

  friend std::ostream& operator<<(std::ostream& stream, const CountType& count) {
    return stream << count.name;
  }
};

class SmallLegacyCounts : public SmallLegacyClaims,
                          public ::testing::WithParamInterface<CountType> {};

TEST_P(SmallLegacyCounts, OfPositionsMayHaveAnyWidth) {
  replaceMaxId([this](const char* group) {
    file().attribute(group, "MAX_ID", GetParam().type(), {1}, GetParam().three);
  });

  expectAtOnce(0);
}

INSTANTIATE_TEST_SUITE_P(
    Types, SmallLegacyCounts,
    ::testing::Values(
        CountType{"Bytes", [] { return H5T_STD_I8LE; }, {3}},
        CountType{"UnsignedBytes", [] { return H5T_STD_U8BE; }, {3}},
        CountType{"BigEndianShorts", [] { return H5T_STD_I16BE; }, {0, 3}},
        CountType{"Longs", [] { return H5T_STD_I64LE; }, {3}},
        CountType{"BigEndianLongs", [] { return H5T_STD_U64BE; }, {0, 0, 0, 0, 0, 0, 0, 3}}),
    RowName());

// Cut to 32 bits these would be 3.
TEST_F(SmallLegacyClaims, OfPositionsBeyond32BitsAreTheLargestCount) {
  replaceMaxId([this](const char* group) {
    const long long value = (1LL << 32) + 3;
    file().attribute(group, "MAX_ID", H5T_NATIVE_LLONG, {1}, &value);
  });

  expectAtOnce(0);
}

}  // namespace
}  // namespace orvml_io_tests
