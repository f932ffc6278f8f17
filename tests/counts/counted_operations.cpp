// Performs each operation on an input and on one of twice the size, and lets callgrind write down
// the instructions of each under "operation/size". The check of the figures is check_counts.py.
#include "orvml_io.h"
#include "support/temp_file.h"

#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

using orvml_io_tests::TempFile;

void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "counted_operations: failed: %s\n", what);
    std::exit(EXIT_FAILURE);
  }
}

void count(const std::string& name, const std::function<void()>& operation) {
  CALLGRIND_ZERO_STATS;
  CALLGRIND_TOGGLE_COLLECT;
  operation();
  CALLGRIND_TOGGLE_COLLECT;
  CALLGRIND_DUMP_STATS_AT(name.c_str());
}

std::string numbered(const char* stem, int number) {
  char name[64];
  (void)std::snprintf(name, sizeof name, "%s_%06d", stem, number);
  return name;
}

/// A document with the arrays that it refers to. What it holds is decided by who fills it.
class Counted {
 public:
  explicit Counted(int nodes) : coordinates_(3 * static_cast<std::size_t>(nodes)) {
    for (std::size_t i = 0; i < coordinates_.size(); ++i) {
      coordinates_[i] = 0.001 * static_cast<double>(i % 1000000) - 500.0;
    }
    OrvML_IO_SetNodesCoords(handle_, nodes, coordinates_.data());
    OrvML_IO_SetParameter(handle_, "a", 1.0);
  }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  Counted(Counted&&) = delete;
  Counted& operator=(Counted&&) = delete;
  ~Counted() {
    OrvML_IO_DeleteAttributesEntitiesVector(handle_, ORVML_NODES);
    OrvML_IO_DeleteOrvInputHandle(handle_);
  }

  /// Five tetrahedra for each node.
  void addCells() {
    const std::size_t nodes = coordinates_.size() / 3;
    connectivities_.resize(5 * 4 * nodes);
    for (std::size_t i = 0; i < connectivities_.size(); ++i) {
      connectivities_[i] = static_cast<int>(i * 7919 % nodes);
    }
    OrvML_IO_SetElements(handle_, static_cast<int>(5 * nodes), connectivities_.data(), TETRAHEDRA,
                         4);
  }

  void addAttributes(int number) {
    const std::vector<double> values(coordinates_.size() / 3, 0.5);
    for (int i = 0; i < number; ++i) {
      OrvML_IO_SetAttribute(handle_, numbered("ORVML_NODES_SIZES", i).c_str(), values.data(),
                            ORVML_NODES, ORVML_USER_ATTRIBUTE, ORVML_DOUBLE);
    }
  }

  void addParameters(int number) {
    for (int i = 0; i < number; ++i) {
      OrvML_IO_SetParameter(handle_, numbered("ORVML_MODULE_SIZE", i).c_str(), 0.5 * i);
    }
  }

  [[nodiscard]] void* handle() const noexcept { return handle_; }

 private:
  void* handle_ = OrvML_IO_NewOrvInputHandle("ORVML_OCTREE_MESHER", "1", "counts", 3);
  std::vector<double> coordinates_;
  std::vector<int> connectivities_;
};

void* read(const char* path) {
  void* handle = nullptr;
  require(OrvML_IO_ReadOrvInput(path, handle) == 0 && handle != nullptr, "reading");
  return handle;
}

/// Writing, reading, cloning and comparing, which every kind of input has. They run once before
/// they count, so that what is done once for a process is not counted.
void countDocument(const std::string& kind, const std::string& size, const Counted& document) {
  const TempFile warm;
  require(OrvML_IO_WriteOrvInput(warm.path(), document.handle()) == 0, "writing");
  void* warmed = read(warm.path());
  OrvML_IO_DeleteOrvInputHandle(warmed);

  const TempFile file;
  void* again = nullptr;
  void* clone = nullptr;
  count("write " + kind + "/" + size,
        [&] { require(OrvML_IO_WriteOrvInput(file.path(), document.handle()) == 0, "writing"); });
  count("read " + kind + "/" + size, [&] { again = read(file.path()); });
  count("clone " + kind + "/" + size,
        [&] { clone = OrvML_IO_NewOrvInputHandle(document.handle()); });
  count("compare " + kind + "/" + size,
        [&] { require(OrvML_IO_OrvInputsAreEqual(document.handle(), again), "comparing"); });
  OrvML_IO_DeleteOrvInputHandle(again);
  OrvML_IO_DeleteOrvInputHandle(clone);
}

void countMesh(int nodes) {
  const std::string size = std::to_string(nodes);
  Counted document(nodes);
  document.addCells();
  countDocument("nodes", size, document);
  const TempFile text;
  count("print nodes/" + size, [&] {
    require(OrvML_IO_WriteMeshInOrvFormat(text.path(), document.handle()) == 0, "printing");
  });
}

void countAttributes(int number) {
  const std::string size = std::to_string(number);
  constexpr int kNodes = 100;
  Counted document(kNodes);
  count("set attributes/" + size, [&] { document.addAttributes(number); });
  countDocument("attributes", size, document);
}

void countParameters(int number) {
  const std::string size = std::to_string(number);
  Counted document(1);
  count("set parameters/" + size, [&] { document.addParameters(number); });
  count("get parameters/" + size, [&] {
    double value = 0;
    for (int i = 0; i < number; ++i) {
      const std::string name = numbered("ORVML_MODULE_SIZE", i);
      require(OrvML_IO_GetParameter(document.handle(), name.c_str(), value) == 0, "getting");
    }
  });
  countDocument("parameters", size, document);
}

/// Many small documents, each in a file of its own: what a file costs besides its arrays.
void countDocuments(int number) {
  const std::string size = std::to_string(number);
  constexpr int kNodes = 200;
  Counted document(kNodes);
  document.addCells();
  document.addAttributes(1);
  document.addParameters(10);
  const std::vector<TempFile> files(static_cast<std::size_t>(number));
  count("write documents/" + size, [&] {
    for (const TempFile& file : files) {
      require(OrvML_IO_WriteOrvInput(file.path(), document.handle()) == 0, "writing");
    }
  });
  std::vector<void*> handles;
  count("read documents/" + size, [&] {
    for (const TempFile& file : files) {
      handles.push_back(read(file.path()));
    }
  });
  for (void*& handle : handles) {
    OrvML_IO_DeleteOrvInputHandle(handle);
  }
}

}  // namespace

int main() {
  for (const int factor : {1, 2}) {
    countMesh(10000 * factor);
    countAttributes(200 * factor);
    countParameters(2000 * factor);
    countDocuments(10 * factor);
  }
}
