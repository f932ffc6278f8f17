#pragma once

#include <orvml/view.hpp>

#include "hdf5/id.h"
#include "hdf5/source_file.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace orvml::detail {

/// A dataset of a document. It is not open where the document has its values from elsewhere: in
/// older layouts vectors have no names.
struct StoredArray {
  std::string object;  ///< its absolute path in a file of the present layout
  orvml_io::DatasetId dataset;
};

/// The datasets of a document. What readers refuse, as data of other files, is not opened.
class StoredArrays {
 public:
  StoredArrays(hid_t file, Kind kind);

  [[nodiscard]] StoredArray coordinates();
  [[nodiscard]] StoredArray nodeIndices(Entity entity);
  [[nodiscard]] StoredArray attribute(Entity entity, std::string_view name);
  [[nodiscard]] StoredArray vectorParameter(std::string_view name);

 private:
  orvml_io::SourceFile source_;
  Kind kind_;
  bool hasNames_;  // of vectors
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
