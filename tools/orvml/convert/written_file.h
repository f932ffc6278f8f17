#pragma once

#include "convert/byte_sink.h"

#include <filesystem>
#include <functional>

namespace orvml_tool {

/// Has a file of another format written beside its place and moved there when it is whole, so that
/// whatever fails leaves the old file, or none. Symbolic links are followed, the rights of an old
/// file stay. It is not flushed to the device: it can be made again.
///
/// Throws Refusal when it cannot be written, and what `write` throws.
void writeWholeFile(const std::filesystem::path& path,
                    const std::function<void(ByteSink& sink)>& write);

}  // namespace orvml_tool
