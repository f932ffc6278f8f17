#pragma once

#include <functional>

namespace orvml_io_tests {

/// Runs a step in several threads, which begin together, and waits for all of them. Each is told
/// its number, counted from 0.
void runTogether(int numberOfThreads, const std::function<void(int thread)>& step);

}  // namespace orvml_io_tests
