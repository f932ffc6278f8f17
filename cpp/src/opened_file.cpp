#include "opened_file.h"

#include "file_checks.h"
#include "hdf5/exchange_file.h"
#include "hdf5/layout.h"
#include "hdf5/probes.h"
#include "hdf5/silence.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace orvml::detail {

namespace layout = orvml_io::layout;
using orvml_io::Descriptor;
using orvml_io::Trouble;

namespace {

[[noreturn]] void throwSystemError(int error, const std::filesystem::path& path) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      throw Error(Code::fileNotFound, "there is no such file", {path, {}, {}});
    case EACCES:
    case EPERM:
      throw Error(Code::filePermissionDenied, "permission to read it is denied", {path, {}, {}});
    default:
      throw Error(Code::fileUnreachable, std::string("cannot be opened: ") + std::strerror(error),
                  {path, {}, {}});
  }
}

Descriptor openRegularFile(const std::filesystem::path& path, std::uint64_t& bytes) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) {
    throwSystemError(errno, path);
  }
  requireRegularFile(status, path);
  Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (descriptor.get() < 0 || ::fstat(descriptor.get(), &status) != 0) {
    throwSystemError(errno, path);
  }
  bytes = static_cast<std::uint64_t>(status.st_size);
  return descriptor;
}

/// Tells whether a file has the signature of HDF5, at its beginning or behind a block of the
/// user's.
bool hasHdf5Signature(int descriptor, std::uint64_t bytes) {
  constexpr std::array<char, 8> kSignature = {'\x89', 'H', 'D', 'F', '\r', '\n', '\x1a', '\n'};
  for (std::uint64_t offset = 0; offset < bytes; offset = offset == 0 ? 512 : offset * 2) {
    std::array<char, 8> found = {};
    if (::pread(descriptor, found.data(), found.size(), static_cast<off_t>(offset)) ==
            static_cast<ssize_t>(found.size()) &&
        found == kSignature) {
      return true;
    }
  }
  return false;
}

/// Tells whether HDF5 reads the file behind a descriptor, byte by byte.
bool isSameFile(hid_t file, int descriptor) {
  const orvml_io::PropertyListId access(H5Fget_access_plist(file));
  void* handle = nullptr;
  if (H5Pget_driver(access.get()) != H5FD_SEC2 ||
      H5Fget_vfd_handle(file, access.get(), &handle) < 0) {
    return false;
  }
  struct stat ours = {};
  struct stat theirs = {};
  return ::fstat(descriptor, &ours) == 0 && ::fstat(*static_cast<int*>(handle), &theirs) == 0 &&
         ours.st_dev == theirs.st_dev && ours.st_ino == theirs.st_ino;
}

[[noreturn]] void throwUnopened(int descriptor, std::uint64_t bytes,
                                const std::filesystem::path& path, const std::string& reason) {
  if (bytes == 0) {
    throw Error(Code::fileEmpty, "is empty", {path, {}, reason});
  }
  if (isHeldForWriting(descriptor)) {
    throwHeldForWriting(path, reason);
  }
  if (!hasHdf5Signature(descriptor, bytes)) {
    throw Error(Code::fileNotHdf5, "is not an HDF5 file", {path, {}, reason});
  }
  if (reason.find("truncated") != std::string::npos) {
    throw Error(Code::fileCutOff, "is an HDF5 file whose end is missing", {path, {}, reason});
  }
  throw Error(Code::fileDamaged, "is an HDF5 file that HDF5 cannot open", {path, {}, reason});
}

Code codeOf(Trouble trouble) noexcept {
  switch (trouble) {
    case Trouble::missing:
      return Code::objectMissing;
    case Trouble::unopenable:
      return Code::objectUnopenable;
    case Trouble::otherFile:
      return Code::objectInAnotherFile;
    case Trouble::longPath:
      return Code::objectPathTooLong;
    case Trouble::wrongShape:
      return Code::objectWrongShape;
    case Trouble::wrongType:
      return Code::objectWrongType;
    case Trouble::tooLong:
      return Code::valuesTooMany;
    case Trouble::tooShort:
      return Code::valuesTooFew;
    case Trouble::badCount:
      return Code::valuesNegativeOrTooLarge;
    case Trouble::badValue:
      return Code::valueNotAllowed;
    case Trouble::overBudget:
      return Code::memoryOutOfProportion;
    case Trouble::unreadable:
      return Code::objectUnreadable;
    case Trouble::foreign:
      return Code::objectForeign;
  }
  return Code::objectUnreadable;
}

