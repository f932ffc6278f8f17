#pragma once

#include "inputs/content.h"

namespace orvml_io_bench::plain_text {

/// Prints the mesh text as it may be printed without care for speed: one fprintf for every line of
/// a node and every number of an element.
void printWithFprintf(const std::string& path, const Content& content);

/// Formats all of it exactly into one buffer that is large enough, and writes that once.
void printFromOneBuffer(const std::string& path, const Content& content);

}  // namespace orvml_io_bench::plain_text
