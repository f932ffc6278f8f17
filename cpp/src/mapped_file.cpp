#include <orvml/mapped_file.hpp>

#include "core_views.h"
#include "hdf5/probes.h"
#include "opened_file.h"
#include "stored_values.h"

#include <sys/file.h>
#include <sys/mman.h>

#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace orvml {

namespace detail {

/// The pages of a file. MappedFile has them as a member, so that they are in no unnamed namespace.
class MappedPages {
 public:
  MappedPages() = default;
  /// Maps a file; there are no pages where the system cannot.
  MappedPages(int descriptor, std::uint64_t bytes) noexcept {
    void* address =
        bytes == 0 ? MAP_FAILED : ::mmap(nullptr, bytes, PROT_READ, MAP_SHARED, descriptor, 0);
    if (address != MAP_FAILED) {
      address_ = static_cast<const char*>(address);
      bytes_ = bytes;
    }
  }
  MappedPages(const MappedPages&) = delete;
  MappedPages& operator=(const MappedPages&) = delete;
  MappedPages(MappedPages&&) = delete;
  MappedPages& operator=(MappedPages&&) = delete;
  ~MappedPages() {
    if (address_ != nullptr) {
      (void)::munmap(const_cast<char*>(address_), bytes_);  // NOLINT(*-pro-type-const-cast)
    }
  }
  [[nodiscard]] const char* address() const noexcept { return address_; }
  [[nodiscard]] std::uint64_t bytes() const noexcept { return bytes_; }

 private:
  const char* address_ = nullptr;
  std::uint64_t bytes_ = 0;
};

}  // namespace detail

namespace {

using orvml_io::Descriptor;
using orvml_io::OrvInputAndOrvOutput;

/// Lends the arrays of a mapped file where they lie in its pages, and keeps account of the others.
class MappedArrays : public orvml_io::ArrayReader {
 public:
  MappedArrays(const detail::MappedPages& pages, std::vector<ReadArray>& others) noexcept
      : pages_(pages), others_(others) {}

  [[nodiscard]] const void* lend(const orvml_io::WantedArray& wanted) override {
    if (wanted.length == 0) {
      return nullptr;  // there is nothing to lend, nor to read
    }
    const char* obstacle = "cannot be mapped";
    if (pages_.address() != nullptr) {
      const detail::StoredValues stored = detail::storedValuesOf(wanted, pages_.bytes());
      obstacle = stored.arePlain() ? misalignment(stored, wanted.code) : stored.obstacle;
      if (obstacle == nullptr) {
        return pages_.address() + stored.offset;
      }
    }
    others_.push_back({orvml_io::pathOfObject(wanted.dataset), obstacle});
    return nullptr;
  }

  [[nodiscard]] bool read(const orvml_io::WantedArray& /*wanted*/, void* /*values*/) override {
    return false;
  }

 private:
  /// A mapping begins at a page, so that the place in the file tells how an array is aligned.
  static const char* misalignment(const detail::StoredValues& stored, char code) noexcept {
    const std::uint64_t alignment = code == orvml_io::kIntCode ? alignof(int) : alignof(double);
    return stored.offset % alignment == 0 ? nullptr : "is misaligned";
  }

  const detail::MappedPages& pages_;
  std::vector<ReadArray>& others_;
};

}  // namespace

struct MappedFile::Content {
  explicit Content(const detail::OpenedFile& file)
      : path(file.path()), pages(file.descriptor(), file.isReadDirectly() ? file.bytes() : 0) {}

  [[nodiscard]] const OrvInputAndOrvOutput& documentOf(Kind kind) const {
    const auto& document = kind == Kind::input ? input : output;
    if (document == nullptr) {
      detail::throwMissing(kind, path);
    }
    return *document;
  }

  std::filesystem::path path;
  Descriptor lock;  // keeps writers from changing the pages
  detail::MappedPages pages;
  std::unique_ptr<OrvInputAndOrvOutput> input;
  std::unique_ptr<OrvInputAndOrvOutput> output;
  std::vector<ReadArray> others;
  std::vector<Finding> findings;
};

MappedFile::MappedFile(const std::filesystem::path& path, Policy policy) {
  detail::OpenedFile file(path);
  if (!file.holds(Kind::input) && !file.holds(Kind::output)) {
    throw Error(Code::noDocument, "holds no document", {path, {}, {}});
  }
  // The lock of HDF5 goes with its file. One of ours, taken before, leaves no gap; where locks do
  // not work there is none of either.
  (void)::flock(file.descriptor(), LOCK_SH | LOCK_NB);
  content_ = std::make_unique<Content>(file);
  MappedArrays arrays(content_->pages, content_->others);
  for (const Kind kind : {Kind::input, Kind::output}) {
    if (file.holds(kind)) {
      detail::ReadDocument read = detail::readDocument(file, kind, policy, &arrays);
      (kind == Kind::input ? content_->input : content_->output) = std::move(read.document);
      std::move(read.findings.begin(), read.findings.end(), std::back_inserter(content_->findings));
    }
  }
  if (policy == Policy::strict) {
    content_->findings.clear();
  }
  content_->lock = file.takeDescriptor();
}

MappedFile::MappedFile(MappedFile&& other) noexcept = default;

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept = default;

MappedFile::~MappedFile() = default;

bool MappedFile::hasInput() const noexcept {
  return content_ != nullptr && content_->input != nullptr;
}

bool MappedFile::hasOutput() const noexcept {
  return content_ != nullptr && content_->output != nullptr;
}

InputView MappedFile::input() const& {
  return InputView(detail::partsOf(content_->documentOf(Kind::input)));
}

OutputView MappedFile::output() const& {
  return OutputView(detail::partsOf(content_->documentOf(Kind::output)));
}

std::span<const ReadArray> MappedFile::readArrays() const& noexcept { return content_->others; }

std::span<const Finding> MappedFile::findings() const& noexcept { return content_->findings; }

}  // namespace orvml
