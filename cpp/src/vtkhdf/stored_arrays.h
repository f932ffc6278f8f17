#pragma once

#include <orvml/view.hpp>

#include "hdf5/id.h"
#include "hdf5/source_file.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace orvml::detail {

/// A dataset of a document, which may not be there: a document may have got its values from another
/// one, as those of older layouts do.
struct StoredArray {
  std::string object;  ///< its absolute path in the file
  orvml_io::DatasetId dataset;
};

/// The datasets of a document. What readers refuse, as data of other files, is not opened.
class StoredArrays {
 public:
  StoredArrays(hid_t file, Kind kind) : source_(file), kind_(kind) {}

  [[nodiscard]] StoredArray coordinates();
  [[nodiscard]] StoredArray nodeIndices(Entity entity);
  [[nodiscard]] StoredArray attribute(Entity entity, std::string_view name);
  [[nodiscard]] StoredArray vectorParameter(std::string_view name);

 private:
  orvml_io::SourceFile source_;
  Kind kind_;
};

/// Whether VTK reads the values of a dataset, which is open, with these extents and no others.
[[nodiscard]] bool isReadByVtk(hid_t dataset, std::int64_t length);
[[nodiscard]] bool isReadByVtkAsPoints(hid_t dataset, std::int64_t points);

/// Whether the node indices of a dataset are signed integers of a width: 32 or 64 bits.
[[nodiscard]] bool hasIndexType(hid_t dataset, hid_t nativeType);

/// Whether a dataset is a row of this many numbers that HDF5 reads without plug-ins, so that a
/// virtual dataset can take from it, and convert what it takes.
[[nodiscard]] bool canBeJoined(hid_t dataset, std::int64_t length);

}  // namespace orvml::detail
