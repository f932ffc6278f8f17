#include "npy.h"

#include "console.h"

#include <bit>
#include <string>

namespace orvml_tool {

namespace {

/// "(3,)" and "(3, 2)", as Python writes them.
std::string tupleOf(const std::vector<std::size_t>& shape) {
  std::string text;
  for (const std::size_t extent : shape) {
    text += (text.empty() ? "" : " ") + std::to_string(extent) + ",";
  }
  if (shape.size() > 1) {
    text.pop_back();
  }
  return "(" + text + ")";
}

/// The header with everything before it: 64 bytes or a multiple, the last one a line break.
std::string headerOf(const char* type, const std::vector<std::size_t>& shape) {
  constexpr std::size_t kAlignment = 64;
  constexpr std::size_t kBefore = 10;  // the magic string, the version, the length
  const char order = std::endian::native == std::endian::little ? '<' : '>';
  std::string text = std::string("{'descr': '") + order + type +
                     "', 'fortran_order': False, 'shape': " + tupleOf(shape) + ", }";
  const std::size_t unpadded = kBefore + text.size() + 1;
  text.append((kAlignment - unpadded % kAlignment) % kAlignment, ' ').append("\n");
  std::string header = "\x93NUMPY";
  header +=
      {'\x01', '\x00', static_cast<char>(text.size() % 256), static_cast<char>(text.size() / 256)};
  return header + text;
}

template <class Value>
void printAll(const char* type, std::span<const Value> values,
              const std::vector<std::size_t>& shape) {
  print(headerOf(type, shape));
  const auto bytes = std::as_bytes(values);
  // Bytes may be looked at as characters.
  print({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace

void printNpy(std::span<const int> values, const std::vector<std::size_t>& shape) {
  printAll("i4", values, shape);
}

void printNpy(std::span<const double> values, const std::vector<std::size_t>& shape) {
  printAll("f8", values, shape);
}

}  // namespace orvml_tool
