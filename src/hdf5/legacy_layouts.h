#pragma once

#include "hdf5/layout.h"
#include "hdf5/source_file.h"
#include "orvml_io.h"
#include "values/attributes_vector.h"
#include "values/blocks.h"

#include <map>
#include <string>

namespace orvml_io {

// Formats older than 1.4 keep values by position. Three tables of the octree mesher turn positions
// back into names; each answers null where a position has none and for every other module.

[[nodiscard]] const char* GetParameterNameFromDeprecatedParameterIndex(const char* moduleName,
                                                                       int position);
[[nodiscard]] const char* GetParameterNameFromDeprecatedGenericAttributeIndex(
    const char* moduleName, int position);

/// Contract: position 0 of the user ints and of the function doubles of volume elements has the
/// empty text as its name: an empty name is a name, not null.
[[nodiscard]] const char* GetAttributeNameFromDeprecatedAttributeIndex(
    const char* moduleName, int position, ORVML_TYPE_OF_ENTITY entity,
    ORVML_TYPE_OF_ATTRIBUTE attributeType, ORVML_TYPE_OF_VALUE valueType);

/// One of the four positional attribute groups of a container.
struct PositionalAttributes {
  const char* subPath;
  ORVML_TYPE_OF_ATTRIBUTE attributeType;
  ORVML_TYPE_OF_VALUE valueType;
  const char* fallbackName;  ///< of positions without a name; the position follows
};

/// Read in this order: later groups replace entries of the same name.
inline constexpr PositionalAttributes kPositionalAttributes[] = {
    {layout::kFunctionAttributes, ORVML_FUNCTION_ATTRIBUTE, ORVML_DOUBLE, "function-attribute-"},
    {layout::kUserAttributes, ORVML_USER_ATTRIBUTE, ORVML_DOUBLE, "user-attribute-"},
    {layout::kFunctionMarkers, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT, "function-marker-"},
    {layout::kUserMarkers, ORVML_USER_ATTRIBUTE, ORVML_INT, "user-marker-"}};

/// The name of the vector at a position of a container's group.
///
/// @param mayBeEmpty  whether the empty name stays; it becomes that of a position without a name
///                    otherwise
[[nodiscard]] std::string attributeNameAt(const PositionalAttributes& group, int position,
                                          ORVML_TYPE_OF_ENTITY entity, bool mayBeEmpty);

/// The vectors of a positional group, by position; positions without a dataset are absent.
using PositionedVectors = std::map<int, MallocBlock>;

/// Reads the vectors at the positions 0 to "MAX_ID" - 1 of a group, each of `count` values: what a
/// dataset lacks are zeros, one that has more fails. Returns 1 when "MAX_ID" is missing or below 1,
/// and when a dataset could not be read; the other ones are read all the same.
[[nodiscard]] int ReadAttributesOldInt(SourceFile& file, const OpenGroup& container,
                                       const char* subPath, int count, PositionedVectors& vectors);
[[nodiscard]] int ReadAttributesOldDouble(SourceFile& file, const OpenGroup& container,
                                          const char* subPath, int count,
                                          PositionedVectors& vectors);

/// Reads the attribute vectors of a container from its up to four positional groups.
///
/// Contract: the result is that of the last group that exists; an earlier failure is forgotten.
/// Only what lies in another file fails the reading wherever it is met.
[[nodiscard]] int ReadAttributesOld(SourceFile& file, const OpenGroup& container, int count,
                                    OML_AttributesVector& attributes, ORVML_TYPE_OF_ENTITY entity);

/// The name of the double vector at a position of the generic ones; a module without a name for it
/// gives the position itself, which is the name of every int vector.
[[nodiscard]] std::string genericAttributeNameAt(const char* module, int position);

/// What reading the generic vectors of one type came to.
struct GenericVectorsRead {
  int status = 0;             ///< 1 when the group, or a vector in it, could not be read
  bool isGroupUsable = true;  ///< whether the group has a "MAX_ID", where there is a group
};

/// Reads the generic int vectors of a document; none where there is no such group.
[[nodiscard]] GenericVectorsRead ReadGenericMarkersOld(SourceFile& file, const OpenGroup& document,
                                                       OML_AttributesVector& store);
/// Reads the generic double vectors, likewise.
[[nodiscard]] GenericVectorsRead ReadGenericAttributesOld(SourceFile& file,
                                                          const OpenGroup& document,
                                                          const char* module,
                                                          OML_AttributesVector& store);

/// The two tests of a version text that select a layout. They differ for a text that reads as NaN.
[[nodiscard]] bool isBelowNamedFormat(const char* version);
[[nodiscard]] bool isNotAtLeastNamedFormat(const char* version);

}  // namespace orvml_io
