#pragma once

#include <cstddef>
#include <cstdint>

// What libFuzzer calls. A replay program calls the same two functions, so a fuzzer is compiled and
// its corpus is run with any compiler.
extern "C" {
int LLVMFuzzerInitialize(int* argc, char*** argv);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
}
