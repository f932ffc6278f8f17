#pragma once

#include "communicator.h"
#include "failure_watch.h"
#include "hdf5/id.h"

#include <filesystem>
#include <string>

namespace orvml::parallel::detail {

/// A file that all ranks have open in HDF5, through MPI-IO. The first rank reads what describes it
/// for all.
class SharedFile {
 public:
  enum class Access { read, write };

  /// Collective; every rank throws the same Error.
  ///
  /// @param path   where the file lies
  /// @param named  what errors call it
  SharedFile(const Communicator& comm, const std::filesystem::path& path,
             const std::filesystem::path& named, Access access);

  [[nodiscard]] hid_t id() const noexcept { return file_.get(); }
  [[nodiscard]] const std::filesystem::path& named() const noexcept { return named_; }
  [[nodiscard]] const std::string& lastReason() const noexcept { return watch_.lastReason(); }

  /// Throws that an object, or the file as a whole, could not be read or written; it is to be
  /// agreed on.
  [[noreturn]] void throwFailed(const std::string& object) const;

  /// Has the system of every rank write it to the disk. Collective; its success is to be agreed on.
  [[nodiscard]] bool flush() noexcept { return H5Fflush(file_.get(), H5F_SCOPE_GLOBAL) >= 0; }

  /// Closes it. Collective; its success is to be agreed on.
  [[nodiscard]] bool close() noexcept { return file_.close() >= 0; }

 private:
  Access access_;
  std::filesystem::path named_;
  orvml::detail::FailureWatch watch_;
  orvml_io::FileId file_;
};

}  // namespace orvml::parallel::detail
