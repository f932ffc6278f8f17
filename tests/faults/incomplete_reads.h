#pragma once

#include <set>
#include <string>

namespace orvml_io_tests {

/// Expects that the places found by a test are the rows of incomplete_reads.txt that begin with
/// this text: no place is new, and none that is gone is still listed.
void expectListed(const std::set<std::string>& found, const std::string& beginning);

}  // namespace orvml_io_tests
