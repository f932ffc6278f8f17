#include <orvml/interop.hpp>
#include <orvml/load.hpp>

#include "command.h"
#include "console.h"
#include "document_choice.h"
#include "exit_codes.h"
#include "input_file.h"
#include "messages.h"
#include "progress.h"

#include <orvml_io.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <thread>

namespace orvml_tool {

namespace {

struct TextArguments {
  std::string file;
  DocumentChoice choice;
};

[[noreturn]] void throwSystemError() {
  throw Refusal(std::string("the mesh cannot be printed: ") + std::strerror(errno), "try again");
}

/// A descriptor that is closed at the end at the latest.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {
    if (number < 0) {
      throwSystemError();
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&&) = delete;
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() { close(); }

  void close() noexcept {
    if (number_ >= 0) {
      (void)::close(number_);
    }
    number_ = -1;
  }
  [[nodiscard]] int number() const noexcept { return number_; }
  [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(number_); }

 private:
  int number_;
};

/// Prints what a descriptor gives until it ends. Returns why it could not; then it still reads on,
/// so that the writer comes to its end.
std::exception_ptr printAllOf(int descriptor) {
  std::exception_ptr failure;
  std::array<char, 65536> block = {};
  for (ssize_t read = 1; read > 0;) {
    read = ::read(descriptor, block.data(), block.size());
    try {
      if (read > 0 && !failure) {
        print({block.data(), static_cast<std::size_t>(read)});
      }
    } catch (const OutputFailure&) {
      failure = std::current_exception();
    }
  }
  return failure;
}

/// The flat interface writes to a path and does not tell when that fails. Through a pipe its text
/// comes as it is made, and whether it gets on to standard output is seen here.
void printThroughPipe(orvml::Document& document) {
  std::array<int, 2> ends = {};
  if (::pipe(ends.data()) != 0) {
    throwSystemError();
  }
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  std::exception_ptr failure;
  std::thread printer([&] { failure = printAllOf(reading.number()); });
  const int result = OrvML_IO_WriteMeshInOrvFormat(writing.path().c_str(), handle(document));
  writing.close();
  printer.join();
  if (failure) {
    std::rethrow_exception(failure);
  }
  if (result != 0) {
    throwSystemError();
  }
}

/// For documents without nodes, of which the flat interface leaves the file open: a pipe would not
/// end.
void printThroughMemory(orvml::Document& document) {
  const Descriptor memory(::memfd_create("mesh", MFD_CLOEXEC));
  if (OrvML_IO_WriteMeshInOrvFormat(memory.path().c_str(), handle(document)) != 0) {
    throwSystemError();
  }
  if (const auto failure = printAllOf(memory.number())) {
    std::rethrow_exception(failure);
  }
}

void printMesh(orvml::Document& document) {
  if (document.nodes().size() == 0) {
    printThroughMemory(document);
  } else {
    printThroughPipe(document);
  }
}

int runText(const TextArguments& options) {
  const InputFile file(options.file);
  const Progress progress("printing the mesh of " + file.shown());
  orvml::Loaded loaded = orvml::load(file.path(), {.threads = 2});
  const auto kind =
      options.choice.of(loaded.input.has_value(), loaded.output.has_value(), file.shown());
  if (kind == orvml::Kind::input) {
    printMesh(*loaded.input);
  } else {
    printMesh(*loaded.output);
  }
  return kDone;
}

}  // namespace

void addText(CLI::App& app, Run& run) {
  auto options = std::make_shared<TextArguments>();
  CLI::App& command =
      addSubcommand(app, "text", "Print a mesh as plain text", "orvml text part.h5 >part.txt");
  command.add_option("FILE", options->file, "an exchange file; - is standard input")->required();
  addChoice(command, options->choice);
  command.callback([options, &run] { run = [options] { return runText(*options); }; });
}

}  // namespace orvml_tool
