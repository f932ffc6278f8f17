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

std::filesystem::path madeFolder;  // empty until it is

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
    madeFolder = name;
    removeOnInterrupt(madeFolder);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  Folder(Folder&&) = delete;
  Folder& operator=(Folder&&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(madeFolder, ignored);
  }
};

}  // namespace

const std::filesystem::path& passingFolder() {
  static const Folder kFolder;
  return madeFolder;
}

bool isPassing(const std::filesystem::path& file) noexcept {
  const std::string& name = file.native();
  return !madeFolder.empty() && name.size() > madeFolder.native().size() &&
         name.starts_with(madeFolder.native()) && name[madeFolder.native().size()] == '/';
}

}  // namespace orvml_tool
