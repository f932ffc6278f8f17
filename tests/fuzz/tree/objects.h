#pragma once

#include "fuzz/harness/byte_source.h"
#include "fuzz/tree/extents.h"
#include "hdf5/id.h"

#include <functional>
#include <string>
#include <vector>

namespace orvml_io_tests {

// Objects of a tree that the bytes of an input decide. Every function takes a fixed number of
// bytes, so that one changed byte changes one thing. Nothing here fails: what HDF5 refuses to make
// is missing, and so is everything below it.

/// A file that is being filled.
struct Tree {
  hid_t file;
  ByteSource& bytes;
  int madeElsewhere = 0;  // objects that only a soft link leads to
};

/// What stands at one place of a file in a valid document.
struct DatasetPlan {
  std::string name;
  hid_t type;
  Lengths lengths;
  std::vector<double> values;
};

/// Takes 5 bytes: what stands at the place, and of the dataset there the type, the extents, the
/// storage and the values.
void makeDataset(Tree& tree, hid_t parent, const DatasetPlan& plan);

/// Makes the table of scalar parameters. Takes 6 bytes: those of a dataset, the type being that of
/// the record, and the names.
void makeParameterTable(Tree& tree, hid_t parent, const std::string& name);

/// Takes 1 byte. Returns the group for what belongs into it; invalid when there is none.
orvml_io::GroupId makeGroup(Tree& tree, hid_t parent, const std::string& name);

/// Makes a text attribute. Takes 2 bytes: its kind and the text.
void makeText(Tree& tree, hid_t object, const std::string& name, const std::string& normal);

/// Makes an integer attribute. Takes 1 byte.
void makeNumber(Tree& tree, hid_t object, const std::string& name, int normal);

/// Makes an object by a function and puts it at its place. Any choice but 0 puts something else
/// there or leaves the place empty.
using Make = std::function<void(hid_t parent, const char* name)>;
void place(Tree& tree, unsigned choice, hid_t parent, const std::string& name, const Make& make);

}  // namespace orvml_io_tests
