#include "fuzz/tree/datatypes.h"

#include "fuzz/harness/choice.h"

#include <cstddef>

namespace orvml_io_tests {

namespace {

using orvml_io::DatatypeId;
using TypeMaker = hid_t (*)();

hid_t textType(std::size_t bytes) {
  const hid_t type = H5Tcopy(H5T_C_S1);
  H5Tset_size(type, bytes);
  return type;
}

/// An integer that fills only some of its bits.
hid_t narrowInteger() {
  const hid_t type = H5Tcopy(H5T_STD_I32LE);
  H5Tset_precision(type, 12);
  H5Tset_offset(type, 7);
  return type;
}

/// An IEEE float of 16 bits.
hid_t halfFloat() {
  const hid_t type = H5Tcopy(H5T_IEEE_F32LE);
  H5Tset_fields(type, 15, 10, 5, 0, 10);
  H5Tset_size(type, 2);
  H5Tset_ebias(type, 15);
  return type;
}

hid_t enumeration() {
  const hid_t type = H5Tenum_create(H5T_NATIVE_INT);
  for (int value = 0; value < 3; ++value) {
    const char name[] = {static_cast<char>('a' + value), '\0'};
    H5Tenum_insert(type, name, &value);
  }
  return type;
}

hid_t smallCompound() {
  const hid_t type = H5Tcreate(H5T_COMPOUND, 12);
  H5Tinsert(type, "x", 0, H5T_NATIVE_INT);
  H5Tinsert(type, "y", 4, H5T_NATIVE_DOUBLE);
  return type;
}

hid_t arrayOf(hid_t element, hsize_t length) { return H5Tarray_create2(element, 1, &length); }

constexpr TypeMaker kTypes[] = {
    [] { return H5Tcopy(H5T_STD_I8LE); },
    [] { return H5Tcopy(H5T_STD_U8LE); },
    [] { return H5Tcopy(H5T_STD_I16LE); },
    [] { return H5Tcopy(H5T_STD_U16BE); },
    [] { return H5Tcopy(H5T_STD_I32LE); },
    [] { return H5Tcopy(H5T_STD_I32BE); },
    [] { return H5Tcopy(H5T_STD_U32LE); },
    [] { return H5Tcopy(H5T_STD_I64LE); },
    [] { return H5Tcopy(H5T_STD_U64BE); },
    narrowInteger,
    halfFloat,
    [] { return H5Tcopy(H5T_IEEE_F32LE); },
    [] { return H5Tcopy(H5T_IEEE_F64LE); },
    [] { return H5Tcopy(H5T_IEEE_F64BE); },
    [] { return H5Tcopy(H5T_NATIVE_LDOUBLE); },
    [] { return textType(1); },
    [] { return textType(80); },
    [] { return textType(5000); },
    [] { return textType(H5T_VARIABLE); },
    [] { return H5Tvlen_create(H5T_NATIVE_INT); },
    enumeration,
    smallCompound,
    [] { return H5Tcopy(H5T_STD_REF_OBJ); },
    [] { return H5Tcopy(H5T_STD_REF_DSETREG); },
    [] { return H5Tcreate(H5T_OPAQUE, 8); },
    [] { return arrayOf(H5T_NATIVE_INT, 3); },
    [] { return arrayOf(H5T_NATIVE_DOUBLE, 2); },
    [] { return H5Tcopy(H5T_STD_B32LE); },
    [] { return H5Tcopy(H5T_UNIX_D32LE); },
};

/// A record of two fields, in the order in which they are given.
hid_t recordOf(std::size_t bytes, const char* first, std::size_t firstOffset, hid_t firstType,
               const char* second, std::size_t secondOffset, hid_t secondType) {
  const hid_t type = H5Tcreate(H5T_COMPOUND, bytes);
  H5Tinsert(type, first, firstOffset, firstType);
  H5Tinsert(type, second, secondOffset, secondType);
  return type;
}

/// A record whose name has a given size (H5T_VARIABLE among them).
hid_t recordWithName(std::size_t nameBytes) {
  const DatatypeId name(textType(nameBytes));
  const std::size_t offset = H5Tget_size(name.get());
  return recordOf(offset + 8, "name", 0, name.get(), "value", offset, H5T_NATIVE_DOUBLE);
}

hid_t recordWithValue(hid_t valueType) {
  const DatatypeId name(textType(80));
  return recordOf(80 + H5Tget_size(valueType), "name", 0, name.get(), "value", 80, valueType);
}

hid_t recordNamed(const char* first, const char* second) {
  const DatatypeId name(textType(80));
  return recordOf(88, first, 0, name.get(), second, 80, H5T_NATIVE_DOUBLE);
}

/// The two fields lie in the other order, but under the right names.
hid_t swappedRecord() {
  const DatatypeId name(textType(80));
  return recordOf(88, "value", 0, H5T_NATIVE_DOUBLE, "name", 8, name.get());
}

hid_t recordWithGap() {
  const DatatypeId name(textType(80));
  return recordOf(200, "name", 8, name.get(), "value", 128, H5T_NATIVE_DOUBLE);
}

hid_t recordWithPaddedName() {
  const DatatypeId name(textType(80));
  H5Tset_strpad(name.get(), H5T_STR_SPACEPAD);
  return recordOf(88, "name", 0, name.get(), "value", 80, H5T_NATIVE_DOUBLE);
}

hid_t recordOfThreeFields() {
  const hid_t type = H5Tcreate(H5T_COMPOUND, 96);
  const DatatypeId name(textType(80));
  H5Tinsert(type, "name", 0, name.get());
  H5Tinsert(type, "value", 80, H5T_NATIVE_DOUBLE);
  H5Tinsert(type, "unit", 88, H5T_NATIVE_LLONG);
  return type;
}

hid_t recordOfOneField() {
  const hid_t type = H5Tcreate(H5T_COMPOUND, 88);
  const DatatypeId name(textType(80));
  H5Tinsert(type, "name", 0, name.get());
  return type;
}

hid_t recordWithOpaqueName() {
  const DatatypeId name(H5Tcreate(H5T_OPAQUE, 80));
  return recordOf(88, "name", 0, name.get(), "value", 80, H5T_NATIVE_DOUBLE);
}

hid_t nestedRecord() {
  const DatatypeId inner(recordNamed("name", "value"));
  return recordOf(176, "name", 0, inner.get(), "value", 88, inner.get());
}

constexpr TypeMaker kRecordTypes[] = {
    [] { return recordNamed("name", "value"); },
    swappedRecord,
    [] { return recordNamed("value", "name"); },
    [] { return recordNamed("Name", "value"); },
    [] { return recordNamed("name", "values"); },
    [] { return recordWithName(1); },
    [] { return recordWithName(79); },
    [] { return recordWithName(81); },
    [] { return recordWithName(H5T_VARIABLE); },
    [] { return recordWithValue(H5T_IEEE_F32LE); },
    [] { return recordWithValue(H5T_IEEE_F64BE); },
    [] { return recordWithValue(H5T_STD_I64LE); },
    [] { return recordWithValue(H5T_NATIVE_LDOUBLE); },
    recordWithGap,
    recordWithPaddedName,
    recordWithOpaqueName,
    recordOfThreeFields,
    recordOfOneField,
    nestedRecord,
    smallCompound,
    [] { return H5Tcopy(H5T_NATIVE_DOUBLE); },
    [] { return textType(88); },
};

}  // namespace

DatatypeId datatypeOf(unsigned choice, hid_t normal) {
  return DatatypeId(choice == 0 ? H5Tcopy(normal) : chosen(choice - 1, kTypes)());
}

DatatypeId recordTypeOf(unsigned choice) { return DatatypeId(chosen(choice, kRecordTypes)()); }

}  // namespace orvml_io_tests
