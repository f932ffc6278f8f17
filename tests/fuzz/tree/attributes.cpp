// The attributes of a tree: texts and numbers.
#include "fuzz/harness/choice.h"
#include "fuzz/tree/datatypes.h"
#include "fuzz/tree/objects.h"

#include <climits>
#include <iterator>

namespace orvml_io_tests {

namespace {

using orvml_io::AttributeId;
using orvml_io::DataspaceId;
using orvml_io::DatatypeId;

void makeAttribute(hid_t object, const std::string& name, hid_t type, const Lengths& lengths,
                   const void* value) {
  const DataspaceId space = dataspaceOf(lengths, false);
  const AttributeId attribute(
      H5Acreate2(object, name.c_str(), type, space.get(), H5P_DEFAULT, H5P_DEFAULT));
  if (attribute.valid() && value != nullptr) {
    H5Awrite(attribute.get(), type, value);
  }
}

DatatypeId fixedText(std::size_t bytes, H5T_str_t padding) {
  DatatypeId type(H5Tcopy(H5T_C_S1));
  H5Tset_size(type.get(), bytes);
  H5Tset_strpad(type.get(), padding);
  return type;
}

void makeFixed(hid_t object, const std::string& name, const std::string& text, H5T_str_t padding,
               const Lengths& lengths) {
  const std::string twice = text + '\0' + text + '\0';  // enough for two values
  const DatatypeId type = fixedText(text.size() + 1, padding);
  makeAttribute(object, name, type.get(), lengths, twice.data());
}

/// The text fills its type: there is no terminator in the file.
void makeFull(hid_t object, const std::string& name, const std::string& text) {
  const DatatypeId type = fixedText(text.empty() ? 1 : text.size(), H5T_STR_NULLPAD);
  makeAttribute(object, name, type.get(), {}, text.c_str());
}

void makeVariable(hid_t object, const std::string& name, const char* text, H5T_cset_t characters) {
  const DatatypeId type(H5Tcopy(H5T_C_S1));
  H5Tset_size(type.get(), H5T_VARIABLE);
  H5Tset_cset(type.get(), characters);
  makeAttribute(object, name, type.get(), {}, &text);
}

using TextMaker = void (*)(hid_t object, const std::string& name, const std::string& text);

constexpr TextMaker kTextMakers[] = {
    [](hid_t object, const std::string& name, const std::string& text) {
      makeFixed(object, name, text, H5T_STR_NULLTERM, {});
    },
    [](hid_t /*object*/, const std::string& /*name*/, const std::string& /*text*/) {},
    makeFull,
    [](hid_t object, const std::string& name, const std::string& text) {
      makeFixed(object, name, text, H5T_STR_NULLPAD, {1});
    },
    [](hid_t object, const std::string& name, const std::string& text) {
      makeFixed(object, name, text, H5T_STR_SPACEPAD, {});
    },
    [](hid_t object, const std::string& name, const std::string& text) {
      makeFixed(object, name, text, H5T_STR_NULLTERM, {2});
    },
    [](hid_t object, const std::string& name, const std::string& text) {
      makeVariable(object, name, text.c_str(), H5T_CSET_ASCII);
    },
    [](hid_t object, const std::string& name, const std::string& text) {
      makeVariable(object, name, text.c_str(), H5T_CSET_UTF8);
    },
    [](hid_t object, const std::string& name, const std::string& /*text*/) {
      makeVariable(object, name, nullptr, H5T_CSET_ASCII);
    },
    [](hid_t object, const std::string& name, const std::string& text) {
      const DatatypeId type = fixedText(text.size() + 1, H5T_STR_NULLTERM);
      makeAttribute(object, name, type.get(), {}, nullptr);
    },
    [](hid_t object, const std::string& name, const std::string& /*text*/) {
      makeAttribute(object, name, H5T_NATIVE_INT, {}, nullptr);
    },
    [](hid_t object, const std::string& name, const std::string& /*text*/) {
      const DatatypeId type = recordTypeOf(0);
      makeAttribute(object, name, type.get(), {}, nullptr);
    },
    [](hid_t object, const std::string& name, const std::string& /*text*/) {
      const DataspaceId nothing(H5Screate(H5S_NULL));
      const DatatypeId type = fixedText(8, H5T_STR_NULLTERM);
      const AttributeId attribute(
          H5Acreate2(object, name.c_str(), type.get(), nothing.get(), H5P_DEFAULT, H5P_DEFAULT));
    },
};

/// Texts at the limits of the fields and buffers of a reader, and those with a meaning.
std::string textOf(unsigned choice, const std::string& normal) {
  static const std::string deviations[] = {"",
                                           "a",
                                           "1.3",
                                           "1.4",
                                           "2.0",
                                           "1.10.0",
                                           "nan",
                                           "inf",
                                           "-1",
                                           "0x1.8p0",
                                           "1e400",
                                           " 1.4",
                                           std::string(79, 't'),
                                           std::string(80, 't'),
                                           std::string(1023, 't'),
                                           std::string(1024, 't'),
                                           std::string(5000, 't'),
                                           std::string("a\0b", 3),
                                           "\xff\xfe",
                                           "OrvML_OCTREE_MESHER",
                                           "ORVML_OCTREE_MESHER",
                                           "OrvML_OCTREE_MESHER2",
                                           "ORVMESHLIBRARY"};
  return normalOr(deviations, choice, normal);
}

/// An integer attribute of another value or type.
struct Number {
  hid_t (*type)();
  long long value;
};

constexpr Number kNumbers[] = {
    {[] { return H5T_NATIVE_INT; }, 0},        {[] { return H5T_NATIVE_INT; }, -1},
    {[] { return H5T_NATIVE_INT; }, 1},        {[] { return H5T_NATIVE_INT; }, 3},
    {[] { return H5T_NATIVE_INT; }, INT_MAX},  {[] { return H5T_NATIVE_INT; }, INT_MIN},
    {[] { return H5T_STD_I16BE; }, 2},         {[] { return H5T_STD_I64LE; }, 2},
    {[] { return H5T_STD_I64LE; }, 1LL << 40}, {[] { return H5T_STD_U64LE; }, -1},
    {[] { return H5T_IEEE_F64LE; }, 2},        {[] { return H5T_STD_B32LE; }, 2},
};

void makeTypedNumber(hid_t object, const std::string& name, const Number& number,
                     const Lengths& lengths) {
  const hid_t type = number.type();
  const long long twice[] = {number.value, number.value};
  const DataspaceId space = dataspaceOf(lengths, false);
  const AttributeId attribute(
      H5Acreate2(object, name.c_str(), type, space.get(), H5P_DEFAULT, H5P_DEFAULT));
  if (attribute.valid()) {
    H5Awrite(attribute.get(), H5T_NATIVE_LLONG, twice);
  }
}

}  // namespace

void makeText(Tree& tree, hid_t object, const std::string& name, const std::string& normal) {
  const unsigned kind = tree.bytes.choice(std::size(kTextMakers));
  kTextMakers[kind](object, name, textOf(tree.bytes.next(), normal));
}

void makeNumber(Tree& tree, hid_t object, const std::string& name, int normal) {
  constexpr unsigned kMissing = 1;
  constexpr unsigned kTwoValues = 2;
  constexpr unsigned kText = 3;
  constexpr unsigned kFirstDeviation = 4;
  const Number usual = {[] { return H5T_NATIVE_INT; }, normal};
  constexpr unsigned kTextOfZero = kFirstDeviation + std::size(kNumbers);
  const unsigned choice = tree.bytes.choice(kTextOfZero + 1);
  switch (choice) {
    case 0:
      makeTypedNumber(object, name, usual, {1});
      break;
    case kMissing:
      break;
    case kTwoValues:
      makeTypedNumber(object, name, usual, {2});
      break;
    case kText:
      makeFixed(object, name, "2", H5T_STR_NULLTERM, {});
      break;
    case kTextOfZero:
      makeFixed(object, name, "0", H5T_STR_NULLTERM, {});
      break;
    default:
      makeTypedNumber(object, name, kNumbers[choice - kFirstDeviation], {});
  }
}

}  // namespace orvml_io_tests
