#include <orvml/parallel/save.hpp>

#include "agreement.h"
#include "array_parts.h"
#include "hdf5/descriptor.h"
#include "safe_file.h"
#include "shared_document.h"
#include "written_documents.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <initializer_list>
#include <list>
#include <optional>
#include <string>

namespace orvml::parallel {

namespace {

using detail::ArrayPart;
using detail::Communicator;
using detail::SharedDocument;
using detail::SharedFile;
using orvml::detail::LentDocument;
using orvml::detail::StandIn;

/// One or two, with room that no rank can lack.
using Documents = std::array<std::optional<SharedDocument>, 2>;

/// Has the system set aside the whole space of a file, so that its lack shows before ranks write.
/// A file system that cannot is left as it is.
void reserveSpace(const std::string& name, const std::filesystem::path& path) {
  const orvml_io::Descriptor file(::open(name.c_str(), O_RDWR | O_CLOEXEC));
  struct stat status = {};
  if (!file.valid() || ::fstat(file.get(), &status) != 0 || status.st_size == 0 ||
      ::fallocate(file.get(), 0, 0, status.st_size) == 0) {
    return;
  }
  if (errno == ENOSPC || errno == EDQUOT) {
    throw Error(Code::noSpaceLeft, "there is no space left on the device", {path, {}, {}});
  }
  if (errno == EFBIG) {
    throw Error(Code::fileTooLarge, "would be larger than files may be here", {path, {}, {}});
  }
}

/// The new file as the first rank makes it: all of it but the values that ranks share.
class NewFile {
 public:
  NewFile(const std::filesystem::path& path, const Documents& documents) : file_(path, watch_) {
    std::size_t bytes = 1;
    for (const auto& document : documents) {
      bytes = std::max(bytes, document ? document->largestArrayBytes() : 0);
    }
    const StandIn values(bytes);
    file_.leaveOut(values.address(), values.bytes());
    std::list<LentDocument> lent;
    const LentDocument* input = nullptr;
    const LentDocument* output = nullptr;
    for (const auto& document : documents) {
      if (document) {
        (document->kind() == Kind::input ? input : output) =
            &lent.emplace_back(document->wholeView(values));
      }
    }
    writeDocuments(input, output, file_);
    file_.close();
    reserveSpace(file_.name(), path);
  }

  [[nodiscard]] const std::string& name() const noexcept { return file_.name(); }
  void finish(bool flush) { file_.finish(flush); }

 private:
  orvml::detail::FailureWatch watch_;
  orvml::detail::SafeFile file_;
};

/// Has all ranks write what they share into the new file.
void fill(const Communicator& comm, const std::filesystem::path& name,
          const std::filesystem::path& path, Documents& documents, bool flush, Transfer transfer) {
  SharedFile file(comm, name, path, SharedFile::Access::write);
  std::vector<ArrayPart<const void*>> parts;
  together(comm, [&] {
    for (auto& document : documents) {
      for (ArrayPart<const void*>& part : document ? document->parts() : decltype(parts)()) {
        parts.push_back(std::move(part));
      }
    }
  });
  writeParts(comm, file, parts, transfer);
  const bool isFlushed = !flush || file.flush();
  const bool isClosed = file.close();
  together(comm, [&] {
    if (!isFlushed || !isClosed) {
      file.throwFailed({});
    }
  });
}

void write(MPI_Comm callers, const std::filesystem::path& path,
           std::initializer_list<const DocumentView*> views, const SaveOptions& options,
           Transfer transfer) {
  const Communicator comm(callers);
  Documents documents;
  auto next = documents.begin();
  for (const DocumentView* view : views) {
    (next++)->emplace(comm, *view);
  }
  std::optional<NewFile> file;
  try {
    std::vector<char> bytes;
    together(comm, [&] {
      if (comm.isFirst()) {
        file.emplace(path, documents);
        bytes.assign(file->name().begin(), file->name().end());
      }
    });
    comm.broadcast(bytes);
    std::filesystem::path name;
    together(comm, [&] { name.assign(bytes.begin(), bytes.end()); });
    fill(comm, name, path, documents, options.flush, transfer);
    together(comm, [&] {
      if (file) {
        file->finish(options.flush);
      }
    });
  } catch (...) {
    file.reset();  // no rank goes on while the new file is still there
    MPI_Barrier(comm.get());
    throw;
  }
}

}  // namespace

void save(MPI_Comm comm, const std::filesystem::path& path, const DocumentView& view,
          const SaveOptions& options, Transfer transfer) {
  write(comm, path, {&view}, options, transfer);
}

void save(MPI_Comm comm, const std::filesystem::path& path, const DocumentView& input,
          const DocumentView& output, const SaveOptions& options, Transfer transfer) {
  together(comm, [&] {
    if (input.kind() != Kind::input || output.kind() != Kind::output) {
      throw Error(Code::wrongKind, "a file of two documents takes an input and an output");
    }
  });
  write(comm, path, {&input, &output}, options, transfer);
}

}  // namespace orvml::parallel
