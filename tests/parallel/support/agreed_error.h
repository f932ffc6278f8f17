#pragma once

#include <orvml/error.hpp>

#include <gtest/gtest.h>

#include <mpi.h>

#include <exception>
#include <new>
#include <string>

namespace orvml_parallel_tests {

/// Compares a text with that of the first rank. Collective.
inline void expectSameOnAllRanks(const std::string& text) {
  constexpr int kBytes = 2000;
  std::string first = text;
  first.resize(kBytes);
  MPI_Bcast(first.data(), kBytes, MPI_CHAR, 0, MPI_COMM_WORLD);
  EXPECT_EQ(std::string(first.c_str()), text);
}

/// Makes a collective call that is to fail, and says what this rank threw: "CODE|OBJECT|SENTENCE",
/// or "no error". Adds a test failure when ranks threw different things. Collective.
template <class Call>
std::string errorOf(Call call) {
  std::string thrown = "no error";
  try {
    call();
  } catch (const orvml::Error& error) {
    thrown = std::string(orvml::text(error.code())) + "|" + error.object() + "|" + error.what();
  } catch (const std::bad_alloc&) {
    thrown = "no memory";
  } catch (const std::exception& error) {
    thrown = error.what();
  }
  expectSameOnAllRanks(thrown);
  return thrown;
}

}  // namespace orvml_parallel_tests
