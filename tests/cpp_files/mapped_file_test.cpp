// Views onto the pages of a file: where they point, what is read instead, and what stays when the
// file goes.
#include <orvml/orvml.hpp>

#include "cpp_files/every_view.h"
#include "cpp_files/sample.h"
#include "hostile/bytes.h"
#include "hostile/valid_files.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/raw_file.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>

namespace orvml_io_tests {
namespace {

using orvml::MappedFile;

constexpr char kCoordinates[] = "/OrvInput/Nodes/coordinates";
constexpr char kConnectivities[] = "/OrvInput/Elements/connectivities";

/// Whether an address lies in a mapping of the file.
bool isInMappingOf(const void* address, const std::string& path) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    if (line.size() > path.size() && line.ends_with(path) &&
        std::sscanf(line.c_str(), "%lx-%lx", &begin, &end) == 2 &&
        reinterpret_cast<std::uintptr_t>(address) >= begin &&
        reinterpret_cast<std::uintptr_t>(address) < end) {
      return true;
    }
  }
  return false;
}

std::string readArraysOf(const MappedFile& file) {
  std::string text;
  for (const orvml::ReadArray& array : file.readArrays()) {
    text += array.object + " " + array.reason + "\n";
  }
  return text;
}

class ValidFilesMapped : public ::testing::TestWithParam<ValidFile> {};

TEST_P(ValidFilesMapped, HoldWhatIsLoaded) {
  const OpenIds ids;
  const TempFile temp;
  GetParam().make(temp.path());
  const orvml::Loaded loaded = orvml::load(temp.path());

  const MappedFile mapped(temp.path());

  ASSERT_TRUE(mapped.hasInput() && mapped.hasOutput());
  EXPECT_EQ(fingerprint(mapped.input()), fingerprint(loaded.input->view()));
  EXPECT_EQ(fingerprint(mapped.output()), fingerprint(loaded.output->view()));
  for (const orvml::ReadArray& array : mapped.readArrays()) {
    // Only this library's writers align arrays; the files of old formats are made without it.
    EXPECT_STRNE(GetParam().version, "1.4") << array.object;
    EXPECT_EQ(array.reason, "is misaligned") << array.object;
  }
  EXPECT_EQ(ids.opened(), IdCounts());
}

INSTANTIATE_TEST_SUITE_P(Files, ValidFilesMapped, ::testing::ValuesIn(validFiles()), RowName());

TEST(MappedArrays, LieInThePagesOfTheFile) {
  const TempFile temp;
  orvml::save(temp.path(), inputWithEverything());

  const MappedFile mapped(temp.path());

  const orvml::InputView view = mapped.input();
  EXPECT_TRUE(isInMappingOf(view.nodes().coordinates().data(), temp.path()));
  for (const orvml::Entity entity :
       {orvml::Entity::edges, orvml::Entity::faces, orvml::Entity::elements}) {
    for (const orvml::CellGroup& group : view.cells(entity).groups()) {
      EXPECT_TRUE(isInMappingOf(group.nodeIndices().data(), temp.path()));
    }
  }
  for (const orvml::Attribute& attribute : view.attributes(orvml::Entity::nodes)) {
    const void* data = attribute.holdsInts() ? static_cast<const void*>(attribute.ints().data())
                                             : attribute.doubles().data();
    EXPECT_TRUE(isInMappingOf(data, temp.path())) << attribute.name;
  }
  for (const orvml::Attribute& vector : view.vectorParameters()) {
    const void* data = vector.holdsInts() ? static_cast<const void*>(vector.ints().data())
                                          : vector.doubles().data();
    EXPECT_TRUE(isInMappingOf(data, temp.path())) << vector.name;
  }
}

