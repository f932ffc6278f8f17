#pragma once

#include "hdf5/id.h"
#include "hdf5/path.h"
#include "values/attributes_scalar.h"

namespace orvml_io {

// The table of scalar parameters: records of a name and a value, in the layout and with the
// descriptive attributes of HDF5's Table interface. Records pass in blocks, so that the memory
// needed does not grow with the table.

/// Tells whether a name fits a record with its terminator.
[[nodiscard]] bool fitsRecord(const std::string& name) noexcept;

/// Makes the table of all parameters, in ascending order of their names. Nothing is made when a
/// name does not fit.
[[nodiscard]] int writeParameterTable(hid_t location, const Path& path,
                                      const OML_AttributesScalar<double>& parameters);

/// Sets the parameters that a table holds. Nothing is set when it is none or cannot be read whole.
[[nodiscard]] int readParameterTable(hid_t dataset, OML_AttributesScalar<double>& parameters);

}  // namespace orvml_io