/// Tells whether an object is one that documents may lack: the table of a document without scalar
/// parameters, and the nodes.
bool mayBeMissing(std::string_view object) {
  for (const char* group : {layout::kOrvInput, layout::kOrvOutput}) {
    for (const char* part : {layout::kParameters, layout::kNodes}) {
      if (object == std::string(group) + part) {
        return true;
      }
    }
  }
  return false;
}

template <class Document>
int readAs(orvml_io::SourceFile& source,
           int (*read)(orvml_io::SourceFile&, std::unique_ptr<Document>&),
           std::unique_ptr<orvml_io::OrvInputAndOrvOutput>& result) {
  std::unique_ptr<Document> document;
  const int status = read(source, document);
  result = std::move(document);
  return status;
}

}  // namespace

OpenedFile::OpenedFile(const std::filesystem::path& path, Marker marker)
    : path_(path), descriptor_(openRegularFile(path, bytes_)) {
  const orvml_io::Silence silence;
  file_ = orvml_io::FileId(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
  if (!file_.valid()) {
    throwUnopened(descriptor_.get(), bytes_, path, orvml_io::lastHdf5Reason());
  }
  if (marker == Marker::exchange && !orvml_io::IsOrvMeshLibraryIOFormat(file_.get())) {
    throw Error(Code::fileNotExchange, "is an HDF5 file without the marker of exchange files",
                {path, {}, {}});
  }
}

/// A path that is replaced between two opens gives two files, and HDF5 has drivers that arrange
/// files in other ways.
bool OpenedFile::isReadDirectly() const noexcept {
  const orvml_io::Silence silence;
  return isSameFile(file_.get(), descriptor_.get());
}

Descriptor OpenedFile::takeDescriptor() noexcept {
  const orvml_io::Silence silence;
  (void)file_.close();
  return std::move(descriptor_);
}

bool OpenedFile::holds(Kind kind) const noexcept {
  const orvml_io::Silence silence;
  return orvml_io::Orv_H5_GroupExists(orvml_io::OpenGroup(file_.get(), 0), groupOf(kind));
}

const char* groupOf(Kind kind) noexcept {
  return kind == Kind::input ? layout::kOrvInput : layout::kOrvOutput;
}

void throwMissing(Kind kind, const std::filesystem::path& path) {
  if (kind == Kind::input) {
    throw Error(Code::noInput, "holds no input document", {path, groupOf(kind), {}});
  }
  throw Error(Code::noOutput, "holds no output document", {path, groupOf(kind), {}});
}

std::vector<Finding> findingsOf(const orvml_io::Diagnosis& diagnosis) {
  std::vector<Finding> findings;
  for (const orvml_io::Finding& found : diagnosis.findings()) {
    if (found.trouble != Trouble::missing || !mayBeMissing(found.path)) {
      findings.push_back({codeOf(found.trouble), found.path, found.sentence, found.hdf5Reason});
    }
  }
  return findings;
}

void throwFirst(const std::vector<Finding>& findings, const std::filesystem::path& path) {
  const auto first = std::find_if(findings.begin(), findings.end(), [](const Finding& finding) {
    return finding.code != Code::objectForeign;
  });
  if (first != findings.end()) {
    throw Error(first->code, first->sentence, {path, first->object, first->hdf5Reason});
  }
}

ReadDocument readDocument(const OpenedFile& file, Kind kind, Policy policy,
                          orvml_io::ArrayReader* arrays) {
  const orvml_io::Silence silence;
  orvml_io::Diagnosis diagnosis;
  ReadDocument read;
  int status = 0;
  {
    orvml_io::ClosedAtTheEnd closed;
    orvml_io::SourceFile source(file.id(),
                                orvml_io::ReadOptions{&diagnosis, arrays, &closed, true});
    status = kind == Kind::input ? readAs(source, orvml_io::ReadOrvInput, read.document)
                                 : readAs(source, orvml_io::ReadOrvOutput, read.document);
  }
  read.findings = findingsOf(diagnosis);
  // Only what may be missing makes a reader fail without a finding that counts.
  const bool isUnexplained = status != 0 && diagnosis.findings().empty();
  if (isUnexplained || (read.document == nullptr && read.findings.empty())) {
    const std::string object = groupOf(kind);
    read.findings.push_back({Code::objectUnreadable, object, object + " cannot be read", {}});
  }
  if (policy == Policy::strict) {
    throwFirst(read.findings, file.path());
  }
  return read;
}

}  // namespace orvml::detail
