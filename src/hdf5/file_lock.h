#pragma once

namespace orvml_io {

/// Tells whether creating a file at the path would fail because it is held open elsewhere.
///
/// HDF5 truncates an existing file before it takes its lock, so a writer that lost the race against
/// another program would have destroyed what that program reads. Looking first keeps the content;
/// the result of the writer is the same.
[[nodiscard]] bool isHeldByAnother(const char* fileName);

}  // namespace orvml_io
