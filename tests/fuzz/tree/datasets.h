#pragma once

#include "fuzz/tree/extents.h"
#include "fuzz/tree/objects.h"
#include "fuzz/tree/storage.h"

namespace orvml_io_tests {

/// What the bytes of an input choose for a dataset.
struct DatasetChoices {
  unsigned place;
  unsigned type;
  unsigned extents;
  unsigned storage;
  unsigned values;
};

DatasetChoices datasetChoicesFrom(ByteSource& bytes);

/// The part of a dataset that is written; all of it when there are no dataspaces.
struct Selection {
  orvml_io::DataspaceId inFile;
  orvml_io::DataspaceId inMemory;
  std::size_t count = 0;
};

/// Writes the selected values, given one after the other in a type of memory.
void writeSelection(hid_t dataset, const Selection& selection, hid_t type, const void* values);

/// Makes a dataset at its place, or what the bytes chose instead, and fills what is to be written
/// of it by a function.
using Fill = std::function<void(hid_t dataset, const Selection& selection)>;
void makeChosenDataset(Tree& tree, hid_t parent, const std::string& name,
                       const DatasetChoices& choices, hid_t type, const Lengths& normalLengths,
                       const Fill& fill);

}  // namespace orvml_io_tests
