#include "hostile/damages.h"

#include <gtest/gtest.h>

#include <utility>

namespace orvml_io_tests {

namespace {

using Dims = std::vector<hsize_t>;

constexpr hsize_t kMostInts = 0x7fffffff;

/// The values of a dataset as doubles; ones when it holds no numbers.
std::vector<double> valuesOf(const RawFile& file, const std::string& path) {
  const RawShape shape = file.shape(path);
  if (shape.typeClass == H5T_INTEGER || shape.typeClass == H5T_FLOAT) {
    return file.doubles(path);
  }
  return {};
}

hsize_t productOf(const Dims& extents) {
  hsize_t product = 1;
  for (const hsize_t extent : extents) {
    product *= extent;
  }
  return product;
}

/// Replaces a dataset by one of numbers: the old ones as far as they go, then ones.
void replaceByNumbers(RawFile& file, const std::string& path, hid_t type, const Dims& extents) {
  std::vector<double> values = valuesOf(file, path);
  values.resize(productOf(extents), 1.0);
  file.remove(path);
  file.dataset(path, type, extents, nullptr);
  const hid_t dataset = H5Dopen2(file.id(), path.c_str(), H5P_DEFAULT);
  if (!values.empty()) {
    ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()),
              0);
  }
  H5Dclose(dataset);
}

/// The type of the numbers in a dataset; of a table of parameters, that of its values.
hid_t typeLike(const RawShape& shape) {
  return shape.typeClass == H5T_INTEGER ? H5T_NATIVE_INT : H5T_NATIVE_DOUBLE;
}

void resize(RawFile& file, const std::string& path, const Dims& extents) {
  replaceByNumbers(file, path, typeLike(file.shape(path)), extents);
}

void changeFirstExtent(RawFile& file, const std::string& path, hsize_t difference) {
  Dims extents = file.shape(path).extents;
  extents[0] += difference;
  resize(file, path, extents);
}

void makeLonger(RawFile& file, const std::string& path) { changeFirstExtent(file, path, 1); }

void makeShorter(RawFile& file, const std::string& path) {
  changeFirstExtent(file, path, static_cast<hsize_t>(-1));
}

void makeEmpty(RawFile& file, const std::string& path) {
  Dims extents = file.shape(path).extents;
  extents[0] = 0;
  resize(file, path, extents);
}

void addExtentOfTwo(RawFile& file, const std::string& path) {
  Dims extents = file.shape(path).extents;
  extents.push_back(2);
  resize(file, path, extents);
}

void addExtentsOfOneAndTwo(RawFile& file, const std::string& path) {
  Dims extents = file.shape(path).extents;
  extents.push_back(1);
  extents.push_back(2);
  resize(file, path, extents);
}

void makeScalar(RawFile& file, const std::string& path) { resize(file, path, {}); }

