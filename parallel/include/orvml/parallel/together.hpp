#pragma once

#include <orvml/export.hpp>

#include <mpi.h>

#include <functional>

namespace orvml::parallel {

/// Runs a step of this rank, and has every rank throw when the step of any throws: the error of the
/// lowest rank that failed, the same on all. Collective; it costs one reduction of an int, and one
/// broadcast of 32 KiB when something failed.
///
/// An orvml::Error, a std::bad_alloc and a std::invalid_argument stay what they are; any other
/// exception becomes, on every rank, a std::runtime_error with its text. Texts are cut behind 8,192
/// bytes. A communicator that returns MPI's failures has them thrown as std::runtime_error.
///
/// @param step  what only concerns this rank: a collective call in it would wait for ranks that
///              have failed before
ORVML_EXPORT void together(MPI_Comm comm, const std::function<void()>& step);

}  // namespace orvml::parallel
