#include "input_file.h"

#include "console.h"
#include "messages.h"
#include "passing_folder.h"
#include "progress.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orvml_tool {

namespace {

constexpr std::string_view kStandardInput = "-";
std::filesystem::path standardInputPath;  // empty until it was kept

[[noreturn]] void throwUnkept(const char* what) {
  throw Refusal(std::string("standard input ") + what + ": " + std::strerror(errno),
                "write it to a file and name that, or set TMPDIR to a folder with room");
}

void writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      throwUnkept("cannot be kept");
    }
    bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
  }
}

/// Returns how many bytes came; 0 at the end.
std::size_t readSome(std::string& bytes) {
  for (;;) {
    const ssize_t read = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (read >= 0) {
      return static_cast<std::size_t>(read);
    }
    if (errno != EINTR) {
      throwUnkept("cannot be read");
    }
  }
}

std::filesystem::path keepStandardInput() {
  constexpr std::size_t kBlock = std::size_t{1} << 20U;
  constexpr mode_t kForTheUserAlone = 0600;
  std::filesystem::path path = passingFolder() / "standard input";
  const int kept = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kForTheUserAlone);
  std::string bytes(kBlock, '\0');
  Progress progress("reading standard input");
  while (const std::size_t read = readSome(bytes)) {
    writeAll(kept, std::string_view(bytes).substr(0, read));
    progress.addBytes(read);
  }
  (void)::close(kept);
  return path;
}

}  // namespace

InputFile::InputFile(const std::string& name) : given_(name), path_(name) {
  if (name == kStandardInput) {
    if (standardInputPath.empty()) {
      standardInputPath = keepStandardInput();
    }
    path_ = standardInputPath;
  }
  shown_ = shownFile(path_);
}

orvml::Exchange documentsOf(const orvml::MappedFile& file) {
  orvml::Exchange documents;
  if (file.hasInput()) {
    documents.input = file.input();
  }
  if (file.hasOutput()) {
    documents.output = file.output();
  }
  return documents;
}

}  // namespace orvml_tool