void makeNull(RawFile& file, const std::string& path) {
  const hid_t type = typeLike(file.shape(path));
  file.remove(path);
  const hid_t space = H5Screate(H5S_NULL);
  H5Dclose(H5Dcreate2(file.id(), path.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  H5Sclose(space);
}

/// Replaces a dataset by one of these extents and properties, of which nothing is stored.
void makeUnstored(RawFile& file, const std::string& path, const Dims& extents, hid_t properties) {
  const hid_t type = typeLike(file.shape(path));
  file.remove(path);
  const hid_t space = H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr);
  const hid_t dataset =
      H5Dcreate2(file.id(), path.c_str(), type, space, H5P_DEFAULT, properties, H5P_DEFAULT);
  EXPECT_GE(dataset, 0) << path;
  H5Dclose(dataset);
  H5Sclose(space);
}

void makeHuge(RawFile& file, const std::string& path, hsize_t firstExtent, hid_t properties) {
  Dims extents = file.shape(path).extents;
  extents[0] = firstExtent;
  makeUnstored(file, path, extents, properties);
}

template <hsize_t FirstExtent>
void makeUnstoredInOneBlock(RawFile& file, const std::string& path) {
  makeHuge(file, path, FirstExtent, H5P_DEFAULT);
}

template <hsize_t FirstExtent>
void makeUnstoredInChunks(RawFile& file, const std::string& path) {
  Dims chunk = file.shape(path).extents;
  chunk[0] = 1024;
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_chunk(properties, static_cast<int>(chunk.size()), chunk.data());
  makeHuge(file, path, FirstExtent, properties);
  H5Pclose(properties);
}

/// Cut to 32 bits, the extent is the old one.
void makeHugeAndAlike(RawFile& file, const std::string& path) {
  makeHuge(file, path, (hsize_t{1} << 32) + file.shape(path).extents[0], H5P_DEFAULT);
}

/// Replaces a dataset by one of the same values in another numeric type.
void convert(RawFile& file, const std::string& path, hid_t type) {
  replaceByNumbers(file, path, type, file.shape(path).extents);
}

void makeBytes(RawFile& file, const std::string& path) { convert(file, path, H5T_STD_I8LE); }
void makeUnsignedBytes(RawFile& file, const std::string& path) {
  convert(file, path, H5T_STD_U8LE);
}
void makeShorts(RawFile& file, const std::string& path) { convert(file, path, H5T_STD_I16BE); }
void makeBigEndianInts(RawFile& file, const std::string& path) {
  convert(file, path, H5T_STD_I32BE);
}
void makeLongs(RawFile& file, const std::string& path) { convert(file, path, H5T_STD_I64LE); }
void makeBigEndianDoubles(RawFile& file, const std::string& path) {
  convert(file, path, H5T_IEEE_F64BE);
}

/// Numbers of 16 bits with a sign, 5 bits of exponent and 10 of mantissa.
void makeHalves(RawFile& file, const std::string& path) {
  const hid_t type = H5Tcopy(H5T_IEEE_F32LE);
  H5Tset_fields(type, 15, 10, 5, 0, 10);
  H5Tset_size(type, 2);
  H5Tset_ebias(type, 15);
  convert(file, path, type);
  H5Tclose(type);
}

void swapNumericType(RawFile& file, const std::string& path) {
  const RawShape shape = file.shape(path);
  replaceByNumbers(file, path, shape.typeClass == H5T_INTEGER ? H5T_NATIVE_FLOAT : H5T_NATIVE_INT,
                   shape.extents);
}

/// Replaces a dataset by one of another type that holds zero bytes.
void retype(RawFile& file, const std::string& path, hid_t type) {
  const Dims extents = file.shape(path).extents;
  const std::vector<char> zeros(productOf(extents) * H5Tget_size(type), 0);
  file.remove(path);
  file.dataset(path, type, extents, zeros.data());
}

void retypeAndClose(RawFile& file, const std::string& path, hid_t type) {
  retype(file, path, type);
  H5Tclose(type);
}

void makeTexts(RawFile& file, const std::string& path) {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, 8);
  retypeAndClose(file, path, type);
}

void makeTextsOfVariableLength(RawFile& file, const std::string& path) {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, H5T_VARIABLE);
  retypeAndClose(file, path, type);
}

void makeRecords(RawFile& file, const std::string& path) {
  const hid_t type = H5Tcreate(H5T_COMPOUND, sizeof(int));
  H5Tinsert(type, "value", 0, H5T_NATIVE_INT);
  retypeAndClose(file, path, type);
}

void makeEnumeration(RawFile& file, const std::string& path) {
  const hid_t type = H5Tenum_create(H5T_NATIVE_INT);
  for (const auto& [name, value] : {std::pair("zero", 0), std::pair("one", 1)}) {
    H5Tenum_insert(type, name, &value);
  }
  retypeAndClose(file, path, type);
}

void makeSequences(RawFile& file, const std::string& path) {
  retypeAndClose(file, path, H5Tvlen_create(H5T_NATIVE_INT));
}

void makeArrays(RawFile& file, const std::string& path) {
  const hsize_t two = 2;
  retypeAndClose(file, path, H5Tarray_create2(H5T_NATIVE_INT, 1, &two));
}

void makeOpaque(RawFile& file, const std::string& path) {
  retypeAndClose(file, path, H5Tcreate(H5T_OPAQUE, sizeof(int)));
}

void makeReferences(RawFile& file, const std::string& path) { retype(file, path, H5T_STD_REF_OBJ); }

void makeMissing(RawFile& file, const std::string& path) { file.remove(path); }

void makeGroup(RawFile& file, const std::string& path) {
  file.remove(path);
  file.group(path);
}

void makeNamedType(RawFile& file, const std::string& path) {
  file.remove(path);
  const hid_t type = H5Tcopy(H5T_NATIVE_INT);
  EXPECT_GE(H5Tcommit2(file.id(), path.c_str(), type, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), 0);
  H5Tclose(type);
}

void makeSoftLink(RawFile& file, const std::string& path, const std::string& target) {
  file.remove(path);
  EXPECT_GE(H5Lcreate_soft(target.c_str(), file.id(), path.c_str(), H5P_DEFAULT, H5P_DEFAULT), 0);
}

void makeLinkToNowhere(RawFile& file, const std::string& path) {
  makeSoftLink(file, path, "/nowhere/at/all");
}

void makeLinkToItself(RawFile& file, const std::string& path) { makeSoftLink(file, path, path); }

void makeLinkToTheRoot(RawFile& file, const std::string& path) { makeSoftLink(file, path, "/"); }

