#pragma once

#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/parallel/slice.hpp>
#include <orvml/parallel/transfer.hpp>

#include <mpi.h>

#include <filesystem>
#include <optional>

namespace orvml::parallel {

/// The slices of what a file held, of which there is at least one.
struct Loaded {
  std::optional<Slice> input;
  std::optional<Slice> output;
};

/// Reads an exchange file by all ranks of a communicator: each gets its slice, and reads hardly
/// more than that. The first rank reads the description of the file for all. Nothing stays open in
/// HDF5.
///
/// Collective: every rank gives the same path, which leads to the same file everywhere. How many
/// collective calls it takes depends on the number of arrays and type groups, not on that of nodes,
/// cells or ranks.
///
/// Throws Error, the same on every rank, as a strict orvml::load() does: that the file is none,
/// that it holds no document, or the first thing in a document that is not as the format says.
/// Throws Code::fileUnreachable when a rank does not see the file, and Code::fileHeldForWriting
/// when it was replaced while it was being read. std::bad_alloc of one rank is thrown on all.
[[nodiscard]] ORVML_EXPORT Loaded load(MPI_Comm comm, const std::filesystem::path& path,
                                       Transfer transfer = Transfer::independent);

/// Reads the input document alone; throws Code::noInput when there is none. Collective.
[[nodiscard]] ORVML_EXPORT Slice loadInput(MPI_Comm comm, const std::filesystem::path& path,
                                           Transfer transfer = Transfer::independent);

/// Reads the output document alone; throws Code::noOutput when there is none. Collective.
[[nodiscard]] ORVML_EXPORT Slice loadOutput(MPI_Comm comm, const std::filesystem::path& path,
                                            Transfer transfer = Transfer::independent);

}  // namespace orvml::parallel
