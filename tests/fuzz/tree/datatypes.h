#pragma once

#include "hdf5/id.h"

namespace orvml_io_tests {

/// Returns a datatype for a dataset or an attribute. Choice 0 is the normal type; every other one
/// is another type of any class. The choices repeat.
orvml_io::DatatypeId datatypeOf(unsigned choice, hid_t normal);

/// Returns the type of a parameter record. Choice 0 is the type that the format asks for.
orvml_io::DatatypeId recordTypeOf(unsigned choice);

}  // namespace orvml_io_tests
