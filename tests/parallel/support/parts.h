#pragma once

#include <orvml/document.hpp>
#include <orvml/view.hpp>

namespace orvml_parallel_tests {

/// The part that a rank would have of a document: of its nodes and of the cells of each group those
/// that a fraction of the ranks before it leaves. Borrows from the document.
///
/// @param weights  how much of the whole each rank has
orvml::DocumentView partOf(const orvml::DocumentView& whole, const std::vector<int>& weights,
                           int rank);

/// The same weight for each, which makes slices.
std::vector<int> evenly(int ranks);
/// Much for some ranks, nothing for others.
std::vector<int> unevenly(int ranks);

}  // namespace orvml_parallel_tests
