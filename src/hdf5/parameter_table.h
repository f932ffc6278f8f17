#pragma once

#include "hdf5/open_group.h"
#include "hdf5/source_file.h"
#include "values/attributes_scalar.h"

#include <string>

namespace orvml_io {

// The table of scalar parameters: records of a name and a value, in the layout and with the
// descriptive attributes of HDF5's Table interface. Records pass in blocks, so that the memory
// needed does not grow with the table.

/// Tells whether a name fits a record with its terminator.
[[nodiscard]] bool fitsRecord(const std::string& name) noexcept;

/// Makes the table of all parameters in the group of a document, in ascending order of their names.
/// Nothing is made when a name does not fit.
[[nodiscard]] int writeParameterTable(const OpenGroup& document,
                                      const OML_AttributesScalar<double>& parameters);

/// Sets the parameters that a table holds. Nothing is set when it is none or cannot be read whole.
///
/// Fields count by their position, as for HDF5's Table interface: a string of any fixed length,
/// then a float of any size, whatever their names. Longer names are cut to those that a record
/// holds.
[[nodiscard]] int readParameterTable(SourceFile& file, const OpenGroup& document, hid_t dataset,
                                     OML_AttributesScalar<double>& parameters);

}  // namespace orvml_io
