#include "shared_file.h"

#include <orvml/error.hpp>

#include "agreement.h"
#include "hdf5/descriptor.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace orvml::parallel::detail {

namespace {

/// Opens a file as HDF5 is about to, and says which rank cannot, and on which machine.
void requireHere(const std::string& name, const std::filesystem::path& named,
                 const Communicator& comm, int flags) {
  const orvml_io::Descriptor file(::open(name.c_str(), flags | O_CLOEXEC));
  if (file.valid()) {
    return;
  }
  const std::string reason = std::strerror(errno);
  std::array<char, MPI_MAX_PROCESSOR_NAME + 1> machine = {};
  int length = 0;
  MPI_Get_processor_name(machine.data(), &length);
  throw Error(Code::fileUnreachable,
              "cannot be opened by rank " + std::to_string(comm.rank()) + " on " + machine.data() +
                  ", which every rank has to: " + reason,
              {named, {}, {}});
}

orvml_io::FileId openWith(const Communicator& comm, const std::string& name, unsigned flags) {
  const orvml_io::PropertyListId access(H5Pcreate(H5P_FILE_ACCESS));
  if (H5Pset_fapl_mpio(access.get(), comm.get(), MPI_INFO_NULL) < 0 ||
      H5Pset_all_coll_metadata_ops(access.get(), true) < 0 ||
      H5Pset_coll_metadata_write(access.get(), true) < 0) {
    return orvml_io::FileId();
  }
  return orvml_io::FileId(H5Fopen(name.c_str(), flags, access.get()));
}

}  // namespace

SharedFile::SharedFile(const Communicator& comm, const std::filesystem::path& path,
                       const std::filesystem::path& named, Access access)
    : access_(access) {
  const bool writes = access == Access::write;
  std::string name;
  together(comm, [&] {
    named_ = named;
    // MPI takes what stands before a colon for the kind of a file system, unless a slash is first.
    name = std::filesystem::absolute(path).string();
    // HDF5 would wait for ever for a rank that cannot open the file.
    requireHere(name, named_, comm, writes ? O_RDWR : O_RDONLY);
  });
  file_ = openWith(comm, name, writes ? H5F_ACC_RDWR : H5F_ACC_RDONLY);
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
