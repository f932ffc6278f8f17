// A zone of unstructured cells: coordinates by axis, one section for each type group, a solution of
// the attributes of nodes and one of those of cells, and the parameters as arrays of the user.
#include "harness/measurement.h"
#include "orvml_io.h"
#include "peers/formats.h"

#include <cgnslib.h>

#include <utility>

namespace orvml_io_bench::cgns {

namespace {

constexpr const char* kAxes[] = {"CoordinateX", "CoordinateY", "CoordinateZ"};
constexpr int kNameBytes = 33;  // the format's own limit, with the terminator
constexpr int kBase = 1;
constexpr int kZone = 1;

void succeeds(int status, const char* what) { require(status == CG_OK, what); }

CGNS_ENUMT(ElementType_t) typeOf(int shape) {
  switch (shape) {
    case TRIANGLE:
      return CGNS_ENUMV(TRI_3);
    case QUADRILATERAL:
      return CGNS_ENUMV(QUAD_4);
    default:
      return CGNS_ENUMV(TETRA_4);
  }
}

int solution(int file, const char* name, CGNS_ENUMT(GridLocation_t) location) {
  int index = 0;
  succeeds(cg_sol_write(file, kBase, kZone, name, location, &index), "CGNS: a solution");
  return index;
}

void writeField(int file, int solutionIndex, CGNS_ENUMT(DataType_t) type, const std::string& name,
                const void* values) {
  int field = 0;
  succeeds(cg_field_write(file, kBase, kZone, solutionIndex, type, name.c_str(), values, &field),
           "CGNS: a field");
}

void writeCells(int file, const PeerMesh& mesh) {
  cgsize_t first = 1;
  for (const PeerMesh::Group& group : mesh.groups) {
    int section = 0;
    succeeds(cg_section_write(file, kBase, kZone, ("Cells_" + std::to_string(group.shape)).c_str(),
                              typeOf(group.shape), first, first + group.numberOfCells - 1, 0,
                              group.nodes.data(), &section),
             "CGNS: a section");
    first += group.numberOfCells;
  }
}

void writeAttributes(int file, const PeerMesh& mesh) {
  if (!mesh.nodeAttributes.empty()) {
    const int ofNodes = solution(file, "NodeAttributes", CGNS_ENUMV(Vertex));
    for (const Vector& attribute : mesh.nodeAttributes) {
      writeField(file, ofNodes, CGNS_ENUMV(RealDouble), attribute.name, attribute.doubles.data());
    }
  }
  if (!mesh.cellAttributes.empty()) {
    const int ofCells = solution(file, "CellAttributes", CGNS_ENUMV(CellCenter));
    for (const PeerMesh::CellAttribute& attribute : mesh.cellAttributes) {
      writeField(file, ofCells, CGNS_ENUMV(Integer), attribute.name, attribute.ints.data());
    }
  }
}

void writeArray(const std::string& name, const double* values, std::size_t count) {
  const auto extent = static_cast<cgsize_t>(count);
  succeeds(cg_array_write(name.c_str(), CGNS_ENUMV(RealDouble), 1, &extent, values),
           "CGNS: a parameter");
}

void writeParameters(int file, const PeerMesh& mesh) {
  succeeds(cg_goto(file, kBase, "end"), "CGNS: the base");
  succeeds(cg_user_data_write("Parameters"), "CGNS: the parameters");
  succeeds(cg_goto(file, kBase, "UserDefinedData_t", 1, "end"), "CGNS: the parameters");
  for (const auto& [name, value] : mesh.scalars) {
    writeArray(name, &value, 1);
  }
  for (const Vector& vector : mesh.vectors) {
    writeArray(vector.name, vector.doubles.data(), vector.doubles.size());
  }
}

void readCells(int file, Loaded& loaded) {
  int sections = 0;
  succeeds(cg_nsections(file, kBase, kZone, &sections), "CGNS: the sections");
  for (int section = 1; section <= sections; ++section) {
    char name[kNameBytes] = {};
    auto type = CGNS_ENUMV(ElementTypeNull);
    cgsize_t first = 0;
    cgsize_t last = 0;
    int boundary = 0;
    int hasParents = 0;
    int nodesPerCell = 0;
    succeeds(cg_section_read(file, kBase, kZone, section, name, &type, &first, &last, &boundary,
                             &hasParents),
             "CGNS: a section");
    succeeds(cg_npe(type, &nodesPerCell), "CGNS: a type");
    const auto cells = static_cast<std::size_t>(last - first + 1);
    int* nodes = loaded.addInts(cells * static_cast<std::size_t>(nodesPerCell));
    succeeds(cg_elements_read(file, kBase, kZone, section, nodes, nullptr), "CGNS: cells");
  }
}

void readField(int file, int solutionIndex, int field, cgsize_t count, Loaded& loaded) {
  char name[kNameBytes] = {};
  auto type = CGNS_ENUMV(DataTypeNull);
  succeeds(cg_field_info(file, kBase, kZone, solutionIndex, field, &type, name), "CGNS: a field");
  const cgsize_t first = 1;
  void* values = nullptr;
  if (type == CGNS_ENUMV(Integer)) {
    values = loaded.addInts(static_cast<std::size_t>(count));
  } else {
    values = loaded.addDoubles(static_cast<std::size_t>(count));
  }
  succeeds(cg_field_read(file, kBase, kZone, solutionIndex, name, type, &first, &count, values),
           "CGNS: a field");
  loaded.names.emplace_back(name);
}

void readAttributes(int file, cgsize_t nodes, cgsize_t cells, Loaded& loaded) {
  int solutions = 0;
  succeeds(cg_nsols(file, kBase, kZone, &solutions), "CGNS: the solutions");
  for (int index = 1; index <= solutions; ++index) {
    char name[kNameBytes] = {};
    auto location = CGNS_ENUMV(GridLocationNull);
    int fields = 0;
    succeeds(cg_sol_info(file, kBase, kZone, index, name, &location), "CGNS: a solution");
    succeeds(cg_nfields(file, kBase, kZone, index, &fields), "CGNS: the fields");
    for (int field = 1; field <= fields; ++field) {
      readField(file, index, field, location == CGNS_ENUMV(Vertex) ? nodes : cells, loaded);
    }
  }
}

void readParameters(int file, Loaded& loaded) {
  int arrays = 0;
  succeeds(cg_goto(file, kBase, "UserDefinedData_t", 1, "end"), "CGNS: the parameters");
  succeeds(cg_narrays(&arrays), "CGNS: the parameters");
  for (int array = 1; array <= arrays; ++array) {
    char name[kNameBytes] = {};
    auto type = CGNS_ENUMV(DataTypeNull);
    int rank = 0;
    cgsize_t extents[12] = {};  // the most that the format allows
    succeeds(cg_array_info(array, name, &type, &rank, extents), "CGNS: a parameter");
    succeeds(cg_array_read(array, loaded.addDoubles(static_cast<std::size_t>(extents[0]))),
             "CGNS: a parameter");
    loaded.names.emplace_back(name);
  }
}

}  // namespace

void write(const std::string& path, const PeerMesh& mesh) {
  int file = 0;
  int base = 0;
  int zone = 0;
  succeeds(cg_set_file_type(CG_FILE_HDF5), "CGNS: the kind of file");
  succeeds(cg_open(path.c_str(), CG_MODE_WRITE, &file), "CGNS: a file");
  succeeds(cg_base_write(file, "Base", mesh.meshDimension, Content::kDimension, &base),
           "CGNS: the base");
  const cgsize_t sizes[] = {mesh.numberOfNodes, mesh.numberOfCells, 0};
  succeeds(cg_zone_write(file, base, "Zone", sizes, CGNS_ENUMV(Unstructured), &zone),
           "CGNS: the zone");
  for (int axis = 0; axis < Content::kDimension; ++axis) {
    int coordinate = 0;
    succeeds(cg_coord_write(file, base, zone, CGNS_ENUMV(RealDouble), kAxes[axis], mesh.axis(axis),
                            &coordinate),
             "CGNS: coordinates");
  }
  writeCells(file, mesh);
  writeAttributes(file, mesh);
  writeParameters(file, mesh);
  succeeds(cg_close(file), "CGNS: closing");
}

Loaded read(const std::string& path) {
  Loaded loaded;
  int file = 0;
  char name[kNameBytes] = {};
  cgsize_t sizes[3] = {};
  succeeds(cg_open(path.c_str(), CG_MODE_READ, &file), "CGNS: a file");
  succeeds(cg_zone_read(file, kBase, kZone, name, sizes), "CGNS: the zone");
  const cgsize_t first = 1;
  const auto nodes = static_cast<std::size_t>(sizes[0]);
  double* coordinates = loaded.addDoubles(nodes * Content::kDimension);
  for (const char* axis : kAxes) {
    succeeds(cg_coord_read(file, kBase, kZone, axis, CGNS_ENUMV(RealDouble), &first, &sizes[0],
                           std::exchange(coordinates, coordinates + nodes)),
             "CGNS: coordinates");
  }
  readCells(file, loaded);
  readAttributes(file, sizes[0], sizes[1], loaded);
  readParameters(file, loaded);
  succeeds(cg_close(file), "CGNS: closing");
  return loaded;
}

}  // namespace orvml_io_bench::cgns
