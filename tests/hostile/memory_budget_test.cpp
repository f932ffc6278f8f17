// How much memory a file may make a reader take. What is out of all proportion to the file is
// refused before the memory is taken.
#include "hostile/attacked_file.h"
#include "hostile/isolated.h"
#include "hostile/stored_vectors.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/row_name.h"

#include <malloc.h>

#include <climits>
#include <fstream>
#include <ostream>

namespace orvml_io_tests {
namespace {

/// The most memory that this process held so far, in bytes.
long long peakBytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == "VmHWM:") {
      long long kibibytes = 0;
      status >> kibibytes;
      return kibibytes * 1024;
    }
  }
  ADD_FAILURE() << "the system tells no peak of memory";
  return 0;
}

/// Lets the peak begin anew at what the process holds now, and keeps nothing that was released.
void resetPeak() {
  ::malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << 5;
}

/// What reading an input document in a process of its own gave.
struct MeasuredRead {
  int status;
  long long grownBytes;  // of the peak of its memory
};

MeasuredRead measuredRead(const char* path) {
  resetPeak();
  const long long before = peakBytes();
  Handle document;
  const int status = OrvML_IO_ReadOrvInput(path, document.out());
  return {status, peakBytes() - before};
}

// Some megabytes: HDF5 keeps hundreds of datasets open. The sanitizer puts zones around each block
// and keeps what was released.
#if defined(__SANITIZE_ADDRESS__)
constexpr long long kCheap = 24 * kMebibyte;
#else
constexpr long long kCheap = 8 * kMebibyte;
#endif

void expectRefusedCheaply(const char* path) {
  const IsolatedRun run = runIsolated([path] {
    const MeasuredRead read = measuredRead(path);
    EXPECT_EQ(read.status, 1);
    EXPECT_LT(read.grownBytes, kCheap);
  });
  EXPECT_EQ(run.ending, Ending::succeeded) << run.output;
}

class MeasuredMemory : public AttackedFile {};

// What the tests below rely on.
TEST_F(MeasuredMemory, GrowsByWhatAReadDocumentHolds) {
  addInts(file(), "/OrvInput/ParametersVector/v", countingUp(4 * kMebibyte), {});
  file().close();
  const char* const made = path();

  const IsolatedRun run = runIsolated([made] {
    const MeasuredRead read = measuredRead(made);
    EXPECT_EQ(read.status, 0);
    EXPECT_GT(read.grownBytes, static_cast<long long>(15 * kMebibyte));
  });

  EXPECT_EQ(run.ending, Ending::succeeded) << run.output;
}

/// A file that claims far more than it holds, by what is put into a small one.
struct HostileRow {
  const char* name;
  void (*attack)(RawFile& file);

  friend std::ostream& operator<<(std::ostream& stream, const HostileRow& row) {
    return stream << row.name;
  }
};

class HostileFile : public AttackedFile, public ::testing::WithParamInterface<HostileRow> {};

TEST_P(HostileFile, IsRefusedBeforeItTakesMemory) {
  GetParam().attack(file());
  file().close();

  expectRefusedCheaply(path());
}

/// Replaces what is there by a dataset of which nothing is stored.
void claim(RawFile& file, const std::string& path, hid_t type,
           const std::vector<hsize_t>& extents) {
  if (file.has(path)) {
    file.remove(path);
  }
  file.dataset(path, type, extents, nullptr);
}

void claimParameters(RawFile& file, hsize_t count) {
  const hid_t text = H5Tcopy(H5T_C_S1);
  H5Tset_size(text, 80);
  const hid_t record = H5Tcreate(H5T_COMPOUND, 88);
  H5Tinsert(record, "name", 0, text);
  H5Tinsert(record, "value", 80, H5T_NATIVE_DOUBLE);
  claim(file, "/OrvInput/parameters", record, {count});
  H5Tclose(record);
  H5Tclose(text);
}

void replaceFaces(RawFile& file, int cells, int nodesPerCell) {
  file.remove("/OrvInput/Faces");
  file.elements("/OrvInput/Faces", {cells}, {TRIANGLE}, {nodesPerCell}, {});
}

constexpr int kManyLinks = 300;
constexpr hsize_t kBillions = hsize_t{1} << 31U;

