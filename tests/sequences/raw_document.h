#pragma once

#include "sequences/document_model.h"
#include "support/raw_file.h"

#include <map>
#include <string>

namespace orvml_io_tests {

/// Expects that a file holds a document: every group, dataset and attribute with its type, extents
/// and values, and nothing else. The file is read by HDF5 alone.
void expectHolds(const RawFile& file, const std::string& group, const DocumentModel& document);

/// What a file is made of, without the values: each path with its kind, its type, its extents and
/// the names of its attributes.
std::map<std::string, std::string> structureOf(const RawFile& file);

}  // namespace orvml_io_tests
