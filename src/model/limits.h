#pragma once

#include <climits>
#include <cstddef>

namespace orvml_io {

// Every limit of the library in one place; tests/hostile/limits_test.cpp tests each one below, at
// and one above. What lies above is refused, never cut.

/// Longest path inside a file, in bytes.
inline constexpr std::size_t kLongestPath = 1023;

/// Bytes of a name in the parameter table, and of every name that is written, with the terminator.
inline constexpr std::size_t kNameBytes = 80;

/// Most values of an array or entries of a list: the file format counts with 32-bit integers.
inline constexpr int kMostValues = INT_MAX;

/// How often one read may draw on the size of its file: every byte once, and a few datasets again
/// that honest files have several links to.
inline constexpr unsigned kDrawsPerFile = 4;

/// The best that deflate can do. Values beyond it, in the file's own type, count as not stored, and
/// so they do behind any other filter.
inline constexpr unsigned kBestCompressionRatio = 1100;

/// Memory for values that a file does not store, such as fill values, in one read.
inline constexpr std::size_t kUnstoredBytesPerRead = std::size_t{64} << 20;

/// Node numbers behind the end of the connectivities that one block of the text export may print:
/// so many for each one held, and some for small meshes. Meshes of cells of up to 32 nodes, none of
/// which has no nodes, stay below; counts that nothing is stored for would print for hours.
inline constexpr long long kUnheldPrintedPerHeld = 32;
inline constexpr long long kUnheldPrinted = 1LL << 20;

/// Nodes without coordinates that the text export prints, at the origin: a file may count billions
/// whose coordinates could not be read.
inline constexpr long long kUnheldNodesPrinted = 1LL << 16;

}  // namespace orvml_io
