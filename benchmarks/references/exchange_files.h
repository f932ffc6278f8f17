#pragma once

#include "inputs/content.h"
#include "references/loaded.h"

namespace orvml_io_bench {

// Two ways of writing and reading the exchange file without the library.

/// As little as HDF5 allows: H5D calls on relative identifiers, contiguous datasets, every
/// identifier closed. The reader asks what a reader must ask: the extents, and the names of
/// vectors.
namespace raw_hdf5 {
void write(const std::string& path, const Content& content);
Loaded read(const std::string& path, const Content& content);
/// Reads and leaves every vector open, as the library does by contract.
Loaded readLeavingOpen(const std::string& path, const Content& content);
}  // namespace raw_hdf5

/// A thin library done well: the Lite and Table interfaces with absolute paths.
namespace lite_library {
void write(const std::string& path, const Content& content);
Loaded read(const std::string& path, const Content& content);
}  // namespace lite_library

/// A record of the parameter table.
struct ParameterRecord {
  char name[80];
  double value;
};
std::vector<ParameterRecord> recordsOf(const Content& content);

/// The names of the links of a group.
std::vector<std::string> linkNames(long long group);

}  // namespace orvml_io_bench
