// A model with one element block for each type group and one time step: attributes of nodes and of
// cells are its variables, scalar parameters its global variables, a vector one of them for each
// value. The format has no integer variables.
#include "harness/measurement.h"
#include "orvml_io.h"
#include "peers/formats.h"

#include <exodusII.h>

#include <array>

namespace orvml_io_bench::exodus {

namespace {

constexpr int kTimeStep = 1;
constexpr int kNameBytes = MAX_STR_LENGTH + 1;

void succeeds(int status, const char* what) { require(status >= 0, what); }

const char* typeOf(int shape) {
  switch (shape) {
    case TRIANGLE:
      return "TRI3";
    case QUADRILATERAL:
      return "QUAD4";
    default:
      return "TETRA4";
  }
}

using Names = std::vector<std::string>;

struct Variables {
  Names ofAll;
  Names ofNodes;
  Names ofElements;
  std::vector<double> valuesOfAll;
};

Variables variablesOf(const PeerMesh& mesh) {
  Variables variables;
  for (const auto& [name, value] : mesh.scalars) {
    variables.ofAll.push_back(name);
    variables.valuesOfAll.push_back(value);
  }
  for (const Vector& vector : mesh.vectors) {
    for (const double value : vector.doubles) {
      variables.ofAll.push_back(vector.name);
      variables.valuesOfAll.push_back(value);
    }
  }
  for (const Vector& attribute : mesh.nodeAttributes) {
    variables.ofNodes.push_back(attribute.name);
  }
  for (const PeerMesh::CellAttribute& attribute : mesh.cellAttributes) {
    variables.ofElements.push_back(attribute.name);
  }
  return variables;
}

void writeNames(int file, const char* kind, Names names) {
  std::vector<char*> texts;
  for (std::string& name : names) {
    texts.push_back(name.data());
  }
  if (!texts.empty()) {
    succeeds(ex_put_var_names(file, kind, static_cast<int>(texts.size()), texts.data()),
             "Exodus: names");
  }
}

void writeMesh(int file, const PeerMesh& mesh) {
  succeeds(ex_put_init(file, "benchmark", Content::kDimension, mesh.numberOfNodes,
                       mesh.numberOfCells, static_cast<int64_t>(mesh.groups.size()), 0, 0),
           "Exodus: the sizes");
  succeeds(ex_put_coord(file, mesh.axis(0), mesh.axis(1), mesh.axis(2)), "Exodus: coordinates");
  int block = 0;
  for (const PeerMesh::Group& group : mesh.groups) {
    ++block;
    succeeds(ex_put_elem_block(file, block, typeOf(group.shape), group.numberOfCells,
                               group.nodesPerCell, 0),
             "Exodus: a block");
    succeeds(ex_put_elem_conn(file, block, group.nodes.data()), "Exodus: cells");
  }
}

void writeElementVariables(int file, const PeerMesh& mesh) {
  int variable = 0;
  for (const PeerMesh::CellAttribute& attribute : mesh.cellAttributes) {
    ++variable;
    const double* values = attribute.doubles.data();
    int block = 0;
    for (const PeerMesh::Group& group : mesh.groups) {
      ++block;
      succeeds(ex_put_elem_var(file, kTimeStep, variable, block, group.numberOfCells, values),
               "Exodus: a variable of elements");
      values += group.numberOfCells;
    }
  }
}

void writeVariables(int file, const PeerMesh& mesh) {
  const Variables variables = variablesOf(mesh);
  std::vector<int> isThere(variables.ofElements.size() * mesh.groups.size(), 1);
  succeeds(ex_put_all_var_param(file, static_cast<int>(variables.ofAll.size()),
                                static_cast<int>(variables.ofNodes.size()),
                                static_cast<int>(variables.ofElements.size()), isThere.data(), 0,
                                nullptr, 0, nullptr),
           "Exodus: the variables");
  writeNames(file, "g", variables.ofAll);
  writeNames(file, "n", variables.ofNodes);
  writeNames(file, "e", variables.ofElements);
  const double time = 0;
  succeeds(ex_put_time(file, kTimeStep, &time), "Exodus: the time");
  if (!variables.valuesOfAll.empty()) {
    succeeds(ex_put_glob_vars(file, kTimeStep, static_cast<int>(variables.valuesOfAll.size()),
                              variables.valuesOfAll.data()),
             "Exodus: the parameters");
  }
  int variable = 0;
  for (const Vector& attribute : mesh.nodeAttributes) {
    ++variable;
    succeeds(
        ex_put_nodal_var(file, kTimeStep, variable, mesh.numberOfNodes, attribute.doubles.data()),
        "Exodus: a variable of nodes");
  }
  writeElementVariables(file, mesh);
}

void writeFile(const std::string& path, const PeerMesh& mesh, int form) {
  int memoryBytes = sizeof(double);
  int fileBytes = sizeof(double);
  const int file = ex_create(path.c_str(), EX_CLOBBER | form, &memoryBytes, &fileBytes);
  succeeds(file, "Exodus: a file");
  writeMesh(file, mesh);
  writeVariables(file, mesh);
  succeeds(ex_close(file), "Exodus: closing");
}

struct Block {
  int numberOfCells = 0;
  int nodesPerCell = 0;
};

std::vector<Block> readMesh(int file, int& numberOfNodes, Loaded& loaded) {
  std::array<char, MAX_LINE_LENGTH + 1> title = {};
  int dimension = 0;
  int cells = 0;
  int blocks = 0;
  int nodeSets = 0;
  int sideSets = 0;
  succeeds(ex_get_init(file, title.data(), &dimension, &numberOfNodes, &cells, &blocks, &nodeSets,
                       &sideSets),
           "Exodus: the sizes");
  const auto nodes = static_cast<std::size_t>(numberOfNodes);
  double* x = loaded.addDoubles(nodes * Content::kDimension);
  succeeds(ex_get_coord(file, x, x + nodes, x + 2 * nodes), "Exodus: coordinates");
  std::vector<Block> read(static_cast<std::size_t>(blocks));
  for (int i = 0; i < blocks; ++i) {
    Block& block = read[static_cast<std::size_t>(i)];
    std::array<char, kNameBytes> type = {};
    int attributes = 0;
    succeeds(ex_get_elem_block(file, i + 1, type.data(), &block.numberOfCells, &block.nodesPerCell,
                               &attributes),
             "Exodus: a block");
    int* conn = loaded.addInts(static_cast<std::size_t>(block.numberOfCells) *
                               static_cast<std::size_t>(block.nodesPerCell));
    succeeds(ex_get_elem_conn(file, i + 1, conn), "Exodus: cells");
  }
  return read;
}

/// Reads the names of the variables of a kind and returns their number.
int readNames(int file, const char* kind, Loaded& loaded) {
  int count = 0;
  succeeds(ex_get_var_param(file, kind, &count), "Exodus: the variables");
  std::vector<std::array<char, kNameBytes>> names(static_cast<std::size_t>(count));
  std::vector<char*> texts;
  for (auto& name : names) {
    texts.push_back(name.data());
  }
  if (count > 0) {
    succeeds(ex_get_var_names(file, kind, count, texts.data()), "Exodus: names");
    loaded.names.insert(loaded.names.end(), texts.begin(), texts.end());
  }
  return count;
}

void readVariables(int file, int numberOfNodes, const std::vector<Block>& blocks, Loaded& loaded) {
  const int ofAll = readNames(file, "g", loaded);
  if (ofAll > 0) {
    double* values = loaded.addDoubles(static_cast<std::size_t>(ofAll));
    succeeds(ex_get_glob_vars(file, kTimeStep, ofAll, values), "Exodus: the parameters");
  }
  const int ofNodes = readNames(file, "n", loaded);
  for (int variable = 1; variable <= ofNodes; ++variable) {
    double* values = loaded.addDoubles(static_cast<std::size_t>(numberOfNodes));
    succeeds(ex_get_nodal_var(file, kTimeStep, variable, numberOfNodes, values),
             "Exodus: a variable of nodes");
  }
  const int ofElements = readNames(file, "e", loaded);
  for (int variable = 1; variable <= ofElements; ++variable) {
    int number = 0;
    for (const Block& block : blocks) {
      double* values = loaded.addDoubles(static_cast<std::size_t>(block.numberOfCells));
      ++number;
      succeeds(ex_get_elem_var(file, kTimeStep, variable, number, block.numberOfCells, values),
               "Exodus: a variable of elements");
    }
  }
}

}  // namespace

void writeNetcdf4(const std::string& path, const PeerMesh& mesh) {
  writeFile(path, mesh, EX_NETCDF4);
}

void writeClassic(const std::string& path, const PeerMesh& mesh) {
  writeFile(path, mesh, EX_LARGE_MODEL);
}

Loaded read(const std::string& path) {
  Loaded loaded;
  int memoryBytes = sizeof(double);
  int fileBytes = 0;
  float version = 0;
  const int file = ex_open(path.c_str(), EX_READ, &memoryBytes, &fileBytes, &version);
  succeeds(file, "Exodus: a file");
  int numberOfNodes = 0;
  const std::vector<Block> blocks = readMesh(file, numberOfNodes, loaded);
  readVariables(file, numberOfNodes, blocks, loaded);
  succeeds(ex_close(file), "Exodus: closing");
  return loaded;
}

}  // namespace orvml_io_bench::exodus
