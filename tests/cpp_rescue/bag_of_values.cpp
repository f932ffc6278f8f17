#include "cpp_rescue/bag_of_values.h"

#include <hdf5.h>

#include <algorithm>
#include <bit>

namespace orvml_io_tests {

namespace {

using Bits = std::vector<std::uint64_t>;

std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }

/// Rows of a table, one behind the other.
Bits bitsOf(std::span<const double> values) {
  Bits bits;
  for (const double value : values) {
    bits.push_back(bitsOf(value));
  }
  return bits;
}

void addVectors(const orvml::Attributes& vectors, BagOfValues& bag) {
  for (const orvml::Attribute& vector : vectors) {
    std::visit(
        [&](const auto& values) {
          for (const auto value : values) {
            bag.numbers.insert(bitsOf(static_cast<double>(value)));
          }
        },
        vector.values);
  }
}

void addCells(const orvml::DocumentView& document, orvml::Entity entity, BagOfValues& bag) {
  for (const orvml::CellGroup& group : document.cells(entity).groups()) {
    for (const std::span<const int> cell : group.cells()) {
      Bits bits;
      for (const int node : cell) {
        if (node < 0 || node >= document.nodes().size()) {
          bits.clear();
          break;
        }
        const Bits of = bitsOf(document.nodes()[node]);
        bits.insert(bits.end(), of.begin(), of.end());
      }
      bag.cells.insert(bits);
    }
  }
}

/// A dataset as HDF5 reads it; empty where it cannot, or where that is out of proportion.
template <class T>
std::vector<T> rawValues(hid_t file, const std::string& path, hid_t type) {
  std::vector<T> values;
  const hid_t dataset = H5Dopen2(file, path.c_str(), H5P_DEFAULT);
  const hid_t space = dataset < 0 ? -1 : H5Dget_space(dataset);
  const hssize_t size = space < 0 ? 0 : H5Sget_simple_extent_npoints(space);
  if (size > 0 && size < (1 << 22)) {
    values.resize(static_cast<std::size_t>(size));
    if (H5Dread(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()) < 0) {
      values.clear();
    }
  }
  H5Sclose(space);
  H5Dclose(dataset);
  return values;
}

std::vector<int> rawInts(hid_t file, const std::string& path) {
  return rawValues<int>(file, path, H5T_NATIVE_INT);
}
std::vector<double> rawDoubles(hid_t file, const std::string& path) {
  return rawValues<double>(file, path, H5T_NATIVE_DOUBLE);
}

/// The cells that the arrays of a container describe, read without a doubt about them.
void addRawCells(hid_t file, const std::string& container, const std::vector<double>& coordinates,
                 std::size_t dimension, BagOfValues& bag) {
  const std::vector<int> counts = rawInts(file, container + "/number_of_elements_by_type");
  const std::vector<int> widths = rawInts(file, container + "/number_of_nodes_by_element");
  const std::vector<int> indices = rawInts(file, container + "/connectivities");
  std::size_t next = 0;
  for (std::size_t group = 0; group < std::min(counts.size(), widths.size()); ++group) {
    const auto width = static_cast<std::size_t>(std::max(widths[group], 0));
    for (int cell = 0; width > 0 && cell < counts[group]; ++cell) {
      Bits bits;
      for (std::size_t i = 0; i < width && next + i < indices.size(); ++i) {
        const auto node = static_cast<std::size_t>(indices[next + i]);
        if (node < coordinates.size() / dimension) {
          const Bits of = bitsOf(std::span(coordinates).subspan(node * dimension, dimension));
          bits.insert(bits.end(), of.begin(), of.end());
        }
      }
      bag.cells.insert(bits);
      next += width;
      if (next > indices.size()) {
        return;
      }
    }
  }
}

void addRawDocument(hid_t file, const std::string& group, BagOfValues& bag) {
  const std::vector<double> coordinates = rawDoubles(file, group + "/Nodes/coordinates");
  for (const std::size_t dimension : {std::size_t{2}, std::size_t{3}}) {
    for (std::size_t i = 0; i + dimension <= coordinates.size(); i += dimension) {
      bag.nodes.insert(bitsOf(std::span(coordinates).subspan(i, dimension)));
    }
    for (const char* container : {"/Edges", "/Faces", "/Elements"}) {
      addRawCells(file, group + container, coordinates, dimension, bag);
    }
  }
}

herr_t addName(hid_t /*group*/, const char* name, const H5L_info_t* /*info*/, void* names) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  return 0;
}