TEST(MappedArrays, ShowPartsWithoutTheRest) {
  const TempFile temp;
  orvml::save(temp.path(), inputWithEverything());
  const MappedFile mapped(temp.path());
  const orvml::NodesView nodes = mapped.input().nodes();

  const orvml::NodesView some = nodes.range(1, 3);

  EXPECT_EQ(some.size(), 2);
  EXPECT_EQ(some.coordinates().data(), nodes.coordinates().data() + 3);
  EXPECT_EQ(some.attributes().at("layer").ints().data(),
            nodes.attributes().at("layer").ints().data() + 1);
  EXPECT_EQ(mapped.input().elements().groups()[1].nodeIndices().data(),
            mapped.input().elements().groups()[0].nodeIndices().data() + 4);
}

/// A way to store a dataset so that it cannot be mapped.
struct Storage {
  const char* name;
  const char* dataset;
  const char* reason;
  std::function<void(RawFile& file, const std::string& path, const std::vector<hsize_t>& extents)>
      create;
};

std::ostream& operator<<(std::ostream& stream, const Storage& storage) {
  return stream << storage.name;
}

void createWith(const RawFile& file, const std::string& path, const std::vector<hsize_t>& extents,
                hid_t type, const std::function<void(hid_t)>& change) {
  const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
  change(creation);
  const hid_t space = H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr);
  const hid_t dataset =
      H5Dcreate2(file.id(), path.c_str(), type, space, H5P_DEFAULT, creation, H5P_DEFAULT);
  ASSERT_GE(dataset, 0);
  H5Dclose(dataset);
  H5Sclose(space);
  H5Pclose(creation);
}

bool isAligned(const RawFile& file, const std::string& path) {
  const hid_t dataset = H5Dopen2(file.id(), path.c_str(), H5P_DEFAULT);
  const haddr_t address = H5Dget_offset(dataset);
  H5Dclose(dataset);
  return address % sizeof(double) == 0;
}

using Extents = std::vector<hsize_t>;

const Storage kStorages[] = {
    {"Chunked", kCoordinates, "is chunked",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       createWith(file, path, extents, H5T_NATIVE_DOUBLE, [](hid_t creation) {
         const hsize_t chunk[] = {2, 3};
         H5Pset_chunk(creation, 2, chunk);
       });
     }},
    {"Compressed", kCoordinates, "is compressed or filtered",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       createWith(file, path, extents, H5T_NATIVE_DOUBLE, [](hid_t creation) {
         const hsize_t chunk[] = {2, 3};
         H5Pset_chunk(creation, 2, chunk);
         H5Pset_deflate(creation, 5);
       });
     }},
    {"Compact", kCoordinates, "lies within the description of the dataset",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       createWith(file, path, extents, H5T_NATIVE_DOUBLE,
                  [](hid_t creation) { H5Pset_layout(creation, H5D_COMPACT); });
     }},
    {"BigEndian", kCoordinates, "has another byte order",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       createWith(file, path, extents, H5T_IEEE_F64BE, [](hid_t) {});
     }},
    {"BigEndianInts", kConnectivities, "has another byte order",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       createWith(file, path, extents, H5T_STD_I32BE, [](hid_t) {});
     }},
    {"SingleFloats", kCoordinates, "has another type of numbers",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       createWith(file, path, extents, H5T_IEEE_F32LE, [](hid_t) {});
     }},
    {"LongInts", kConnectivities, "has another type of numbers",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       createWith(file, path, extents, H5T_STD_I64LE, [](hid_t) {});
     }},
    {"UnsignedInts", kConnectivities, "has another type of numbers",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       createWith(file, path, extents, H5T_STD_U32LE, [](hid_t) {});
     }},
    {"Misaligned", kCoordinates, "is misaligned",
     [](RawFile& file, const std::string& path, const Extents& extents) {
       // Arrays of an odd number of bytes, too many for the blocks that HDF5 gives small arrays
       // from, move the next such block on.
       constexpr hsize_t kBytes = 4099;
       const std::vector<signed char> bytes(kBytes);
       for (int i = 0; i < 40; ++i) {
         file.dataset("/bytes " + std::to_string(i), H5T_NATIVE_SCHAR, {kBytes}, bytes.data());
         createWith(file, path, extents, H5T_NATIVE_DOUBLE,
                    [](hid_t creation) { H5Pset_alloc_time(creation, H5D_ALLOC_TIME_EARLY); });
         if (!isAligned(file, path)) {
           return;
         }
         // What was in that place comes back to it.
         const std::string other = "/aligned " + std::to_string(i);
         ASSERT_GE(
             H5Lmove(file.id(), path.c_str(), file.id(), other.c_str(), H5P_DEFAULT, H5P_DEFAULT),
             0);
       }
       ADD_FAILURE() << "no array is misaligned";
     }}};

