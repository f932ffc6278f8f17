#pragma once

#include <cstddef>

namespace orvml_io {

/// Tells the system that a block, which nothing has touched yet, is about to be written whole.
///
/// What filling a large new array costs is mostly its page faults. Where the system offers huge
/// pages on request, the aligned inside of a block of several MiB is taken from them and the faults
/// become few. The block is released as it would be without the call; small blocks, and systems
/// without such pages, are left alone.
void willBeWrittenWhole(void* block, std::size_t bytes) noexcept;

}  // namespace orvml_io