/// The numbers of everything in a group that can be read as numbers.
void addRawVectors(hid_t file, const std::string& path, BagOfValues& bag) {
  const hid_t group = H5Gopen2(file, path.c_str(), H5P_DEFAULT);
  std::vector<std::string> names;
  if (group >= 0) {
    H5Literate(group, H5_INDEX_NAME, H5_ITER_INC, nullptr, addName, &names);
    H5Gclose(group);
  }
  for (const std::string& name : names) {
    for (const double value : rawDoubles(file, path + "/" + name)) {
      bag.numbers.insert(bitsOf(value));
    }
  }
}

/// The values of a table of parameters, by the record that the format has.
void addRawParameters(hid_t file, const std::string& path, BagOfValues& bag) {
  const hid_t type = H5Tcreate(H5T_COMPOUND, sizeof(double));
  H5Tinsert(type, "value", 0, H5T_NATIVE_DOUBLE);
  for (const double value : rawValues<double>(file, path, type)) {
    bag.numbers.insert(bitsOf(value));
  }
  H5Tclose(type);
}

}  // namespace

void BagOfValues::addDocument(const orvml::DocumentView& document) {
  for (int node = 0; node < document.nodes().size(); ++node) {
    nodes.insert(bitsOf(document.nodes()[node]));
  }
  for (const orvml::Entity entity :
       {orvml::Entity::edges, orvml::Entity::faces, orvml::Entity::elements}) {
    addCells(document, entity, *this);
    addVectors(document.attributes(entity), *this);
  }
  addVectors(document.nodes().attributes(), *this);
  addVectors(document.vectorParameters(), *this);
  for (const orvml::Parameter& parameter : document.parameters()) {
    numbers.insert(bitsOf(parameter.value));
  }
}

void BagOfValues::addRawFile(const char* path) {
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  const hid_t file = H5Fopen(path, H5F_ACC_RDONLY, H5P_DEFAULT);
  if (file < 0) {
    return;
  }
  for (const std::string group : {"/OrvInput", "/OrvOutput"}) {
    for (const char* vectors : {"", "/ParametersVector", "/GenericMarkers", "/GenericAttributes"}) {
      addRawVectors(file, group + vectors, *this);
    }
    for (const std::string container : {"/Nodes", "/Edges", "/Faces", "/Elements"}) {
      for (const char* vectors : {"/Attributes", "/FunctionAttributes", "/UserAttributes",
                                  "/FunctionMarkers", "/UserMarkers"}) {
        addRawVectors(file, group + container + vectors, *this);
      }
    }
    addRawDocument(file, group, *this);
    addRawParameters(file, group + "/parameters", *this);
  }
  H5Fclose(file);
}

std::string BagOfValues::strangersOf(const BagOfValues& other) const {
  std::string strangers;
  const auto tell = [&](const auto& ours, const auto& theirs, const char* what) {
    const auto count = std::count_if(theirs.begin(), theirs.end(),
                                     [&](const auto& one) { return !ours.contains(one); });
    if (count > 0) {
      strangers += std::to_string(count) + " " + what + " that are not in the damaged file\n";
    }
  };
  tell(nodes, other.nodes, "nodes");
  tell(cells, other.cells, "cells");
  tell(numbers, other.numbers, "numbers");
  return strangers;
}

BagOfValues bagOf(const char* path) {
  const orvml::Loaded loaded = orvml::load(path);
  BagOfValues bag;
  if (loaded.input) {
    bag.addDocument(loaded.input->view());
  }
  if (loaded.output) {
    bag.addDocument(loaded.output->view());
  }
  return bag;
}

}  // namespace orvml_io_tests
