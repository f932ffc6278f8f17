#pragma once

#include "support/raw_file.h"

#include <ostream>
#include <string>
#include <vector>

namespace orvml_io_tests {

/// What a reader finds at the place of a dataset after a damage.
enum class Finding {
  moved,        ///< the same dataset behind another link
  converted,    ///< the same values in another numeric type
  nothing,      ///< nothing that opens as a dataset
  elsewhere,    ///< something that lies in another file
  noExtents,    ///< a dataset of a single value, or of none, without extents
  twiceAsWide,  ///< the same first extent, and twice as many values
  empty,        ///< a first extent of 0
  longer,       ///< a first extent of one more
  shorter,      ///< a first extent of one less
  unstored,     ///< an extent of some 10000, with nothing stored
  huge,         ///< an extent that needs 32 bits and more, with nothing stored
  enumerated,   ///< the same extents, and an enumeration's zeros, which HDF5 converts to numbers
  noNumbers     ///< the same extents, and values that cannot be converted to numbers
};

/// A way to replace a dataset of a file by something else.
struct Damage {
  const char* name;
  Finding finding;
  void (*apply)(RawFile& file, const std::string& dataset);
};

/// Prints the name, for the messages of failed tests.
std::ostream& operator<<(std::ostream& stream, const Damage& damage);

const std::vector<Damage>& damages();

}  // namespace orvml_io_tests
