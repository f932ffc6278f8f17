#include "convert/written_file.h"

#include "console.h"
#include "messages.h"

#include <fcntl.h>
#include <stdlib.h>  // mkostemp is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

namespace orvml_tool {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& path, int error) {
  throw Refusal(printable(path) + ": cannot be written: " + std::strerror(error),
                "look at the path, and at the rights of the file and its folder");
}

/// Where a path leads, whether there is a file or not.
std::filesystem::path followed(const std::filesystem::path& path) {
  std::error_code failure;
  std::filesystem::path target = std::filesystem::weakly_canonical(path, failure);
  if (failure) {
    refuse(path, failure.value());
  }
  return target;
}

mode_t rightsOfNewFiles() noexcept {
  constexpr mode_t kOfFiles = 0666;
  const mode_t mask = ::umask(0);
  (void)::umask(mask);
  return kOfFiles & ~mask;
}

/// A file without its name, which is removed unless it takes that. While it is open, its own name
/// tells whoever ends the program by a signal that it has to go.
class FileBesideIt {
 public:
  explicit FileBesideIt(const std::filesystem::path& path)
      : path_(path), target_(followed(path)), name_(target_.parent_path() / ".orvml_io-XXXXXX") {
    struct stat old = {};
    const bool isThere = ::stat(target_.c_str(), &old) == 0;
    if (isThere && !S_ISREG(old.st_mode)) {
      throw Refusal(printable(path) + ": is no regular file", "name another file");
    }
    if (isThere && ::access(target_.c_str(), W_OK) != 0) {
      refuse(path, errno);
    }
    descriptor_ = ::mkostemp(name_.data(), O_CLOEXEC);
    constexpr mode_t kRights = 07777;
    if (descriptor_ < 0 ||
        ::fchmod(descriptor_, isThere ? old.st_mode & kRights : rightsOfNewFiles()) != 0) {
      refuse(path, errno);
    }
  }
  FileBesideIt(const FileBesideIt&) = delete;
  FileBesideIt& operator=(const FileBesideIt&) = delete;
  FileBesideIt(FileBesideIt&&) = delete;
  FileBesideIt& operator=(FileBesideIt&&) = delete;

  [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

  void takeName() {
    if (::rename(name_.c_str(), target_.c_str()) != 0) {
      refuse(path_, errno);
    }
    name_.clear();
  }

  ~FileBesideIt() {
    if (!name_.empty()) {
      (void)::unlink(name_.c_str());
    }
    (void)::close(descriptor_);
  }

 private:
  std::filesystem::path path_;
  std::filesystem::path target_;
  std::string name_;
  int descriptor_ = -1;
};

}  // namespace

void writeWholeFile(const std::filesystem::path& path,
                    const std::function<void(ByteSink& sink)>& write) {
  FileBesideIt file(path);
  ByteSink sink(file.descriptor(), path);
  write(sink);
  sink.flush();
  file.takeName();
}

}  // namespace orvml_tool
