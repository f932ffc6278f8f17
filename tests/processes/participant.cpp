// One program of an exchange. It does what the lines of its standard input say, answers each with a
// line, and lives, with everything that it has read, until the input ends.
#include "orvml_io.h"
#include "processes/mesh_document.h"

#include <hdf5.h>

#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace orvml_io_tests {
namespace {

/// A file in memory, as a program that reads it without copying has it.
class MappedFile {
 public:
  explicit MappedFile(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    (void)::fstat(file, &status);
    size_ = static_cast<std::size_t>(status.st_size);
    bytes_ = ::mmap(nullptr, size_, PROT_READ, MAP_SHARED, file, 0);
    (void)::close(file);
    copy_.assign(bytes(), bytes() + size_);
  }

  /// Whether the pages still hold what they held at first. Pages of a file that was cut are gone:
  /// to look at them ends the process.
  [[nodiscard]] bool isUnchanged() const { return std::memcmp(bytes(), copy_.data(), size_) == 0; }

 private:
  [[nodiscard]] const char* bytes() const { return static_cast<const char*>(bytes_); }

  std::size_t size_ = 0;
  void* bytes_ = nullptr;
  std::vector<char> copy_;
};

/// Everything that this program holds. Nothing of it is released before the end.
struct Possessions {
  std::vector<void*> documents;
  std::vector<MappedFile> mappedFiles;
};

using Arguments = std::istringstream;

template <class T>
T next(Arguments& arguments) {
  T value;
  arguments >> value;
  return value;
}

std::string writeDocument(Arguments& arguments) {
  const auto path = next<std::string>(arguments);
  const Kind kind = next<std::string>(arguments) == "input" ? Kind::input : Kind::output;
  MeshDocument document;
  arguments >> document.numberOfNodes >> document.attribute;
  return std::to_string(write(path.c_str(), kind, document));
}

std::string readDocument(Arguments& arguments, Possessions& mine) {
  const auto path = next<std::string>(arguments);
  const bool isInput = next<std::string>(arguments) == "input";
  void* document = nullptr;
  const int status = isInput ? OrvML_IO_ReadOrvInput(path.c_str(), document)
                             : OrvML_IO_ReadOrvOutput(path.c_str(), document);
  mine.documents.push_back(document);
  return std::to_string(status) + " " + describe(document);
}

/// Takes one look at everything that was read and mapped before.
std::string possessions(const Possessions& mine) {
  std::string text;
  for (void* document : mine.documents) {
    text += describe(document) + ", ";
  }
  for (const MappedFile& file : mine.mappedFiles) {
    text += file.isUnchanged() ? "mapping unchanged, " : "mapping changed, ";
  }
  return text;
}

/// Opens a file in HDF5 for good.
std::string holdForWriting(Arguments& arguments) {
  return H5Fopen(next<std::string>(arguments).c_str(), H5F_ACC_RDWR, H5P_DEFAULT) < 0 ? "no"
                                                                                      : "held";
}

/// Sets a lock for good, as a program may that knows nothing of HDF5.
std::string lock(Arguments& arguments) {
  const int file = ::open(next<std::string>(arguments).c_str(), O_RDWR | O_CLOEXEC);
  const int kind = next<std::string>(arguments) == "shared" ? LOCK_SH : LOCK_EX;
  return ::flock(file, kind | LOCK_NB) == 0 ? "locked" : "no";
}

/// Lets no file grow beyond a size, as on a full disk: a write beyond it fails, or ends the process
/// when the limit is fatal. 0 takes the limit back.
std::string limitFiles(Arguments& arguments, bool isFatal) {
  const struct rlimit noCore = {};
  (void)::setrlimit(RLIMIT_CORE, &noCore);
  (void)std::signal(SIGXFSZ, isFatal ? SIG_DFL : SIG_IGN);
  struct rlimit limit = {};
  (void)::getrlimit(RLIMIT_FSIZE, &limit);
  const auto bytes = next<rlim_t>(arguments);
  limit.rlim_cur = bytes == 0 ? limit.rlim_max : bytes;
  return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 ? "limited" : "no";
}

/// The superuser may do everything, so that permissions are tested as another one.
std::string becomeOrdinaryUser() {
  constexpr uid_t kNobody = 65534;
  return ::geteuid() != 0 || ::setuid(kNobody) == 0 ? "ordinary" : "no";
}

/// The same, as a member of one group besides the user's own.
std::string becomeMemberOf(Arguments& arguments) {
  constexpr gid_t kNoGroup = 65534;
  const auto group = next<gid_t>(arguments);
  return ::setgroups(1, &group) == 0 && ::setgid(kNoGroup) == 0 ? becomeOrdinaryUser() : "no";
}

bool hasOpen(const std::string& path) {
  for (const auto& descriptor : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(descriptor.path(), gone) == path) {
      return true;
    }
  }
  return false;
}

