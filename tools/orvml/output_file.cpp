#include "output_file.h"

#include "console.h"
#include "interrupt.h"
#include "messages.h"
#include "passing_folder.h"

#include <fstream>

namespace orvml_tool {

namespace {

constexpr const char* kStandardOutput = "-";

void copyToOutput(const std::filesystem::path& path) {
  constexpr std::size_t kBlock = std::size_t{1} << 20U;
  std::ifstream file(path, std::ios::binary);
  std::string block(kBlock, '\0');
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
    print(std::string_view(block).substr(0, static_cast<std::size_t>(file.gcount())));
  }
  flushOutput();
}

}  // namespace

OutputFile::OutputFile(std::string name, const std::string& content) : name_(std::move(name)) {
  watchInterrupts();
  if (name_ == kStandardOutput && isTerminal(Stream::output)) {
    throw Refusal("standard output is a terminal, which shows no " + content,
                  "name a file, or send the output to a program");
  }
}

void OutputFile::write(const std::function<void(const std::filesystem::path& path)>& save) const {
  if (name_ != kStandardOutput) {
    save(name_);
    return;
  }
  const std::filesystem::path path = passingFolder() / "standard output";
  save(path);
  copyToOutput(path);
}

}  // namespace orvml_tool
