// Runs a fuzzer over stored inputs, without libFuzzer. The arguments are files and folders. The
// name of an input is printed before it runs, so that the last one is the one that failed.
#include "fuzz/harness/fuzz_target.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> inputsBelow(const fs::path& path) {
  if (!fs::is_directory(path)) {
    return {path};
  }
  std::vector<fs::path> inputs;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
    if (entry.is_regular_file()) {
      inputs.push_back(entry.path());
    }
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

bool replay(const fs::path& path) {
  (void)std::fprintf(stderr, "%s\n", path.c_str());
  std::ifstream stream(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(stream)),
                                std::istreambuf_iterator<char>());
  if (!stream.is_open()) {
    return false;
  }
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  return LLVMFuzzerTestOneInput(input.data(), input.size()) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  LLVMFuzzerInitialize(&argc, &argv);
  int inputs = 0;
  for (int i = 1; i < argc; ++i) {
    for (const fs::path& input : inputsBelow(argv[i])) {
      if (!replay(input)) {
        return 1;
      }
      ++inputs;
    }
  }
  (void)std::fprintf(stderr, "%d inputs\n", inputs);
  return inputs > 0 ? 0 : 1;  // a corpus that is not found is not a corpus that holds
}