const HostileRow kHostileRows[] = {
    {"ManyLinksToCompressedZeros",
     [](RawFile& file) {
       addInts(file, "/OrvInput/ParametersVector/v", Ints(kMebibyte, 0), {kMebibyte, false, true});
       addLinks(file, kVectors, "/OrvInput/ParametersVector/v", kManyLinks);
     }},
    {"ManyLinksToAStoredDataset",
     [](RawFile& file) {
       addInts(file, "/OrvInput/ParametersVector/v", countingUp(kMebibyte), {});
       addLinks(file, kVectors, "/OrvInput/ParametersVector/v", kManyLinks);
     }},
    {"ManyLinksToAnUnstoredDataset",
     [](RawFile& file) {
       claim(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_INT, {kMebibyte});
       addLinks(file, kVectors, "/OrvInput/ParametersVector/v", kManyLinks);
     }},
    {"ManyLinksToAnAttribute",
     [](RawFile& file) {
       claim(file, "/OrvInput/Nodes/Attributes/v", H5T_NATIVE_INT, {kMebibyte});
       addLinks(file, "/OrvInput/Nodes/Attributes", "/OrvInput/Nodes/Attributes/v", kManyLinks);
     }},
    {"BillionsOfValuesInAVector",
     [](RawFile& file) {
       claim(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_DOUBLE, {kBillions});
     }},
    {"MostValuesInAVector",
     [](RawFile& file) {
       claim(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_DOUBLE, {kBillions - 1});
     }},
    {"BillionsOfNodes",
     [](RawFile& file) {
       claim(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {kBillions, 3});
     }},
    {"MostCoordinates",
     [](RawFile& file) {
       claim(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {kBillions / 4, 3});
     }},
    {"MostNodesWithoutCoordinates",
     [](RawFile& file) {
       claim(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {kBillions / 4, 0});
     }},
    {"BillionsOfConnectivities",
     [](RawFile& file) {
       replaceFaces(file, INT_MAX, 1);
       claim(file, "/OrvInput/Faces/connectivities", H5T_NATIVE_INT, {kBillions});
     }},
    {"MostConnectivities",
     [](RawFile& file) {
       replaceFaces(file, INT_MAX, 1);
       claim(file, "/OrvInput/Faces/connectivities", H5T_NATIVE_INT, {kBillions - 1});
     }},
    {"MostConnectivitiesOfWhichNoneIsThere", [](RawFile& file) { replaceFaces(file, INT_MAX, 1); }},
    {"BillionsOfShapes",
     [](RawFile& file) {
       claim(file, "/OrvInput/Faces/element_types", H5T_NATIVE_INT, {kBillions});
     }},
    {"MostShapes",
     [](RawFile& file) {
       claim(file, "/OrvInput/Faces/element_types", H5T_NATIVE_INT, {kBillions - 1});
     }},
    {"MostNumbersOfCells",
     [](RawFile& file) {
       claim(file, "/OrvInput/Faces/element_types", H5T_NATIVE_INT, {kBillions - 1});
       claim(file, "/OrvInput/Faces/number_of_elements_by_type", H5T_NATIVE_INT, {kBillions - 1});
     }},
    {"BillionsOfParameters", [](RawFile& file) { claimParameters(file, kBillions); }},
    {"MostParameters", [](RawFile& file) { claimParameters(file, kBillions - 1); }},
    {"VectorsThatTogetherAreTooMuch", [](RawFile& file) {
       for (const char* name : {"a", "b", "c", "d"}) {
         claim(file, std::string(kVectors) + "/" + name, H5T_NATIVE_DOUBLE, {2 * kMebibyte + 1});
       }
     }}};

INSTANTIATE_TEST_SUITE_P(Claims, HostileFile, ::testing::ValuesIn(kHostileRows), RowName());

class HostilePositionalFile : public AttackedFile,
                              public ::testing::WithParamInterface<HostileRow> {
 protected:
  HostilePositionalFile() : AttackedFile("1.3") {}
};

TEST_P(HostilePositionalFile, IsRefusedBeforeItTakesMemory) {
  GetParam().attack(file());
  file().close();

  expectRefusedCheaply(path());
}

/// Puts a group of many positions, all of them one dataset, in the place of one.
template <class Add>
void replacePositions(RawFile& file, const std::string& group, Add addFirst) {
  if (file.has(group)) {
    file.remove(group);
  }
  file.group(group);
  file.intAttributeValue(group, "MAX_ID", kManyLinks + 1);
  addFirst(group + "/0");
  addLinks(file, group, group + "/0", kManyLinks);
}