class ArraysStoredOtherwise : public ::testing::TestWithParam<Storage> {};

/// Replaces a dataset by one of the same values in another storage.
void storeOtherwise(const char* path, const Storage& storage) {
  RawFile file = RawFile::openForWriting(path);
  const bool isInts = storage.dataset == kConnectivities;
  const std::vector<int> ints = isInts ? file.ints(storage.dataset) : std::vector<int>();
  const std::vector<double> doubles =
      isInts ? std::vector<double>() : file.doubles(storage.dataset);
  const Extents extents = file.shape(storage.dataset).extents;
  file.remove(storage.dataset);
  storage.create(file, storage.dataset, extents);
  const hid_t dataset = H5Dopen2(file.id(), storage.dataset, H5P_DEFAULT);
  EXPECT_GE(H5Dwrite(dataset, isInts ? H5T_NATIVE_INT : H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL,
                     H5P_DEFAULT, isInts ? static_cast<const void*>(ints.data()) : doubles.data()),
            0);
  H5Dclose(dataset);
}

TEST_P(ArraysStoredOtherwise, AreReadAndNamedAndAllOthersAreMapped) {
  const TempFile temp;
  orvml::Input input = inputWithEverything();
  input.setNodes(std::vector<double>{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0.5, 2, 4});
  orvml::save(temp.path(), input);
  storeOtherwise(temp.path(), GetParam());

  const MappedFile mapped(temp.path());

  EXPECT_EQ(readArraysOf(mapped), std::string(GetParam().dataset) + " " + GetParam().reason + "\n");
  EXPECT_EQ(fingerprint(mapped.input()).document, digestOf(input));
  const bool isCoordinates = GetParam().dataset == kCoordinates;
  EXPECT_NE(isInMappingOf(mapped.input().nodes().coordinates().data(), temp.path()), isCoordinates);
}

INSTANTIATE_TEST_SUITE_P(Storages, ArraysStoredOtherwise, ::testing::ValuesIn(kStorages),
                         RowName());

TEST(MappedArrays, ThatAreShorterThanTheirGroupsNeedAreReadWithZeros) {
  const TempFile temp;
  orvml::save(temp.path(), inputWithEverything());
  RawFile file = RawFile::openForWriting(temp.path());
  file.remove(kConnectivities);
  file.intVector(kConnectivities, {3, 2, 1});
  file.close();

  const MappedFile mapped(temp.path(), orvml::Policy::tolerant);

  EXPECT_EQ(readArraysOf(mapped), std::string(kConnectivities) + " is shorter than it has to be\n");
  EXPECT_EQ(mapped.findings().size(), 1U);
  EXPECT_EQ(mapped.input().elements().groups()[0].nodeIndices()[3], 0);
}

TEST(MappedArrays, AreFoundBehindABlockOfTheUsers) {
  const TempFile temp;
  const TempFile plain;
  orvml::save(plain.path(), inputWithEverything());
  Bytes bytes(512, 'u');
  const Bytes content = bytesOf(plain.path());
  bytes.insert(bytes.end(), content.begin(), content.end());
  writeBytes(temp.path(), bytes);
  const std::optional<orvml::Digest> expected = digestAt(temp.path());

  const MappedFile mapped(temp.path());

  EXPECT_EQ(readArraysOf(mapped), "");
  EXPECT_EQ(fingerprint(mapped.input()).document, expected);
  EXPECT_EQ(expected, digestAt(plain.path()));
}

