#pragma once

#include <orvml/conversion.hpp>
#include <orvml/view.hpp>

#include "hdf5/layout.h"
#include "safe_file.h"
#include "vtkhdf/shown_cells.h"
#include "vtkhdf/stored_arrays.h"

#include <string>
#include <vector>

namespace orvml::detail {

/// The group that is being made, and what it is made of. All is borrowed.
struct VtkTarget {
  SafeFile& file;
  hid_t group;
  const DocumentView& document;
  const ShownCells& cells;
  StoredArrays& stored;
  std::vector<ConversionNote>& notes;

  /// Throws that the file could not be written.
  void require(bool isWritten) const {
    if (!isWritten) {
      file.throwUnwritten();
    }
  }

  /// Notes what became of an object.
  ///
  /// @param sentence  what follows the object
  void note(Fate fate, const std::string& object, const std::string& sentence) const {
    notes.push_back({fate, object, object + " " + sentence});
  }
};

/// The path of an array of the group.
[[nodiscard]] inline std::string shownAt(const std::string& name) {
  return std::string(orvml_io::layout::kVtkHdf) + "/" + name;
}

/// Makes the arrays of the points, and of the cells.
void showPoints(const VtkTarget& target);
void showCells(const VtkTarget& target);

/// Makes those of the attributes and the parameters.
void showValues(const VtkTarget& target);

}  // namespace orvml::detail
