#pragma once

#include <orvml/orvml.hpp>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace orvml_io_tests {

/// Every value that a file has, wherever it stands: what nobody made up. Doubles are bit patterns.
struct BagOfValues {
  std::set<std::vector<std::uint64_t>> nodes;  // their coordinates
  std::set<std::vector<std::uint64_t>> cells;  // those of their nodes, one after the other
  std::set<std::uint64_t> numbers;             // of vectors and parameters

  void addDocument(const orvml::DocumentView& document);

  /// Adds what HDF5 reads in a file without the library; nothing where it cannot.
  void addRawFile(const char* path);

  /// What another bag has and this one has not; empty when nothing.
  [[nodiscard]] std::string strangersOf(const BagOfValues& other) const;
};

/// What a sound file holds.
BagOfValues bagOf(const char* path);

}  // namespace orvml_io_tests
