// What each operation needs of the heap, beside what the document itself takes. HDF5's blocks count
// as well.
#include "counts/heap.h"

#include "orvml_io.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using orvml_io_tests::HeapUse;
using orvml_io_tests::heapUseOf;
using orvml_io_tests::TempFile;

constexpr std::size_t kKibibyte = 1024;
constexpr std::size_t kMebibyte = 1024 * kKibibyte;
/// HDF5's tables for an open file, and buffers of fixed size.
constexpr std::size_t kConstant = 8 * kMebibyte;
/// By how much a constant may differ from one size to the other.
constexpr std::size_t kUnsteady = 64 * kKibibyte;
constexpr int kNodes = 100000;

/// A volume mesh of five tetrahedra for each node, with a double for each node.
class Mesh {
 public:
  explicit Mesh(int nodes)
      : coordinates_(3 * static_cast<std::size_t>(nodes), 0.25),
        connectivities_(20 * static_cast<std::size_t>(nodes), 0) {
    const std::vector<double> sizes(static_cast<std::size_t>(nodes), 0.5);
    OrvML_IO_SetNodesCoords(handle_, nodes, coordinates_.data());
    OrvML_IO_SetElements(handle_, 5 * nodes, connectivities_.data(), TETRAHEDRA, 4);
    OrvML_IO_SetAttributesEntitiesVector(handle_, ORVML_NODES, "sizes", sizes.data(), nodes, false);
    OrvML_IO_SetParameter(handle_, "size", 0.5);
  }
  Mesh(const Mesh&) = delete;
  Mesh& operator=(const Mesh&) = delete;
  Mesh(Mesh&&) = delete;
  Mesh& operator=(Mesh&&) = delete;
  ~Mesh() {
    OrvML_IO_DeleteAttributesEntitiesVector(handle_, ORVML_NODES);
    OrvML_IO_DeleteOrvInputHandle(handle_);
  }

  [[nodiscard]] void* handle() const noexcept { return handle_; }
  /// The bytes of the arrays that a reader makes.
  static std::size_t arrayBytes(int nodes) {
    constexpr std::size_t kBytesOfEach = 4 * sizeof(double) + 20 * sizeof(int);
    return static_cast<std::size_t>(nodes) * kBytesOfEach;
  }
  static constexpr std::size_t kArrays = 3;

 private:
  void* handle_ = OrvML_IO_NewOrvInputHandle("ORVML_OCTREE_MESHER", "1", "heap", 3);
  std::vector<double> coordinates_;
  std::vector<int> connectivities_;
};

void erase(void*& handle) {
  OrvML_IO_DeleteAttributesEntitiesVector(handle, ORVML_NODES);
  OrvML_IO_DeleteOrvInputHandle(handle);
}

HeapUse ofWriting(int nodes) {
  const Mesh mesh(nodes);
  const TempFile file;
  return heapUseOf([&] { EXPECT_EQ(OrvML_IO_WriteOrvInput(file.path(), mesh.handle()), 0); });
}

HeapUse ofPrinting(int nodes) {
  const Mesh mesh(nodes);
  const TempFile file;
  return heapUseOf(
      [&] { EXPECT_EQ(OrvML_IO_WriteMeshInOrvFormat(file.path(), mesh.handle()), 0); });
}

HeapUse ofReading(int nodes) {
  const Mesh mesh(nodes);
  const TempFile file;
  EXPECT_EQ(OrvML_IO_WriteOrvInput(file.path(), mesh.handle()), 0);
  void* handle = nullptr;
  const HeapUse use = heapUseOf([&] { EXPECT_EQ(OrvML_IO_ReadOrvInput(file.path(), handle), 0); });
  erase(handle);
  return use;
}

HeapUse ofCloning(int nodes) {
  const Mesh mesh(nodes);
  void* clone = nullptr;
  const HeapUse use = heapUseOf([&] { clone = OrvML_IO_NewOrvInputHandle(mesh.handle()); });
  erase(clone);
  return use;
}

TEST(HeapUse, OfWritingIsAConstant) {
  (void)ofWriting(1);  // what HDF5 keeps for the process is no part of it
  const HeapUse small = ofWriting(kNodes);
  const HeapUse large = ofWriting(2 * kNodes);

  EXPECT_LE(small.peak, kConstant);
  EXPECT_LE(large.peak, small.peak + kUnsteady);
}

TEST(HeapUse, OfPrintingIsAConstant) {
  const HeapUse small = ofPrinting(kNodes);
  const HeapUse large = ofPrinting(2 * kNodes);

  EXPECT_LE(small.peak, kMebibyte);
  EXPECT_LE(large.peak, small.peak + kUnsteady);
}

TEST(HeapUse, OfReadingIsThatOfTheArraysAndAConstant) {
  (void)ofReading(1);
  const HeapUse small = ofReading(kNodes);
  const HeapUse large = ofReading(2 * kNodes);

  EXPECT_GE(small.peak, Mesh::arrayBytes(kNodes));
  EXPECT_LE(small.peak, Mesh::arrayBytes(kNodes) + kConstant);
  EXPECT_LE(large.peak, small.peak + Mesh::arrayBytes(kNodes) + kUnsteady);
  EXPECT_EQ(large.largeBlocks, Mesh::kArrays);
}

TEST(HeapUse, OfCloningIsThatOfTheArraysMadeOnce) {
  const HeapUse use = ofCloning(2 * kNodes);

  EXPECT_GE(use.peak, Mesh::arrayBytes(2 * kNodes));
  EXPECT_LE(use.peak, Mesh::arrayBytes(2 * kNodes) + kUnsteady);
  EXPECT_EQ(use.peak, use.kept);
  EXPECT_EQ(use.largeBlocks, Mesh::kArrays);
}

// The records pass in blocks: beside the values themselves a part of the table is held at a time.
TEST(HeapUse, OfReadingParametersIsThatOfTheValuesAndAConstant) {
  constexpr int kParameters = 100000;
  void* document = OrvML_IO_NewOrvInputHandle("ORVML_OCTREE_MESHER", "1", "heap", 3);
  for (int i = 0; i < kParameters; ++i) {
    OrvML_IO_SetParameter(document, ("parameter_" + std::to_string(i)).c_str(), 0.5 * i);
  }
  const TempFile file;
  ASSERT_EQ(OrvML_IO_WriteOrvInput(file.path(), document), 0);
  OrvML_IO_DeleteOrvInputHandle(document);

  void* again = nullptr;
  const HeapUse use = heapUseOf(
      // Without nodes a document reads with the result 1.
      [&] { EXPECT_EQ(OrvML_IO_ReadOrvInput(file.path(), again), 1); });

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(again), static_cast<std::size_t>(kParameters));
  EXPECT_LE(use.peak, use.kept + kConstant);
  OrvML_IO_DeleteOrvInputHandle(again);
}

}  // namespace
