#pragma once

namespace orvml::parallel {

/// How ranks move their values between memory and a file. What another program has stored in chunks
/// moves by collective calls all the same.
enum class Transfer {
  /// Each with calls of its own for its own part. A rank whose call fails ends all with its error.
  independent,
  /// With MPI's collective calls, in which some ranks may move the values of others: few large
  /// requests to the file system in the place of many small ones. What that costs, and which hints
  /// change it, is the MPI library's matter. HDF5 waits for ever for a rank whose call fails.
  collective
};

}  // namespace orvml::parallel
