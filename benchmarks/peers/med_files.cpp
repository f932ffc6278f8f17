// A mesh with one set of cells for each geometry, a field for each attribute, and the parameters as
// scalar parameters of the format; those of vectors take one computing step for each value.
#include "harness/measurement.h"
#include "orvml_io.h"
#include "peers/formats.h"

// The second header takes the types of the first one for granted, whose own C++ layer stays out.
// clang-format off
#define OMPI_SKIP_MPICXX 1
#include <mpi.h>
#include <med.h>
// clang-format on

#include <array>

namespace orvml_io_bench::med {

namespace {

constexpr char kMesh[] = "mesh";
constexpr char kNoUnit[MED_SNAME_SIZE * 3 + 1] = "";

void succeeds(med_err status, const char* what) { require(status >= 0, what); }

med_int counted(med_int count, const char* what) {
  require(count >= 0, what);
  return count;
}

template <class T>
const unsigned char* bytesOf(const T* values) {
  return reinterpret_cast<const unsigned char*>(values);
}

template <class T>
unsigned char* bytesOf(T* values) {
  return reinterpret_cast<unsigned char*>(values);
}

med_geometry_type geometryOf(int shape) {
  switch (shape) {
    case TRIANGLE:
      return MED_TRIA3;
    case QUADRILATERAL:
      return MED_QUAD4;
    default:
      return MED_TETRA4;
  }
}

void writeMesh(med_idt file, const PeerMesh& mesh, med_switch_mode order) {
  succeeds(MEDmeshCr(file, kMesh, Content::kDimension, mesh.meshDimension, MED_UNSTRUCTURED_MESH,
                     "", "", MED_SORT_DTIT, MED_CARTESIAN,
                     "x               y               z               ", kNoUnit),
           "MED: the mesh");
  const bool isByAxis = order == MED_NO_INTERLACE;
  const std::vector<double>& coordinates = isByAxis ? mesh.coordinatesByAxis : mesh.coordinates;
  succeeds(MEDmeshNodeCoordinateWr(file, kMesh, MED_NO_DT, MED_NO_IT, MED_UNDEF_DT, order,
                                   mesh.numberOfNodes, coordinates.data()),
           "MED: coordinates");
  for (const PeerMesh::Group& group : mesh.groups) {
    const std::vector<int>& nodes = isByAxis ? group.nodesByCorner : group.nodes;
    succeeds(MEDmeshElementConnectivityWr(file, kMesh, MED_NO_DT, MED_NO_IT, MED_UNDEF_DT, MED_CELL,
                                          geometryOf(group.shape), MED_NODAL, order,
                                          group.numberOfCells, nodes.data()),
             "MED: cells");
  }
}

void makeField(med_idt file, const std::string& name, med_field_type type) {
  succeeds(MEDfieldCr(file, name.c_str(), type, 1, "value           ", kNoUnit, "", kMesh),
           "MED: a field");
}

void writeField(med_idt file, const std::string& name, med_entity_type entity,
                med_geometry_type geometry, int count, const unsigned char* values) {
  succeeds(MEDfieldValueWr(file, name.c_str(), MED_NO_DT, MED_NO_IT, MED_UNDEF_DT, entity, geometry,
                           MED_NO_INTERLACE, MED_ALL_CONSTITUENT, count, values),
           "MED: values");
}

void writeAttributes(med_idt file, const PeerMesh& mesh) {
  for (const Vector& attribute : mesh.nodeAttributes) {
    makeField(file, attribute.name, MED_FLOAT64);
    writeField(file, attribute.name, MED_NODE, MED_NONE, mesh.numberOfNodes,
               bytesOf(attribute.doubles.data()));
  }
  for (const PeerMesh::CellAttribute& attribute : mesh.cellAttributes) {
    makeField(file, attribute.name, MED_INT32);
    const int* values = attribute.ints.data();
    for (const PeerMesh::Group& group : mesh.groups) {
      writeField(file, attribute.name, MED_CELL, geometryOf(group.shape), group.numberOfCells,
                 bytesOf(values));
      values += group.numberOfCells;
    }
  }
}

void writeParameter(med_idt file, const std::string& name, const double* values, int count) {
  succeeds(MEDparameterCr(file, name.c_str(), MED_FLOAT64, "", ""), "MED: a parameter");
  for (int step = 0; step < count; ++step) {
    succeeds(MEDparameterValueWr(file, name.c_str(), step, MED_NO_IT, MED_UNDEF_DT,
                                 bytesOf(values + step)),
             "MED: a value");
  }
}

void writeParameters(med_idt file, const PeerMesh& mesh) {
  for (const auto& [name, value] : mesh.scalars) {
    writeParameter(file, name, &value, 1);
  }
  for (const Vector& vector : mesh.vectors) {
    writeParameter(file, vector.name, vector.doubles.data(),
                   static_cast<int>(vector.doubles.size()));
  }
}

void writeInOrder(const std::string& path, const PeerMesh& mesh, med_switch_mode order) {
  const med_idt file = MEDfileOpen(path.c_str(), MED_ACC_CREAT);
  require(file >= 0, "MED: a file");
  writeMesh(file, mesh, order);
  writeAttributes(file, mesh);
  writeParameters(file, mesh);
  succeeds(MEDfileClose(file), "MED: closing");
}

med_int entities(med_idt file, med_entity_type entity, med_geometry_type geometry,
                 med_data_type data, med_connectivity_mode mode) {
  med_bool hasChanged = MED_FALSE;
  med_bool isTransformed = MED_FALSE;
  return counted(MEDmeshnEntity(file, kMesh, MED_NO_DT, MED_NO_IT, entity, geometry, data, mode,
                                &hasChanged, &isTransformed),
                 "MED: a count");
}

std::vector<med_geometry_type> geometriesIn(med_idt file) {
  const med_int count =
      entities(file, MED_CELL, MED_GEO_ALL, MED_UNDEF_DATATYPE, MED_UNDEF_CONNECTIVITY_MODE);
  std::vector<med_geometry_type> geometries(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < geometries.size(); ++i) {
    char name[MED_NAME_SIZE + 1] = {};
    succeeds(MEDmeshEntityInfo(file, kMesh, MED_NO_DT, MED_NO_IT, MED_CELL, static_cast<int>(i) + 1,
                               name, &geometries[i]),
             "MED: a geometry");
  }
  return geometries;
}

void readMesh(med_idt file, const std::vector<med_geometry_type>& geometries, med_switch_mode order,
              Loaded& loaded) {
  const auto nodes =
      static_cast<std::size_t>(entities(file, MED_NODE, MED_NONE, MED_COORDINATE, MED_NO_CMODE));
  succeeds(MEDmeshNodeCoordinateRd(file, kMesh, MED_NO_DT, MED_NO_IT, order,
                                   loaded.addDoubles(nodes * Content::kDimension)),
           "MED: coordinates");
  for (const med_geometry_type geometry : geometries) {
    const auto cells =
        static_cast<std::size_t>(entities(file, MED_CELL, geometry, MED_CONNECTIVITY, MED_NODAL));
    // A geometry is a number that ends with two digits for its number of nodes.
    const auto nodesPerCell = static_cast<std::size_t>(geometry % 100);
    succeeds(MEDmeshElementConnectivityRd(file, kMesh, MED_NO_DT, MED_NO_IT, MED_CELL, geometry,
                                          MED_NODAL, order, loaded.addInts(cells * nodesPerCell)),
             "MED: cells");
  }
}

struct Field {
  std::array<char, MED_NAME_SIZE + 1> name;
  med_field_type type;
};

Field fieldAt(med_idt file, int index) {
  Field field = {};
  std::array<char, MED_NAME_SIZE + 1> meshName = {};
  std::array<char, MED_SNAME_SIZE + 1> component = {};
  std::array<char, MED_SNAME_SIZE + 1> unit = {};
  std::array<char, MED_SNAME_SIZE + 1> timeUnit = {};
  med_bool isLocal = MED_FALSE;
  med_int steps = 0;
  succeeds(MEDfieldInfo(file, index, field.name.data(), meshName.data(), &isLocal, &field.type,
                        component.data(), unit.data(), timeUnit.data(), &steps),
           "MED: a field");
  return field;
}

/// Reads the values on one kind of entity, when the field has any there.
bool readValues(med_idt file, const Field& field, med_entity_type entity,
                med_geometry_type geometry, Loaded& loaded) {
  const med_int count =
      MEDfieldnValue(file, field.name.data(), MED_NO_DT, MED_NO_IT, entity, geometry);
  if (count <= 0) {
    return false;
  }
  const auto values = static_cast<std::size_t>(count);
  unsigned char* bytes = field.type == MED_INT32 ? bytesOf(loaded.addInts(values))
                                                 : bytesOf(loaded.addDoubles(values));
  succeeds(MEDfieldValueRd(file, field.name.data(), MED_NO_DT, MED_NO_IT, entity, geometry,
                           MED_NO_INTERLACE, MED_ALL_CONSTITUENT, bytes),
           "MED: values");
  return true;
}

void readAttributes(med_idt file, const std::vector<med_geometry_type>& geometries,
                    Loaded& loaded) {
  const int fields = counted(MEDnField(file), "MED: the fields");
  for (int index = 1; index <= fields; ++index) {
    const Field field = fieldAt(file, index);
    if (!readValues(file, field, MED_NODE, MED_NONE, loaded)) {
      for (const med_geometry_type geometry : geometries) {
        (void)readValues(file, field, MED_CELL, geometry, loaded);
      }
    }
    loaded.names.emplace_back(field.name.data());
  }
}

void readParameters(med_idt file, Loaded& loaded) {
  const int parameters = counted(MEDnParameter(file), "MED: the parameters");
  for (int index = 1; index <= parameters; ++index) {
    char name[MED_NAME_SIZE + 1] = {};
    char description[MED_COMMENT_SIZE + 1] = {};
    char timeUnit[MED_SNAME_SIZE + 1] = {};
    med_parameter_type type = MED_FLOAT64;
    med_int steps = 0;
    succeeds(MEDparameterInfo(file, index, name, &type, description, timeUnit, &steps),
             "MED: a parameter");
    double* values = loaded.addDoubles(static_cast<std::size_t>(steps));
    for (med_int step = 0; step < steps; ++step) {
      succeeds(MEDparameterValueRd(file, name, step, MED_NO_IT, bytesOf(values + step)),
               "MED: a value");
    }
    loaded.names.emplace_back(name);
  }
}

Loaded readInOrder(const std::string& path, med_switch_mode order) {
  Loaded loaded;
  const med_idt file = MEDfileOpen(path.c_str(), MED_ACC_RDONLY);
  require(file >= 0, "MED: a file");
  const std::vector<med_geometry_type> geometries = geometriesIn(file);
  readMesh(file, geometries, order, loaded);
  readAttributes(file, geometries, loaded);
  readParameters(file, loaded);
  succeeds(MEDfileClose(file), "MED: closing");
  return loaded;
}

}  // namespace

void write(const std::string& path, const PeerMesh& mesh) {
  writeInOrder(path, mesh, MED_NO_INTERLACE);
}

Loaded read(const std::string& path) { return readInOrder(path, MED_NO_INTERLACE); }

void writeInterlaced(const std::string& path, const PeerMesh& mesh) {
  writeInOrder(path, mesh, MED_FULL_INTERLACE);
}

Loaded readInterlaced(const std::string& path) { return readInOrder(path, MED_FULL_INTERLACE); }

}  // namespace orvml_io_bench::med
