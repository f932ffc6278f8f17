#pragma once

#include <orvml/error.hpp>

#include <gtest/gtest.h>

namespace orvml_io_tests {

/// Runs a piece of work that has to throw an error of the C++ layer, and returns that.
template <class Work>
orvml::Error errorOf(Work work) {
  try {
    work();
  } catch (const orvml::Error& error) {
    return error;
  }
  ADD_FAILURE() << "nothing was thrown";
  return {orvml::Code::otherVersion, "nothing was thrown"};
}

/// The text of the code of what a piece of work throws.
template <class Work>
std::string_view codeOf(Work work) {
  return orvml::text(errorOf(work).code());
}

}  // namespace orvml_io_tests
