#include "rescue/own_process.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace orvml::detail {

namespace {

// What the child says begins with one of these, and ends with the last: a child that fell has said
// less.
constexpr std::string_view kReport = "report";
constexpr std::string_view kError = "error";
constexpr std::string_view kNoMemory = "memory";
constexpr std::string_view kOther = "other";
constexpr std::string_view kEnd = "end";

/// Texts one behind the other, each with its length.
class Writer {
 public:
  void add(std::string_view text) {
    const auto size = static_cast<std::uint64_t>(text.size());
    message_.append(reinterpret_cast<const char*>(&size), sizeof size);
    message_.append(text);
  }
  void add(std::int64_t number) { add(std::to_string(number)); }

  /// Returns whether all of it went to the descriptor.
  bool writeTo(int descriptor) const noexcept {
    for (std::size_t at = 0; at < message_.size();) {
      const ssize_t moved = ::write(descriptor, message_.data() + at, message_.size() - at);
      if (moved < 0 && errno != EINTR) {
        return false;
      }
      at += moved > 0 ? static_cast<std::size_t>(moved) : 0;
    }
    return true;
  }

 private:
  std::string message_;
};

/// Takes texts out of a message again; nothing that a child says is believed.
class Reader {
 public:
  explicit Reader(std::string message) : message_(std::move(message)) {}

  std::string text() {
    std::uint64_t size = 0;
    if (message_.size() - at_ < sizeof size) {
      throw std::out_of_range("the message ends");
    }
    std::memcpy(&size, message_.data() + at_, sizeof size);
    at_ += sizeof size;
    if (message_.size() - at_ < size) {
      throw std::out_of_range("the message ends");
    }
    at_ += size;
    return message_.substr(at_ - size, size);
  }

  std::int64_t number() {
    const std::string digits = text();
    std::int64_t number = 0;
    const auto end = digits.data() + digits.size();
    if (std::from_chars(digits.data(), end, number).ptr != end) {
      throw std::out_of_range("the message has no number");
    }
    return number;
  }

 private:
  std::string message_;
  std::size_t at_ = 0;
};

constexpr int kNumberOfCodes = static_cast<int>(Code::otherVersion) + 1;
constexpr int kNumberOfPlaceKinds = static_cast<int>(PlaceKind::value) + 1;

/// The text of a code that never ends, for one that does.
std::string_view lastingCode(const std::string& code) {
  for (const CheckRule& rule : checkRules()) {
    if (rule.code == code) {
      return rule.code;
    }
  }
  for (int i = 0; i < kNumberOfCodes; ++i) {
    if (text(static_cast<Code>(i)) == code) {
      return text(static_cast<Code>(i));
    }
  }
  throw std::out_of_range("the message has no code");
}

void add(const LostObject& lost, Writer& writer) {
  writer.add(lost.code);
  writer.add(lost.object);
  writer.add(lost.count);
  writer.add(lost.sentence);
  writer.add(static_cast<std::int64_t>(lost.places.size()));
  for (const CheckPlace& place : lost.places) {
    writer.add(static_cast<std::int64_t>(place.kind));
    writer.add(place.index);
  }
}

LostObject takeLost(Reader& reader) {
  LostObject lost;
  lost.code = lastingCode(reader.text());
  lost.object = reader.text();
  lost.count = reader.number();
  lost.sentence = reader.text();
  for (std::int64_t left = reader.number(); left > 0; --left) {
    const std::int64_t kind = reader.number();
    if (kind < 0 || kind >= kNumberOfPlaceKinds) {
      throw std::out_of_range("the message has no place");
    }
    lost.places.push_back({static_cast<PlaceKind>(kind), reader.number()});
  }
  return lost;
}

void add(const RescueReport& report, Writer& writer) {
  writer.add(kReport);
  writer.add(static_cast<std::int64_t>(report.lost.size()));
  for (const LostObject& lost : report.lost) {
    add(lost, writer);
  }
  writer.add(static_cast<std::int64_t>(report.changed.size()));
  for (const ChangedObject& changed : report.changed) {
    writer.add(changed.object);
    writer.add(changed.sentence);
  }
}

RescueReport takeReport(Reader& reader) {
  RescueReport report;
  for (std::int64_t left = reader.number(); left > 0; --left) {
    report.lost.push_back(takeLost(reader));
  }
  for (std::int64_t left = reader.number(); left > 0; --left) {
    std::string object = reader.text();
    report.changed.push_back({std::move(object), reader.text()});
  }
  return report;
}

void add(const Error& error, Writer& writer) {
  writer.add(kError);
  writer.add(static_cast<std::int64_t>(error.code()));
  writer.add(error.sentence());
  writer.add(error.file().native());
  writer.add(error.object());
  writer.add(error.hdf5Reason());
}

Error takeError(Reader& reader) {
  const std::int64_t code = reader.number();
  if (code < 0 || code >= kNumberOfCodes) {
    throw std::out_of_range("the message has no code");
  }
  std::string sentence = reader.text();
  Error::About about;
  about.file = reader.text();
  about.object = reader.text();
  about.hdf5Reason = reader.text();
  return {static_cast<Code>(code), std::move(sentence), std::move(about)};
}

Writer messageOf(const std::function<RescueReport()>& work) {
  Writer writer;
  try {
    add(work(), writer);
  } catch (const Error& error) {
    add(error, writer);
  } catch (const std::bad_alloc&) {
    writer.add(kNoMemory);
  } catch (const std::exception& other) {
    writer.add(kOther);
    writer.add(other.what());
  }
  writer.add(kEnd);
  return writer;
}

/// What a program does when it falls is none of the child's business.
void fallQuietly() noexcept {
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGPIPE}) {
    (void)std::signal(signal, SIG_DFL);
  }
  const rlimit none = {0, 0};
  (void)::setrlimit(RLIMIT_CORE, &none);
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  (void)::dup2(nowhere, STDOUT_FILENO);
  (void)::dup2(nowhere, STDERR_FILENO);
}

