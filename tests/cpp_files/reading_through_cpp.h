#pragma once

#include "hostile/reading.h"

namespace orvml_io_tests {

/// Reads a file in every way that the C++ layer offers, and does with what comes back all that it
/// can: it may hold anything. All ways have to agree with one another and, but for what the two
/// interfaces promise differently, with what the flat readers gave. What fails adds a test failure.
void readInEveryWayOfCpp(const char* path, const Readings& flat);

}  // namespace orvml_io_tests
