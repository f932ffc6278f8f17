#include "passing_folder.h"

#include "console.h"
#include "interrupt.h"
#include "messages.h"

#include <stdlib.h>  // mkdtemp is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)

#include <cerrno>
#include <cstring>
#include <string>

namespace orvml_tool {

namespace {

class Folder {
 public:
  Folder() {
    std::error_code none;
    std::string name = (std::filesystem::temp_directory_path(none) / "orvml-XXXXXX").string();
    watchInterrupts();
    if (::mkdtemp(name.data()) == nullptr) {
      throw Refusal(printable(name) + ": cannot be made: " + std::strerror(errno),
                    "set TMPDIR to a folder with room, or use files instead of -");
    }
    path_ = name;
    removeOnInterrupt(path_);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  Folder(Folder&&) = delete;
  Folder& operator=(Folder&&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace

const std::filesystem::path& passingFolder() {
  static const Folder folder;
  return folder.path();
}

}  // namespace orvml_tool
