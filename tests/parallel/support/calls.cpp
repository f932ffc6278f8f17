#include "support/calls.h"

#include <mpi.h>

#include <fstream>
#include <string>

namespace {

orvml_parallel_tests::Calls calls;
bool transfersFail = false;

std::int64_t bytesOf(int count, MPI_Datatype type) {
  int bytes = 0;
  PMPI_Type_size(type, &bytes);
  return std::int64_t{count} * bytes;
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
  return {a.collectives - b.collectives,   a.bytesRead - b.bytesRead,
          a.bytesWritten - b.bytesWritten, a.bytesFromSystem - b.bytesFromSystem,
          a.messages - b.messages,         a.messageBytes - b.messageBytes};
}

Calls callsSoFar() {
  calls.bytesFromSystem = bytesReadByProcess();
  return calls;
}

void failTransfers(bool fail) { transfersFail = fail; }

}  // namespace orvml_parallel_tests

// MPI lets programs take the place of its functions, which stay there under a second name.
extern "C" {

int MPI_Bcast(void* data, int count, MPI_Datatype type, int root, MPI_Comm comm) {
  ++calls.collectives;
  return PMPI_Bcast(data, count, type, root, comm);
}

int MPI_Allreduce(const void* in, void* out, int count, MPI_Datatype type, MPI_Op op,
                  MPI_Comm comm) {
  ++calls.collectives;
  return PMPI_Allreduce(in, out, count, type, op, comm);
}

int MPI_Exscan(const void* in, void* out, int count, MPI_Datatype type, MPI_Op op, MPI_Comm comm) {
  ++calls.collectives;
  return PMPI_Exscan(in, out, count, type, op, comm);
}

int MPI_Allgather(const void* in, int inCount, MPI_Datatype inType, void* out, int outCount,
                  MPI_Datatype outType, MPI_Comm comm) {
  ++calls.collectives;
  return PMPI_Allgather(in, inCount, inType, out, outCount, outType, comm);
}

int MPI_Alltoall(const void* in, int inCount, MPI_Datatype inType, void* out, int outCount,
                 MPI_Datatype outType, MPI_Comm comm) {
  ++calls.collectives;
  return PMPI_Alltoall(in, inCount, inType, out, outCount, outType, comm);
}

int MPI_Barrier(MPI_Comm comm) {
  ++calls.collectives;
  return PMPI_Barrier(comm);
}

int MPI_Comm_dup(MPI_Comm comm, MPI_Comm* made) {
  ++calls.collectives;
  return PMPI_Comm_dup(comm, made);
}

int MPI_File_open(MPI_Comm comm, const char* name, int mode, MPI_Info info, MPI_File* file) {
  ++calls.collectives;
  return PMPI_File_open(comm, name, mode, info, file);
}

int MPI_File_set_view(MPI_File file, MPI_Offset place, MPI_Datatype etype, MPI_Datatype type,
                      const char* form, MPI_Info info) {
  ++calls.collectives;
  return PMPI_File_set_view(file, place, etype, type, form, info);
}

int MPI_File_read_at_all(MPI_File file, MPI_Offset place, void* data, int count, MPI_Datatype type,
                         MPI_Status* status) {
  ++calls.collectives;
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
  ++calls.collectives;
  calls.bytesWritten += bytesOf(count, type);
  return PMPI_File_write_at_all(file, place, data, count, type, status);
}

int MPI_File_write_at(MPI_File file, MPI_Offset place, const void* data, int count,
                      MPI_Datatype type, MPI_Status* status) {
  calls.bytesWritten += bytesOf(count, type);
  return transfersFail ? MPI_ERR_NO_SPACE
                       : PMPI_File_write_at(file, place, data, count, type, status);
}

int MPI_Isend(const void* data, int count, MPI_Datatype type, int to, int tag, MPI_Comm comm,
              MPI_Request* request) {
  ++calls.messages;
  calls.messageBytes += bytesOf(count, type);
  return PMPI_Isend(data, count, type, to, tag, comm, request);
}

}  // extern "C"
