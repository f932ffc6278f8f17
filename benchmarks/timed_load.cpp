// Loads an exchange file by the C++ layer and tells how long that took, for a program in another
// language that measures its own reading in the same process: from one process to the next the same
// call takes up to twice as long, as the pages that the system has at hand are large or small.
#include <orvml/load.hpp>

#include <chrono>

/// @return seconds; negative when the file cannot be loaded
extern "C" __attribute__((visibility("default"))) double orvml_seconds_to_load(
    const char* path) noexcept try {
  const auto begin = std::chrono::steady_clock::now();
  const orvml::Loaded loaded = orvml::load(path);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
} catch (const std::exception&) {
  return -1;
}