TEST(ReplacedMappings, KeepTheirPagesWhenTheFileIsSavedAnew) {
  const TempFile temp;
  const orvml::Input old = inputWithEverything("old");
  const orvml::Input renewed = inputWithEverything("new");
  orvml::save(temp.path(), old);
  const MappedFile mapped(temp.path());

  orvml::save(temp.path(), renewed);

  EXPECT_EQ(fingerprint(mapped.input()).document, digestOf(old));
  EXPECT_EQ(digestAt(temp.path()), digestOf(renewed));
}

TEST(ReplacedMappings, KeepTheirPagesWhenAnotherProcessWritesTheFile) {
  const TempFile temp;
  const orvml::Input old = inputWithEverything("old");
  orvml::Input renewed = inputWithEverything("new");
  orvml::save(temp.path(), old);
  const MappedFile mapped(temp.path());

  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(OrvML_IO_WriteOrvInput(temp.path(), orvml::handle(renewed)));
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);

  EXPECT_EQ(status, 0);
  EXPECT_EQ(fingerprint(mapped.input()).document, digestOf(old));
  EXPECT_EQ(digestAt(temp.path()), digestOf(renewed));
}

/// Where a number of 64 bits, such as the address of an array, stands in a file.
std::vector<std::size_t> placesOf(const Bytes& bytes, std::uint64_t number) {
  std::vector<std::size_t> places;
  for (std::size_t place = 0; place + sizeof number <= bytes.size(); ++place) {
    if (std::memcmp(bytes.data() + place, &number, sizeof number) == 0) {
      places.push_back(place);
    }
  }
  return places;
}

// An address or a size that leads out of the file is refused by HDF5 or read; nothing faults.
TEST(HostileClaims, OfPlacesOutsideTheFileNeverFault) {
  const TempFile temp;
  orvml::save(temp.path(), inputOfNodes(1000));
  const RawFile raw = RawFile::open(temp.path());
  const hid_t dataset = H5Dopen2(raw.id(), kCoordinates, H5P_DEFAULT);
  const std::uint64_t address = H5Dget_offset(dataset);
  const std::uint64_t size = H5Dget_storage_size(dataset);
  H5Dclose(dataset);
  const Bytes bytes = bytesOf(temp.path());
  int claims = 0;
  for (const std::uint64_t number : {address, size}) {
    for (const std::size_t place : placesOf(bytes, number)) {
      for (const std::uint64_t claimed :
           {std::uint64_t{bytes.size()} - 8, std::uint64_t{bytes.size()}, std::uint64_t{1} << 40,
            std::uint64_t{1} << 63, ~std::uint64_t{0} - 7, std::uint64_t{0}, address + 1}) {
        Bytes damaged = bytes;
        std::memcpy(damaged.data() + place, &claimed, sizeof claimed);
        const TempFile other;
        writeBytes(other.path(), damaged);
        ++claims;
        try {
          const MappedFile mapped(other.path(), orvml::Policy::tolerant);
          if (mapped.hasInput()) {
            (void)touchEverything(mapped.input());
          }
        } catch (const orvml::Error& error) {
          EXPECT_FALSE(error.sentence().empty());
        }
      }
    }
  }

  EXPECT_GE(claims, 14);
}

TEST(MappedFiles, CanBeMovedAndTheirViewsStay) {
  const TempFile temp;
  const orvml::Input input = inputWithEverything();
  orvml::save(temp.path(), input);
  MappedFile first(temp.path());
  const orvml::InputView view = first.input();

  const MappedFile second = std::move(first);

  EXPECT_EQ(fingerprint(view).document, digestOf(input));
  EXPECT_EQ(second.input().nodes().coordinates().data(), view.nodes().coordinates().data());
}

TEST(MappedFiles, LeaveNoDescriptorOpenInTheEnd) {
  const TempFile temp;
  orvml::save(temp.path(), inputWithEverything());
  const std::ptrdiff_t before = openDescriptors();
  {
    const MappedFile mapped(temp.path());
    EXPECT_EQ(openDescriptors(), before + 1);
  }
  EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace orvml_io_tests
