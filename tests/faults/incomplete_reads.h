#pragma once

#include <set>
#include <string>

namespace orvml_io_tests {

/// Expects that the places found by a test are the rows that begin with this text in the list of
/// the series of HDF5 that is used: no place is new, and none that is gone is still listed. Where
/// the environment variable ORVML_IO_RECORD_INCOMPLETE_READS names a file, they are added to it
/// instead.
void expectListed(const std::set<std::string>& found, const std::string& beginning);

}  // namespace orvml_io_tests
