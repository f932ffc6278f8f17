#include "references/plain_text.h"

#include "harness/measurement.h"
#include "orvml_io.h"

#include <charconv>
#include <cstdio>
#include <memory>
#include <string>

namespace orvml_io_bench::plain_text {

namespace {

/// Calls a function for each type group with its index and the first node index of the block. The
/// start moves on by the number of elements, as the format has it.
template <class PrintGroup>
void forEachGroup(const Cells& cells, PrintGroup printGroup) {
  int position = 0;
  int count = 0;
  for (std::size_t group = 0; group < cells.shapes.size(); ++group) {
    count += cells.cellsPerGroup[group];
    printGroup(group, position, count * cells.nodesPerCell[group]);
    position += count;
  }
}

std::string header(const Cells& cells, std::size_t group) {
  return "mesh dimension = 3 elemtype " + std::string(ElemTypeNames[cells.shapes[group]]) +
         " nNode = " + std::to_string(cells.nodesPerCell[group]) + "\ncoordinates\n";
}

int indexAt(const Cells& cells, int index) {
  const auto position = static_cast<std::size_t>(index);
  return position < cells.connectivities.size() ? cells.connectivities[position] : -1;
}

/// Formats to the end of a block of memory.
class OneBuffer {
 public:
  explicit OneBuffer(std::size_t bytes) : begin_(new char[bytes]), end_(begin_.get()) {}

  void text(const std::string& value) { end_ += value.copy(end_, value.size()); }
  void character(char value) { *end_++ = value; }
  void integer(int value) {
    constexpr int kLongest = 12;
    end_ = std::to_chars(end_, end_ + kLongest, value).ptr;
  }
  void decimal(double value) {
    constexpr int kLongest = 400;
    constexpr int kDecimals = 6;
    end_ = std::to_chars(end_, end_ + kLongest, value, std::chars_format::fixed, kDecimals).ptr;
  }
  void writeTo(const std::string& path) const {
    std::FILE* file = std::fopen(path.c_str(), "w");
    const auto bytes = static_cast<std::size_t>(end_ - begin_.get());
    require(std::fwrite(begin_.get(), 1, bytes, file) == bytes, "writing a text");
    (void)std::fclose(file);
  }

 private:
  std::unique_ptr<char[]> begin_;
  char* end_;
};

void formatNodes(OneBuffer& buffer, const Content& content) {
  for (int node = 0; node < content.numberOfNodes(); ++node) {
    const double* coordinates = content.coordinates.data() + 3 * static_cast<std::size_t>(node);
    buffer.integer(node + 1);
    for (int column = 0; column < 3; ++column) {
      buffer.character(' ');
      buffer.decimal(coordinates[column]);
    }
    buffer.character('\n');
  }
}

void formatElements(OneBuffer& buffer, const Cells& cells, int nodes, int position, int limit) {
  int number = 1;
  for (int start = position; start < limit; start += nodes) {
    buffer.integer(number++);
    for (int index = start; index < start + nodes; ++index) {
      buffer.character(' ');
      buffer.integer(indexAt(cells, index) + 1);
    }
    buffer.text(" \n");
  }
}

}  // namespace

void printWithFprintf(const std::string& path, const Content& content) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  require(file != nullptr, "creating a text file");
  const Cells& cells = content.cells;
  forEachGroup(cells, [&](std::size_t group, int position, int limit) {
    (void)std::fprintf(file, "%s", header(cells, group).c_str());
    for (int node = 0; group == 0 && node < content.numberOfNodes(); ++node) {
      const double* values = content.coordinates.data() + 3 * static_cast<std::size_t>(node);
      (void)std::fprintf(file, "%d %f %f %f\n", node + 1, values[0], values[1], values[2]);
    }
    (void)std::fprintf(file, "end coordinates\nelements\n");
    int number = 1;
    for (int start = position; start < limit; start += cells.nodesPerCell[group]) {
      (void)std::fprintf(file, "%d ", number++);
      for (int index = start; index < start + cells.nodesPerCell[group]; ++index) {
        (void)std::fprintf(file, "%d ", indexAt(cells, index) + 1);
      }
      (void)std::fprintf(file, "\n");
    }
    (void)std::fprintf(file, "end elements\n");
  });
  (void)std::fclose(file);
}

void printFromOneBuffer(const std::string& path, const Content& content) {
  constexpr std::size_t kBytesOfNumber = 16;
  const Cells& cells = content.cells;
  OneBuffer buffer(kBytesOfNumber * 3 *
                   (content.coordinates.size() + cells.connectivities.size() + 1000));
  forEachGroup(cells, [&](std::size_t group, int position, int limit) {
    buffer.text(header(cells, group));
    if (group == 0) {
      formatNodes(buffer, content);
    }
    buffer.text("end coordinates\nelements\n");
    formatElements(buffer, cells, cells.nodesPerCell[group], position, limit);
    buffer.text("end elements\n");
  });
  buffer.writeTo(path);
}

}  // namespace orvml_io_bench::plain_text
