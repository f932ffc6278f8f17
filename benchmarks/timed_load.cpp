// Loads an exchange file twice and prints how many seconds the second time took: what a reader in
// another language is measured against.
//
//   orvml_timed_load FILE
#include <orvml/load.hpp>

#include <chrono>
#include <cstdio>

int main(int count, char** arguments) try {
  if (count != 2) {
    std::fputs("usage: orvml_timed_load FILE\n", stderr);
    return 1;
  }
  { const orvml::Loaded first = orvml::load(arguments[1]); }
  const auto begin = std::chrono::steady_clock::now();
  {
    const orvml::Loaded loaded = orvml::load(arguments[1]);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    std::printf("%.6f\n", seconds.count());
  }
  return 0;
} catch (const orvml::Error& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