std::string answerOf(pid_t child, int pipe) {
  std::string answer(256, '\0');
  const ssize_t length = ::read(pipe, answer.data(), answer.size());
  (void)::close(pipe);
  (void)::waitpid(child, nullptr, 0);
  answer.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  return answer;
}

std::string obey(const std::string& line, Possessions& mine);

/// What a child does: it tells whether it has inherited a file, and obeys.
std::string obeyAsChild(const std::string& fileAndCommand) {
  const std::size_t space = fileAndCommand.find(' ');
  const std::string inherited = hasOpen(fileAndCommand.substr(0, space)) ? "inherited " : "";
  Possessions none;
  return inherited + obey(fileAndCommand.substr(space + 1), none);
}

/// Has a command done by a child: by this program started anew, or by a mere copy of this process.
/// The child tells, too, whether it has inherited a file.
std::string inChild(Arguments& arguments) {
  const bool isNewProgram = next<std::string>(arguments) == "exec";
  std::string fileAndCommand;
  std::getline(arguments >> std::ws, fileAndCommand);
  int ends[2] = {-1, -1};
  if (::pipe(ends) != 0) {
    return "no pipe";
  }
  const pid_t child = ::fork();
  if (child == 0) {
    (void)::dup2(ends[1], STDOUT_FILENO);
    if (isNewProgram) {
      (void)::execl("/proc/self/exe", "child", fileAndCommand.c_str(), nullptr);
      ::_exit(1);
    }
    std::cout << obeyAsChild(fileAndCommand) << std::flush;
    ::_exit(0);
  }
  (void)::close(ends[1]);
  return answerOf(child, ends[0]);
}

std::string obey(const std::string& line, Possessions& mine) {
  Arguments arguments(line);
  const auto command = next<std::string>(arguments);
  if (command == "write") return writeDocument(arguments);
  if (command == "read") return readDocument(arguments, mine);
  if (command == "map") {
    mine.mappedFiles.emplace_back(next<std::string>(arguments));
    return "mapped";
  }
  if (command == "possessions") return possessions(mine);
  if (command == "hold") return holdForWriting(arguments);
  if (command == "lock") return lock(arguments);
  if (command == "limit") return limitFiles(arguments, false);
  if (command == "fatal-limit") return limitFiles(arguments, true);
  if (command == "ordinary") return becomeOrdinaryUser();
  if (command == "member") return becomeMemberOf(arguments);
  if (command == "child") return inChild(arguments);
  return "no such command";
}

}  // namespace
}  // namespace orvml_io_tests

int main(int argc, char** argv) {
  if (argc > 1) {
    std::cout << orvml_io_tests::obeyAsChild(argv[1]) << std::flush;
    return 0;
  }
  orvml_io_tests::Possessions mine;
  for (std::string line; std::getline(std::cin, line);) {
    std::cout << orvml_io_tests::obey(line, mine) << std::endl;
  }
  // HDF5 1.10 may fall when it flushes at exit what could not be written before.
  ::_exit(0);
}
