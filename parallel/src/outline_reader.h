#pragma once

#include "opened_file.h"
#include "outline.h"

namespace orvml::parallel::detail {

/// Reads the outline of one document of a file, of which it must hold one: everything but the
/// arrays of nodes and cells, of which it says where they lie. For one rank alone.
///
/// Throws Error as a strict orvml::load() does, also for arrays that would take memory out of all
/// proportion to the file.
[[nodiscard]] DocumentOutline readOutline(const orvml::detail::OpenedFile& file, Kind kind);

}  // namespace orvml::parallel::detail
