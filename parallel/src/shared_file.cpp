#include "shared_file.h"

#include <orvml/error.hpp>

#include "agreement.h"

#include <unistd.h>

#include <array>
#include <utility>

namespace orvml::parallel::detail {

namespace {

/// Says which machine does not have what the others have.
void requireHere(const std::filesystem::path& path, const std::filesystem::path& named,
                 const Communicator& comm, int mode) {
  if (::access(path.c_str(), mode) == 0) {
    return;
  }
  std::array<char, MPI_MAX_PROCESSOR_NAME + 1> machine = {};
  int length = 0;
  MPI_Get_processor_name(machine.data(), &length);
  throw Error(Code::fileUnreachable,
              "cannot be opened by rank " + std::to_string(comm.rank()) + " on " + machine.data() +
                  ": every rank needs the folder that it lies in",
              {named, {}, {}});
}

orvml_io::FileId openWith(const Communicator& comm, const std::filesystem::path& path,
                          unsigned flags) {
  const orvml_io::PropertyListId access(H5Pcreate(H5P_FILE_ACCESS));
  // MPI takes what stands before a colon for the kind of a file system, unless a slash comes first.
  const std::string name = std::filesystem::absolute(path).string();
  if (H5Pset_fapl_mpio(access.get(), comm.get(), MPI_INFO_NULL) < 0 ||
      H5Pset_all_coll_metadata_ops(access.get(), true) < 0 ||
      H5Pset_coll_metadata_write(access.get(), true) < 0) {
    return orvml_io::FileId();
  }
  return orvml_io::FileId(H5Fopen(name.c_str(), flags, access.get()));
}

}  // namespace

SharedFile::SharedFile(const Communicator& comm, const std::filesystem::path& path,
                       std::filesystem::path named, Access access)
    : access_(access), named_(std::move(named)) {
  // HDF5 waits for ever for a rank that cannot open the file.
  const bool writes = access == Access::write;
  together(comm, [&] { requireHere(path, named_, comm, writes ? R_OK | W_OK : R_OK); });
  file_ = openWith(comm, path, writes ? H5F_ACC_RDWR : H5F_ACC_RDONLY);
  together(comm, [&] {
    if (!file_.valid()) {
      throwFailed({});
    }
  });
}

void SharedFile::throwFailed(const std::string& object) const {
  if (access_ == Access::write) {
    throw Error(Code::fileNotWritten, object + (object.empty() ? "" : " ") + "cannot be written",
                {named_, object, lastReason()});
  }
  if (object.empty()) {
    throw Error(Code::fileUnreachable, "cannot be opened by all ranks at once",
                {named_, {}, lastReason()});
  }
  throw Error(Code::objectUnreadable, object + " cannot be read", {named_, object, lastReason()});
}

}  // namespace orvml::parallel::detail