void makeLinkToItsNewPlace(RawFile& file, const std::string& path) {
  H5Lcreate_hard(file.id(), path.c_str(), file.id(), "/moved", H5P_DEFAULT, H5P_DEFAULT);
  makeSoftLink(file, path, "/moved");
}

void makeLinkToAMissingFile(RawFile& file, const std::string& path) {
  file.remove(path);
  EXPECT_GE(H5Lcreate_external("no_such_file.h5", "/dataset", file.id(), path.c_str(), H5P_DEFAULT,
                               H5P_DEFAULT),
            0);
}

void makeValuesInAnotherFile(RawFile& file, const std::string& path) {
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_external(properties, "no_such_file.raw", 0, H5F_UNLIMITED);
  makeUnstored(file, path, file.shape(path).extents, properties);
  H5Pclose(properties);
}

void makeValuesOfAnotherDataset(RawFile& file, const std::string& path) {
  const Dims extents = file.shape(path).extents;
  const hid_t space = H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr);
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_virtual(properties, space, "no_such_file.h5", "/dataset", space);
  makeUnstored(file, path, file.shape(path).extents, properties);
  H5Pclose(properties);
  H5Sclose(space);
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Damage& damage) {
  return stream << damage.name;
}

const std::vector<Damage>& damages() {
  static const std::vector<Damage> all = {
      {"LinkToItsNewPlace", Finding::moved, makeLinkToItsNewPlace},
      {"OtherNumericType", Finding::converted, swapNumericType},
      {"Bytes", Finding::converted, makeBytes},
      {"UnsignedBytes", Finding::converted, makeUnsignedBytes},
      {"BigEndianShorts", Finding::converted, makeShorts},
      {"BigEndianInts", Finding::converted, makeBigEndianInts},
      {"Longs", Finding::converted, makeLongs},
      {"Halves", Finding::converted, makeHalves},
      {"BigEndianDoubles", Finding::converted, makeBigEndianDoubles},
      {"Missing", Finding::nothing, makeMissing},
      {"Group", Finding::nothing, makeGroup},
      {"NamedType", Finding::nothing, makeNamedType},
      {"LinkToNowhere", Finding::nothing, makeLinkToNowhere},
      {"LinkToItself", Finding::nothing, makeLinkToItself},
      {"LinkToTheRoot", Finding::nothing, makeLinkToTheRoot},
      {"LinkToAMissingFile", Finding::nothing, makeLinkToAMissingFile},
      {"ValuesInAnotherFile", Finding::elsewhere, makeValuesInAnotherFile},
      {"ValuesOfAnotherDataset", Finding::elsewhere, makeValuesOfAnotherDataset},
      {"Scalar", Finding::noExtents, makeScalar},
      {"NullSpace", Finding::noExtents, makeNull},
      {"OneMoreExtent", Finding::twiceAsWide, addExtentOfTwo},
      {"TwoMoreExtents", Finding::twiceAsWide, addExtentsOfOneAndTwo},
      {"Empty", Finding::empty, makeEmpty},
      {"OneMoreValue", Finding::longer, makeLonger},
      {"OneValueLess", Finding::shorter, makeShorter},
      {"Unstored46341", Finding::unstored,
       makeUnstoredInOneBlock<46341>},  // its square needs 32 bits
      {"Unstored65536", Finding::unstored, makeUnstoredInOneBlock<65536>},
      {"Unstored65536InChunks", Finding::unstored, makeUnstoredInChunks<65536>},
      {"MostInts", Finding::huge, makeUnstoredInOneBlock<kMostInts>},
      {"OneMoreThanMostInts", Finding::huge, makeUnstoredInOneBlock<kMostInts + 1>},
      {"HugeInOneBlock", Finding::huge, makeUnstoredInOneBlock<hsize_t{1} << 40>},
      {"HugeInChunks", Finding::huge, makeUnstoredInChunks<hsize_t{1} << 40>},
      {"HugestInChunks", Finding::huge, makeUnstoredInChunks<hsize_t{1} << 62>},
      {"HugeButAlikeIn32Bits", Finding::huge, makeHugeAndAlike},
      {"Texts", Finding::noNumbers, makeTexts},
      {"TextsOfVariableLength", Finding::noNumbers, makeTextsOfVariableLength},
      {"Records", Finding::noNumbers, makeRecords},
      {"Enumeration", Finding::enumerated, makeEnumeration},
      {"Sequences", Finding::noNumbers, makeSequences},
      {"Arrays", Finding::noNumbers, makeArrays},
      {"Opaque", Finding::noNumbers, makeOpaque},
      {"References", Finding::noNumbers, makeReferences}};
  return all;
}

}  // namespace orvml_io_tests
