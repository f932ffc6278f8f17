#include "support/calls.h"

#include <fcntl.h>
#include <mpi.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <numeric>
#include <string>
#include <utility>

namespace {

orvml_parallel_tests::Calls calls;
bool transfersFail = false;
bool reductionsFail = false;
int reservationsError = 0;
std::function<void()> actionBeforeOpen;

std::int64_t bytesOf(int count, MPI_Datatype type) {
  int bytes = 0;
  PMPI_Type_size(type, &bytes);
  return std::int64_t{count} * bytes;
}

std::int64_t bytesOf(const int* counts, MPI_Datatype type, MPI_Comm comm) {
  int ranks = 0;
  PMPI_Comm_size(comm, &ranks);
  return bytesOf(std::accumulate(counts, counts + ranks, 0), type);
}

bool isRoot(int root, MPI_Comm comm) {
  int rank = 0;
  PMPI_Comm_rank(comm, &rank);
  return rank == root;
}

void countCollective(std::int64_t bytes = 0) {
  ++calls.collectives;
  calls.collectiveBytes += bytes;
}

void countMessage(std::int64_t bytes) {
  ++calls.messages;
  calls.messageBytes += bytes;
}

std::int64_t bytesReadByProcess() {
  std::ifstream counts("/proc/self/io");
  std::string name;
  std::int64_t bytes = 0;
  counts >> name >> bytes;  // what stands first
  return bytes;
}

}  // namespace

namespace orvml_parallel_tests {

Calls operator-(const Calls& a, const Calls& b) {
  return {a.collectives - b.collectives,
          a.collectiveBytes - b.collectiveBytes,
          a.messages - b.messages,
          a.messageBytes - b.messageBytes,
          a.bytesRead - b.bytesRead,
          a.bytesWritten - b.bytesWritten,
          a.bytesFromSystem - b.bytesFromSystem};
}

Calls callsSoFar() {
  calls.bytesFromSystem = bytesReadByProcess();
  return calls;
}

void failTransfers(bool fail) { transfersFail = fail; }

void failReductions(bool fail) { reductionsFail = fail; }

void beforeNextOpen(std::function<void()> action) { actionBeforeOpen = std::move(action); }

void failReservations(int error) { reservationsError = error; }

}  // namespace orvml_parallel_tests