const HostileRow kPositionalRows[] = {
    {"ManyLinksToCompressedZeros",
     [](RawFile& file) {
       replacePositions(file, "/OrvInput/GenericMarkers", [&](const std::string& path) {
         addInts(file, path, Ints(kMebibyte, 0), {kMebibyte, false, true});
       });
     }},
    {"ManyLinksToAStoredDataset",
     [](RawFile& file) {
       replacePositions(file, "/OrvInput/GenericMarkers", [&](const std::string& path) {
         addInts(file, path, countingUp(kMebibyte), {});
       });
     }},
    {"ManyLinksToAnUnstoredDataset",
     [](RawFile& file) {
       replacePositions(file, "/OrvInput/GenericAttributes", [&](const std::string& path) {
         claim(file, path, H5T_NATIVE_DOUBLE, {kMebibyte / 2});
       });
     }},
    {"MostValuesInAVector",
     [](RawFile& file) {
       claim(file, "/OrvInput/GenericAttributes/0", H5T_NATIVE_DOUBLE, {kBillions - 1});
     }},
    {"MostScalars",
     [](RawFile& file) {
       claim(file, "/OrvInput/parameters", H5T_NATIVE_DOUBLE, {kBillions - 1});
     }},
    {"ManyEmptyAttributesOfManyCells",
     [](RawFile& file) {
       replaceFaces(file, static_cast<int>(kMebibyte), 0);  // cells without nodes need no memory
       replacePositions(file, "/OrvInput/Faces/UserMarkers",
                        [&](const std::string& path) { claim(file, path, H5T_NATIVE_INT, {0}); });
     }},
    {"AnEmptyAttributeOfTheMostCells",
     [](RawFile& file) {
       replaceFaces(file, INT_MAX, 0);
       file.group("/OrvInput/Faces/FunctionAttributes");
       file.intAttributeValue("/OrvInput/Faces/FunctionAttributes", "MAX_ID", 1);
       claim(file, "/OrvInput/Faces/FunctionAttributes/0", H5T_NATIVE_DOUBLE, {0});
     }},
};

INSTANTIATE_TEST_SUITE_P(Claims, HostilePositionalFile, ::testing::ValuesIn(kPositionalRows),
                         RowName());

/// Unstored values right at the limit of 64 MiB, and how many are one value more.
struct LimitRow {
  const char* name;
  void (*attack)(RawFile& file, hsize_t more);

  friend std::ostream& operator<<(std::ostream& stream, const LimitRow& row) {
    return stream << row.name;
  }
};

class UnstoredLimit : public AttackedFile, public ::testing::WithParamInterface<LimitRow> {};

TEST_P(UnstoredLimit, IsRead) {
  GetParam().attack(file(), 0);
  file().close();
  const OpenIds ids;
  Handle document;

  EXPECT_EQ(OrvML_IO_ReadOrvInput(path(), document.out()), 0);
}

TEST_P(UnstoredLimit, IsNotReadWithOneValueMore) {
  GetParam().attack(file(), 1);
  file().close();

  expectRefusedCheaply(path());
}

const LimitRow kLimits[] = {
    {"OneVectorOfDoubles",
     [](RawFile& file, hsize_t more) {
       claim(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_DOUBLE, {8 * kMebibyte + more});
     }},
    {"OneVectorOfInts",
     [](RawFile& file, hsize_t more) {
       claim(file, "/OrvInput/ParametersVector/v", H5T_NATIVE_INT, {16 * kMebibyte + more});
     }},
    {"FourVectors",
     [](RawFile& file, hsize_t more) {
       for (const char* name : {"a", "b", "c"}) {
         claim(file, std::string(kVectors) + "/" + name, H5T_NATIVE_DOUBLE, {2 * kMebibyte});
       }
       claim(file, std::string(kVectors) + "/d", H5T_NATIVE_DOUBLE, {2 * kMebibyte + more});
     }},
    {"Coordinates",
     [](RawFile& file, hsize_t more) {
       claim(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {1, 8 * kMebibyte + more});
     }},
    {"Connectivities", [](RawFile& file, hsize_t more) {
       const auto cells = static_cast<int>(16 * kMebibyte + more);
       replaceFaces(file, cells, 1);
     }}};

INSTANTIATE_TEST_SUITE_P(Arrays, UnstoredLimit, ::testing::ValuesIn(kLimits), RowName());

}  // namespace
}  // namespace orvml_io_tests