/// No handlers of the program run at the end, which are the parent's.
[[noreturn]] void runInChild(const std::function<RescueReport()>& work, int descriptor) noexcept {
  fallQuietly();
  try {
    (void)messageOf(work).writeTo(descriptor);
  } catch (...) {
    // The parent hears that nothing was said.
  }
  ::_exit(0);
}

std::string readAll(int descriptor) {
  std::string all;
  char piece[4096];
  for (;;) {
    const ssize_t moved = ::read(descriptor, piece, sizeof piece);
    if (moved > 0) {
      all.append(piece, static_cast<std::size_t>(moved));
    } else if (moved == 0 || errno != EINTR) {
      return all;
    }
  }
}

void waitFor(pid_t child) noexcept {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
}

/// What a whole message says.
RescueReport heard(Reader reader) {
  const std::string kind = reader.text();
  if (kind == kReport) {
    RescueReport report = takeReport(reader);
    if (reader.text() != kEnd) {
      throw std::out_of_range("the message goes on");
    }
    return report;
  }
  if (kind == kError) {
    throw takeError(reader);
  }
  if (kind == kNoMemory) {
    throw std::bad_alloc();
  }
  throw std::runtime_error(kind == kOther ? reader.text() : kind);
}

/// The ends of a pipe, which close by themselves.
struct Pipe {
  int ends[2] = {-1, -1};

  Pipe() { (void)::pipe2(ends, O_CLOEXEC); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  Pipe(Pipe&&) = delete;
  Pipe& operator=(Pipe&&) = delete;
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  void closeEnd(int end) noexcept {
    if (ends[end] >= 0) {
      (void)::close(std::exchange(ends[end], -1));
    }
  }
};

}  // namespace

RescueReport inOwnProcess(const std::function<RescueReport()>& work,
                          const std::filesystem::path& path) {
  Pipe pipe;
  const pid_t child = pipe.ends[0] < 0 ? -1 : ::fork();
  if (child < 0) {
    throw Error(Code::fileUnreachable,
                std::string("cannot be read in a process of its own: ") + std::strerror(errno),
                {path, {}, {}});
  }
  if (child == 0) {
    runInChild(work, pipe.ends[1]);
  }
  pipe.closeEnd(1);
  std::string message = readAll(pipe.ends[0]);
  waitFor(child);
  try {
    return heard(Reader(std::move(message)));
  } catch (const std::out_of_range&) {
    throw Error(Code::fileDamaged, "is damaged in a way that HDF5 does not stand", {path, {}, {}});
  }
}

}  // namespace orvml::detail
