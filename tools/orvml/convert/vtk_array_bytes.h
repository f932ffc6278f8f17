#pragma once

#include "convert/vtk_xml.h"
#include "draft.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace orvml_tool {

/// The values of an array of a file.
///
/// @param values  how many there have to be; of field data, whose number nobody else tells, none
[[nodiscard]] Numbers valuesOf(const VtkXml& file, const VtkArray& array,
                               std::optional<std::uint64_t> values);

/// The same as 64-bit integers, for node numbers and ends of cells. Throws FormatError for an array
/// of floating-point numbers.
[[nodiscard]] std::vector<std::int64_t> integersOf(const VtkXml& file, const VtkArray& array,
                                                   std::optional<std::uint64_t> values);

}  // namespace orvml_tool
