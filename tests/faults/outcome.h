#pragma once

#include <set>
#include <string>

namespace orvml_io_tests {

/// What of a document is missing from another description of it (files/described_document.h), in
/// words: "nodes", "face attribute", "parameter"; "module" stands for all identification. Empty
/// when nothing is. What was made up, and is no changed part, is named with a "+".
std::set<std::string> lostParts(const std::string& whole, const std::string& found);

std::string joined(const std::set<std::string>& parts, const char* separator);

/// Calls every accessor of a document that came back from a reader, describes it, and deletes it.
/// Null has an empty description.
std::string describeAndDelete(void* document);

}  // namespace orvml_io_tests
