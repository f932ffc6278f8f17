#pragma once

#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/parallel/transfer.hpp>
#include <orvml/save.hpp>
#include <orvml/view.hpp>

#include <mpi.h>

#include <filesystem>

namespace orvml::parallel {

/// Writes one exchange file by all ranks of a communicator, from a view that each has of its part:
/// a slice, with the same groups of cells and the same attributes on every rank, some of them
/// empty, and node indices of the whole. The nodes of the whole are those of the ranks one after
/// the other, and so are the cells of each group and the values of each attribute. Texts,
/// parameters and vector parameters are taken from the first rank.
///
/// The file is that of orvml::save(), object by object and byte by byte where no time is stored,
/// and so is its fingerprint, whatever the number of ranks. It takes the place of an old one in the
/// same way: the first rank makes it beside that, all ranks write their values into it, and once it
/// is whole it is moved over the old file.
///
/// Collective: every rank gives the same path, which leads to the same folder everywhere. How many
/// collective calls it takes depends on the number of arrays and type groups alone.
///
/// Throws Error, the same on every rank, after which the old file is there and nothing else: as
/// orvml::save() does; Code::sizesDisagree when the views of two ranks do not belong together;
/// Code::tooManyValues, with the path of the array and its length, when the whole is more than the
/// 32-bit counts of the format can tell, before anything is touched. std::bad_alloc of one rank is
/// thrown on all.
ORVML_EXPORT void save(MPI_Comm comm, const std::filesystem::path& path, const DocumentView& view,
                       const SaveOptions& options = {}, Transfer transfer = Transfer::independent);

/// Writes a file of both documents; throws Code::wrongKind when the views are not of an input and
/// an output. Collective.
ORVML_EXPORT void save(MPI_Comm comm, const std::filesystem::path& path, const DocumentView& input,
                       const DocumentView& output, const SaveOptions& options = {},
                       Transfer transfer = Transfer::independent);

}  // namespace orvml::parallel