// MPI lets programs take the place of its functions, which stay there under a second name. Here are
// all those with which this library, HDF5 and PT-Scotch tell ranks something, or have them wait.
extern "C" {

int MPI_Bcast(void* data, int count, MPI_Datatype type, int root, MPI_Comm comm) {
  countCollective(isRoot(root, comm) ? bytesOf(count, type) : 0);
  return PMPI_Bcast(data, count, type, root, comm);
}

int MPI_Allreduce(const void* in, void* out, int count, MPI_Datatype type, MPI_Op op,
                  MPI_Comm comm) {
  countCollective(bytesOf(count, type));
  return reductionsFail ? MPI_ERR_OTHER : PMPI_Allreduce(in, out, count, type, op, comm);
}

int MPI_Exscan(const void* in, void* out, int count, MPI_Datatype type, MPI_Op op, MPI_Comm comm) {
  countCollective(bytesOf(count, type));
  return PMPI_Exscan(in, out, count, type, op, comm);
}

int MPI_Scan(const void* in, void* out, int count, MPI_Datatype type, MPI_Op op, MPI_Comm comm) {
  countCollective(bytesOf(count, type));
  return PMPI_Scan(in, out, count, type, op, comm);
}

int MPI_Allgather(const void* in, int inCount, MPI_Datatype inType, void* out, int outCount,
                  MPI_Datatype outType, MPI_Comm comm) {
  countCollective(bytesOf(inCount, inType));
  return PMPI_Allgather(in, inCount, inType, out, outCount, outType, comm);
}

int MPI_Allgatherv(const void* in, int inCount, MPI_Datatype inType, void* out,
                   const int* outCounts, const int* places, MPI_Datatype outType, MPI_Comm comm) {
  countCollective(bytesOf(inCount, inType));
  return PMPI_Allgatherv(in, inCount, inType, out, outCounts, places, outType, comm);
}

int MPI_Alltoall(const void* in, int inCount, MPI_Datatype inType, void* out, int outCount,
                 MPI_Datatype outType, MPI_Comm comm) {
  int ranks = 0;
  PMPI_Comm_size(comm, &ranks);
  countCollective(ranks * bytesOf(inCount, inType));
  return PMPI_Alltoall(in, inCount, inType, out, outCount, outType, comm);
}

int MPI_Alltoallv(const void* in, const int* inCounts, const int* inPlaces, MPI_Datatype inType,
                  void* out, const int* outCounts, const int* outPlaces, MPI_Datatype outType,
                  MPI_Comm comm) {
  countCollective(bytesOf(inCounts, inType, comm));
  return PMPI_Alltoallv(in, inCounts, inPlaces, inType, out, outCounts, outPlaces, outType, comm);
}

int MPI_Gather(const void* in, int inCount, MPI_Datatype inType, void* out, int outCount,
               MPI_Datatype outType, int root, MPI_Comm comm) {
  countCollective(bytesOf(inCount, inType));
  return PMPI_Gather(in, inCount, inType, out, outCount, outType, root, comm);
}

int MPI_Gatherv(const void* in, int inCount, MPI_Datatype inType, void* out, const int* outCounts,
                const int* places, MPI_Datatype outType, int root, MPI_Comm comm) {
  countCollective(bytesOf(inCount, inType));
  return PMPI_Gatherv(in, inCount, inType, out, outCounts, places, outType, root, comm);
}

int MPI_Scatter(const void* in, int inCount, MPI_Datatype inType, void* out, int outCount,
                MPI_Datatype outType, int root, MPI_Comm comm) {
  int ranks = 0;
  PMPI_Comm_size(comm, &ranks);
  countCollective(isRoot(root, comm) ? ranks * bytesOf(inCount, inType) : 0);
  return PMPI_Scatter(in, inCount, inType, out, outCount, outType, root, comm);
}

int MPI_Scatterv(const void* in, const int* inCounts, const int* places, MPI_Datatype inType,
                 void* out, int outCount, MPI_Datatype outType, int root, MPI_Comm comm) {
  countCollective(isRoot(root, comm) ? bytesOf(inCounts, inType, comm) : 0);
  return PMPI_Scatterv(in, inCounts, places, inType, out, outCount, outType, root, comm);
}

int MPI_Barrier(MPI_Comm comm) {
  countCollective();
  return PMPI_Barrier(comm);
}

int MPI_Comm_dup(MPI_Comm comm, MPI_Comm* made) {
  countCollective();
  return PMPI_Comm_dup(comm, made);
}

int MPI_Comm_split(MPI_Comm comm, int colour, int key, MPI_Comm* made) {
  countCollective();
  return PMPI_Comm_split(comm, colour, key, made);
}

int MPI_Comm_free(MPI_Comm* comm) {
  countCollective();
  return PMPI_Comm_free(comm);
}

int MPI_File_open(MPI_Comm comm, const char* name, int mode, MPI_Info info, MPI_File* file) {
  countCollective();
  if (actionBeforeOpen) {
    std::exchange(actionBeforeOpen, nullptr)();
  }
  return PMPI_File_open(comm, name, mode, info, file);
}

int MPI_File_close(MPI_File* file) {
  countCollective();
  return PMPI_File_close(file);
}

int MPI_File_set_size(MPI_File file, MPI_Offset bytes) {
  countCollective();
  return PMPI_File_set_size(file, bytes);
}

int MPI_File_sync(MPI_File file) {
  countCollective();
  return PMPI_File_sync(file);
}

int MPI_File_set_atomicity(MPI_File file, int flag) {
  countCollective();
  return PMPI_File_set_atomicity(file, flag);
}

int MPI_File_set_view(MPI_File file, MPI_Offset place, MPI_Datatype etype, MPI_Datatype type,
                      const char* form, MPI_Info info) {
  countCollective();
  return PMPI_File_set_view(file, place, etype, type, form, info);
}

int MPI_File_read_at_all(MPI_File file, MPI_Offset place, void* data, int count, MPI_Datatype type,
                         MPI_Status* status) {
  countCollective();
  calls.bytesRead += bytesOf(count, type);
  return PMPI_File_read_at_all(file, place, data, count, type, status);
}

int MPI_File_read_at(MPI_File file, MPI_Offset place, void* data, int count, MPI_Datatype type,
                     MPI_Status* status) {
  calls.bytesRead += bytesOf(count, type);
  return transfersFail ? MPI_ERR_IO : PMPI_File_read_at(file, place, data, count, type, status);
}

int MPI_File_write_at_all(MPI_File file, MPI_Offset place, const void* data, int count,
                          MPI_Datatype type, MPI_Status* status) {
  countCollective();
  calls.bytesWritten += bytesOf(count, type);
  return PMPI_File_write_at_all(file, place, data, count, type, status);
}

int MPI_File_write_at(MPI_File file, MPI_Offset place, const void* data, int count,
                      MPI_Datatype type, MPI_Status* status) {
  calls.bytesWritten += bytesOf(count, type);
  return transfersFail ? MPI_ERR_NO_SPACE
                       : PMPI_File_write_at(file, place, data, count, type, status);
}

int MPI_Send(const void* data, int count, MPI_Datatype type, int to, int tag, MPI_Comm comm) {
  countMessage(bytesOf(count, type));
  return PMPI_Send(data, count, type, to, tag, comm);
}

int MPI_Isend(const void* data, int count, MPI_Datatype type, int to, int tag, MPI_Comm comm,
              MPI_Request* request) {
  countMessage(bytesOf(count, type));
  return PMPI_Isend(data, count, type, to, tag, comm, request);
}

int MPI_Sendrecv(const void* in, int inCount, MPI_Datatype inType, int to, int inTag, void* out,
                 int outCount, MPI_Datatype outType, int from, int outTag, MPI_Comm comm,
                 MPI_Status* status) {
  countMessage(bytesOf(inCount, inType));
  return PMPI_Sendrecv(in, inCount, inType, to, inTag, out, outCount, outType, from, outTag, comm,
                       status);
}

/// In the place of the system's, also for the library.
[[gnu::visibility("default")]] int fallocate(int file, int mode, off_t first, off_t count) {
  errno = reservationsError;
  return reservationsError != 0
             ? -1
             : static_cast<int>(::syscall(SYS_fallocate, file, mode, first, count));
}

}  // extern "C"
