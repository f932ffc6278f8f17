#pragma once

#include <hdf5.h>

namespace orvml_io_tests {

/// The table of scalar parameters of an input document.
inline constexpr char kTable[] = "/OrvInput/parameters";

/// A record of it as this library lays it out.
struct ParameterRecord {
  char name[80];
  double value;
};

// Types of the values of a record; the caller closes what these make.

inline hid_t nativeDouble() { return H5Tcopy(H5T_NATIVE_DOUBLE); }
inline hid_t nativeFloat() { return H5Tcopy(H5T_NATIVE_FLOAT); }
inline hid_t bigEndianDouble() { return H5Tcopy(H5T_IEEE_F64BE); }

}  // namespace orvml_io_tests
