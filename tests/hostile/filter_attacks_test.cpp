// Values behind filters that this process does not have, or that do not give the values back.
#include "hostile/attacked_file.h"

#include <vector>

namespace orvml_io_tests {
namespace {

constexpr H5Z_filter_t kFilter = 300;  // of the numbers that HDF5 keeps for tests

std::size_t keep(unsigned /*flags*/, std::size_t /*parameterCount*/, const unsigned* /*parameters*/,
                 std::size_t bytes, std::size_t* /*bufferBytes*/, void** /*buffer*/) {
  return bytes;
}

std::size_t failToDecode(unsigned flags, std::size_t parameterCount, const unsigned* parameters,
                         std::size_t bytes, std::size_t* bufferBytes, void** buffer) {
  constexpr std::size_t kFailure = 0;
  return (flags & H5Z_FLAG_REVERSE) != 0
             ? kFailure
             : keep(flags, parameterCount, parameters, bytes, bufferBytes, buffer);
}

/// A filter that this process has while the object lives.
class Filter {
 public:
  explicit Filter(H5Z_func_t function) {
    H5Z_class2_t filter = {};
    filter.version = H5Z_CLASS_T_VERS;
    filter.id = kFilter;
    filter.encoder_present = 1;
    filter.decoder_present = 1;
    filter.name = "of a test";
    filter.filter = function;
    EXPECT_GE(H5Zregister(&filter), 0);
  }
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;
  Filter(Filter&&) = delete;
  Filter& operator=(Filter&&) = delete;
  ~Filter() { H5Zunregister(kFilter); }
};

class AttackedFilters : public AttackedFile {
 protected:
  /// Replaces the connectivities of the faces by the same ones behind the filter.
  void filterConnectivities() {
    const std::string path = "/OrvInput/Faces/connectivities";
    const std::vector<int> values = file().ints(path);
    const hsize_t length = values.size();
    const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(properties, 1, &length);
    H5Pset_filter(properties, kFilter, H5Z_FLAG_MANDATORY, 0, nullptr);
    const hid_t space = H5Screate_simple(1, &length, nullptr);
    file().remove(path);
    const hid_t dataset = H5Dcreate2(file().id(), path.c_str(), H5T_NATIVE_INT, space, H5P_DEFAULT,
                                     properties, H5P_DEFAULT);
    EXPECT_GE(H5Dwrite(dataset, H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    H5Dclose(dataset);
    H5Sclose(space);
    H5Pclose(properties);
    file().close();
  }
};

TEST_F(AttackedFilters, ThatThisProcessHasAreUsed) {
  const Filter filter(keep);
  filterConnectivities();

  EXPECT_EQ(read().status, 0);
}

TEST_F(AttackedFilters, ThatThisProcessLacksAreAFailedRead) {
  {
    const Filter filter(keep);
    filterConnectivities();
  }

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{5, 3, 4, 2})) << "the counts had been read before";
}

TEST_F(AttackedFilters, ThatCannotDecodeAreAFailedRead) {
  const Filter filter(failToDecode);
  filterConnectivities();

  EXPECT_EQ(read().status, 1);
}

}  // namespace
}  // namespace orvml_io_tests
