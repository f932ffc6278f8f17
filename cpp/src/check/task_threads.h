#pragma once

#include <cstddef>
#include <functional>

namespace orvml::detail {

/// Performs tasks by their numbers, on the caller's thread and on as many others as are wanted and
/// of use: whichever is free takes the next one. Throws what a task throws.
void performAll(std::size_t tasks, int threads, const std::function<void(std::size_t)>& perform);

}  // namespace orvml::detail
