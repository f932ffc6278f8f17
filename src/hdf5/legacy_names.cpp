// The three tables that turn positions of formats older than 1.4 into names, and the tests of the
// version text that select a layout.
#include "hdf5/layout.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/octree_mesher.h"
#include "model/names.h"

#include <cstring>

namespace orvml_io {

namespace {

// NOLINTNEXTLINE(readability-identifier-naming)
constexpr const char* parameter_names[] = {"ORVML_OCTREEMESHER_GENERAL_MESH_SIZE",
                                           "ORVML_OCTREEMESHER_SIZE_TRANSITION_FACTOR",
                                           "ORVML_OCTREEMESHER_TOLERANCE_FOR_GAPS",
                                           "ORVML_OCTREEMESHER_QUADRATIC_TYPE",
                                           "ORVML_OCTREEMESHER_INPUT_IS_WATERTIGHT",
                                           "ORVML_OCTREEMESHER_MAX_RELATIVE_CHORDAL_ERROR",
                                           "ORVML_OCTREEMESHER_MAX_CHORDAL_ERROR",
                                           "ORVML_OCTREEMESHER_PRIORIZE_OUTER_PART_WHEN_COLORING",
                                           "ORVML_OCTREEMESHER_MIN_COSINUS_FOR_SHARP_EDGES",
                                           "ORVML_OCTREEMESHER_ONLY_GET_INNER_TETRAHEDRA",
                                           kDeleteOuterEmbedded};

// NOLINTNEXTLINE(readability-identifier-naming)
constexpr const char* attribute_names[] = {"ORVML_OCTREEMESHER_FACES_EMBEDDED",
                                           "ORVML_OCTREEMESHER_FACES_INTERFACES_1",
                                           "ORVML_OCTREEMESHER_FACES_INTERFACES_2"};

template <std::size_t N>
const char* entryAt(const char* const (&table)[N], int position) {
  return position >= 0 && static_cast<std::size_t>(position) < N ? table[position] : nullptr;
}

bool isOctreeMesher(const char* moduleName) { return std::strcmp(moduleName, kOctreeMesher) == 0; }

/// The names of position 0 for one kind of entity; null where there is none.
struct FirstNames {
  const char* userInt;
  const char* functionInt;
  const char* functionDouble;
};

const FirstNames* firstNamesOf(ORVML_TYPE_OF_ENTITY entity) {
  static constexpr FirstNames kNodes = {"ORVML_OCTREEMESHER_NODES_DISTANCES",
                                        "ORVML_OCTREEMESHER_NODES_FORCED",
                                        "ORVML_OCTREEMESHER_NODES_SIZES"};
  static constexpr FirstNames kEdges = {"ORVML_OCTREEMESHER_EDGES_LINE_ID",
                                        "ORVML_OCTREEMESHER_EDGES_COLORS",
                                        "ORVML_OCTREEMESHER_EDGES_SIZES"};
  static constexpr FirstNames kFaces = {"ORVML_OCTREEMESHER_FACES_SURFACE_ID", attribute_names[0],
                                        "ORVML_OCTREEMESHER_FACES_SIZES"};
  static constexpr FirstNames kElements = {"", "ORVML_OCTREEMESHER_ELEMENTS_COLORS", ""};
  switch (entity) {
    case ORVML_NODES:
      return &kNodes;
    case ORVML_EDGES:
      return &kEdges;
    case ORVML_FACES:
      return &kFaces;
    case ORVML_ELEMENTS:
      return &kElements;
    default:
      return nullptr;
  }
}

}  // namespace

const char* GetParameterNameFromDeprecatedParameterIndex(const char* moduleName, int position) {
  return isOctreeMesher(moduleName) ? entryAt(parameter_names, position) : nullptr;
}

const char* GetParameterNameFromDeprecatedGenericAttributeIndex(const char* moduleName,
                                                                int position) {
  return isOctreeMesher(moduleName) && position == 0 ? kVolumesSizes : nullptr;
}

const char* GetAttributeNameFromDeprecatedAttributeIndex(const char* moduleName, int position,
                                                         ORVML_TYPE_OF_ENTITY entity,
                                                         ORVML_TYPE_OF_ATTRIBUTE attributeType,
                                                         ORVML_TYPE_OF_VALUE valueType) {
  const FirstNames* names = isOctreeMesher(moduleName) ? firstNamesOf(entity) : nullptr;
  if (names == nullptr) {
    return nullptr;
  }
  const bool isUser = attributeType == ORVML_USER_ATTRIBUTE;
  const bool isInt = valueType == ORVML_INT;
  if (entity == ORVML_FACES && !isUser && isInt) {
    return entryAt(attribute_names, position);
  }
  if (position != 0 || (isUser && !isInt)) {
    return nullptr;
  }
  if (isUser) {
    return names->userInt;
  }
  return isInt ? names->functionInt : names->functionDouble;
}

bool isBelowNamedFormat(const char* version) {
  return versionNumber(version) < layout::kFirstNamedFormat;
}

bool isNotAtLeastNamedFormat(const char* version) {
  return !(versionNumber(version) >= layout::kFirstNamedFormat);
}

}  // namespace orvml_io
