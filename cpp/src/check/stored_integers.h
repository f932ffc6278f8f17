#pragma once

#include "check/finding_list.h"
#include "hdf5/source_file.h"

namespace orvml::detail {

/// Finds the values of a dataset that do not fit a 32-bit integer, as which they are read. Datasets
/// of other types than wider or unsigned integers have none. Nothing is read beyond what a reader
/// of the file may cost.
void findClamped(orvml_io::SourceFile& file, const orvml_io::OpenGroup& group,
                 const std::string& name, hid_t dataset, Places& places);

}  // namespace orvml::detail
