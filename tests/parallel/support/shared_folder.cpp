#include "support/shared_folder.h"

#include <mpi.h>
#include <stdlib.h>

#include <array>
#include <cstdlib>
#include <iterator>
#include <system_error>

namespace orvml_parallel_tests {

int rank() {
  int result = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &result);
  return result;
}

int ranks() {
  int result = 0;
  MPI_Comm_size(MPI_COMM_WORLD, &result);
  return result;
}

SharedFolder::SharedFolder() {
  std::array<char, 256> name = {};
  if (rank() == 0) {
    const std::string pattern =
        (std::filesystem::temp_directory_path() / "orvml_parallel-XXXXXX").string();
    pattern.copy(name.data(), name.size() - 1);
    if (::mkdtemp(name.data()) == nullptr) {
      MPI_Abort(MPI_COMM_WORLD, 1);
    }
  }
  MPI_Bcast(name.data(), static_cast<int>(name.size()), MPI_CHAR, 0, MPI_COMM_WORLD);
  folder_ = name.data();
}

SharedFolder::~SharedFolder() {
  MPI_Barrier(MPI_COMM_WORLD);
  if (rank() == 0) {
    std::error_code failure;
    std::filesystem::remove_all(folder_, failure);
  }
}

int SharedFolder::numberOfFiles() const {
  const std::filesystem::directory_iterator files(folder_);
  return static_cast<int>(std::distance(begin(files), end(files)));
}

}  // namespace orvml_parallel_tests
