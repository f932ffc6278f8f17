#pragma once

#include <functional>

namespace orvml_io_tests {

/// Runs a piece of work in a child process and returns the lowest eight bits of what it returned;
/// -1 when the child did not end by itself. For what must not touch this process: limits, rights,
/// and failures that HDF5 itself does not recover from.
int resultInChild(const std::function<int()>& work);

/// Gives up the rights of the super-user, for whom every file and folder is writable. Only for a
/// child process. Tells whether this process is an ordinary user's now.
bool becomeOrdinaryUser();

}  // namespace orvml_io_tests
