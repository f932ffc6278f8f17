#include "convert/vtk_array_bytes.h"

#include "convert/format_error.h"

#include <lz4.h>
#include <lzma.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <climits>
#include <cstring>
#include <limits>

namespace orvml_tool {

namespace {

[[noreturn]] void refuseArray(const VtkArray& array, const std::string& what) {
  throw FormatError("the array '" + array.name + "' " + what);
}

/// The bytes of an array, wherever they lie.
class ArrayBytes {
 public:
  ArrayBytes() = default;
  explicit ArrayBytes(std::string owned) : owned_(std::move(owned)), isOwned_(true) {}
  explicit ArrayBytes(std::string_view lent) : lent_(lent) {}

  [[nodiscard]] std::string_view bytes() const noexcept {
    return (isOwned_ ? std::string_view(owned_) : lent_).substr(skipped_);
  }
  void skip(std::size_t bytes) noexcept { skipped_ += bytes; }

 private:
  std::string owned_;
  std::string_view lent_;
  bool isOwned_ = false;
  std::size_t skipped_ = 0;
};

int digitOfBase64(char letter) noexcept {
  if (letter >= 'A' && letter <= 'Z') {
    return letter - 'A';
  }
  if (letter >= 'a' && letter <= 'z') {
    return letter - 'a' + 26;
  }
  if (letter >= '0' && letter <= '9') {
    return letter - '0' + 52;
  }
  return letter == '+' ? 62 : letter == '/' ? 63 : -1;
}

/// A text of base64 from which bytes are taken. It may be made of several such texts, each with its
/// own padding.
class Base64 {
 public:
  explicit Base64(std::string_view text) : text_(text) {}

  /// The next bytes, of a text that ends with them: what its padding leaves over is passed by.
  std::string take(std::size_t bytes) {
    if (bytes / 3 > text_.size() / 4) {
      throw FormatError("an array ends too early");
    }
    std::string taken;
    taken.reserve(bytes + 2);
    while (taken.size() < bytes) {
      takeGroup(taken);
    }
    taken.resize(bytes);
    return taken;
  }

 private:
  /// Four characters are three bytes, or fewer where "=" stands for the last of them.
  void takeGroup(std::string& taken) {
    std::uint32_t bits = 0;
    int digits = 0;
    int paddings = 0;
    while (digits + paddings < 4) {
      const char letter = nextLetter();
      if (letter == '=') {
        ++paddings;
        bits <<= 6U;
        continue;
      }
      const int digit = digitOfBase64(letter);
      if (digit < 0 || paddings > 0) {
        throw FormatError("an array is no base64");
      }
      bits = (bits << 6U) | static_cast<std::uint32_t>(digit);
      ++digits;
    }
    if (digits < 2) {
      throw FormatError("an array is no base64");
    }
    for (int byte = 0; byte < digits - 1; ++byte) {
      taken += static_cast<char>((bits >> (16U - 8U * static_cast<unsigned>(byte))) & 0xffU);
    }
  }

  char nextLetter() {
    while (!text_.empty()) {
      const char letter = text_.front();
      text_.remove_prefix(1);
      if (letter != ' ' && letter != '\n' && letter != '\r' && letter != '\t') {
        return letter;
      }
    }
    throw FormatError("an array ends too early");
  }

  std::string_view text_;
};

/// The stream of bytes in which a binary array is stored, as base64 or as it is.
class StoredBytes {
 public:
  StoredBytes(const VtkXml& file, const VtkArray& array) : base64_(array.text), isBase64_(true) {
    if (array.form == VtkArray::Form::appended) {
      if (array.offset > file.appended.size()) {
        refuseArray(array, "begins behind the end of the file");
      }
      raw_ = file.appended.substr(static_cast<std::size_t>(array.offset));
      base64_ = Base64(raw_);
      isBase64_ = file.isAppendedBase64;
    }
  }

  /// The next bytes of a text of base64 that ends with them, or of the raw ones.
  ArrayBytes take(std::uint64_t bytes) {
    if (isBase64_) {
      return ArrayBytes(base64_.take(static_cast<std::size_t>(bytes)));
    }
    if (bytes > raw_.size()) {
      throw FormatError("an array ends too early");
    }
    const std::string_view taken = raw_.substr(0, static_cast<std::size_t>(bytes));
    raw_.remove_prefix(taken.size());
    return ArrayBytes(taken);
  }

  /// The first bytes, which stay.
  ArrayBytes look(std::uint64_t bytes) const {
    StoredBytes copy = *this;
    return copy.take(bytes);
  }

 private:
  std::string_view raw_;
  Base64 base64_;
  bool isBase64_;
};

std::uint64_t bitsAt(const char* bytes, std::size_t width, bool isBigEndian) noexcept {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t place = isBigEndian ? width - 1 - i : i;
    bits |= std::uint64_t{static_cast<unsigned char>(bytes[place])} << (8 * i);
  }
  return bits;
}

std::uint64_t headerNumber(const VtkXml& file, std::string_view bytes, std::size_t number) {
  return bitsAt(bytes.data() + number * file.headerBytes, file.headerBytes, file.isBigEndian);
}

void decompressZlib(std::string_view stored, char* bytes, std::size_t size) {
  uLongf written = size;
  if (::uncompress(reinterpret_cast<Bytef*>(bytes), &written,
                   reinterpret_cast<const Bytef*>(stored.data()), stored.size()) != Z_OK ||
      written != size) {
    throw FormatError("a compressed block is damaged");
  }
}

void decompressLz4(std::string_view stored, char* bytes, std::size_t size) {
  if (stored.size() > INT_MAX || size > INT_MAX ||
      ::LZ4_decompress_safe(stored.data(), bytes, static_cast<int>(stored.size()),
                            static_cast<int>(size)) != static_cast<int>(size)) {
    throw FormatError("a compressed block is damaged");
  }
}

void decompressLzma(std::string_view stored, char* bytes, std::size_t size) {
  constexpr std::uint64_t kMostMemory = std::uint64_t{256} << 20U;
  std::uint64_t memory = kMostMemory;
  std::size_t read = 0;
  std::size_t written = 0;
  if (::lzma_stream_buffer_decode(
          &memory, 0, nullptr, reinterpret_cast<const std::uint8_t*>(stored.data()), &read,
          stored.size(), reinterpret_cast<std::uint8_t*>(bytes), &written, size) != LZMA_OK ||
      written != size) {
    throw FormatError("a compressed block is damaged");
  }
}

struct Compressor {
  std::string_view name;
  std::uint64_t greatestGain;  // bytes that one stored byte can stand for, at most
  void (*decompress)(std::string_view stored, char* bytes, std::size_t size);
};

const Compressor& compressorOf(const VtkXml& file) {
  // The gains are those of the formats: a match of 258 bytes in two bits, of 255 bytes in one byte,
  // and what runs of one byte were measured to become.
  static constexpr std::array<Compressor, 3> kCompressors = {
      {{"vtkZLibDataCompressor", 1032, decompressZlib},
       {"vtkLZ4DataCompressor", 255, decompressLz4},
       {"vtkLZMADataCompressor", 10000, decompressLzma}}};
  const auto* found =
      std::find_if(kCompressors.begin(), kCompressors.end(),
                   [&](const auto& known) { return known.name == file.compressor; });
  if (found == kCompressors.end()) {
    throw FormatError("it is compressed by '" + file.compressor + "', which is not known");
  }
  return *found;
}

/// The sizes that stand before compressed blocks.
struct BlockSizes {
  std::uint64_t blocks = 0;
  std::uint64_t blockBytes = 0;
  std::uint64_t lastBytes = 0;  // of the last one when it is not full, else 0
  std::vector<std::uint64_t> stored;

  [[nodiscard]] std::uint64_t bytesOf(std::uint64_t block) const noexcept {
    return block + 1 == blocks && lastBytes != 0 ? lastBytes : blockBytes;
  }
};

BlockSizes takeBlockSizes(const VtkXml& file, StoredBytes& stream) {
  constexpr std::size_t kNumbers = 3;
  const ArrayBytes first = stream.look(file.headerBytes);
  BlockSizes sizes;
  sizes.blocks = headerNumber(file, first.bytes(), 0);
  // Files end long before that many sizes; take() finds it out before memory is taken.
  if (sizes.blocks > std::numeric_limits<std::uint32_t>::max()) {
    throw FormatError("an array ends too early");
  }
  const std::size_t wanted =
      sizes.blocks == 0 ? 1 : kNumbers + static_cast<std::size_t>(sizes.blocks);
  const ArrayBytes header = stream.take(wanted * file.headerBytes);
  if (sizes.blocks == 0) {
    return sizes;
  }
  sizes.blockBytes = headerNumber(file, header.bytes(), 1);
  sizes.lastBytes = headerNumber(file, header.bytes(), 2);
  for (std::uint64_t block = 0; block < sizes.blocks; ++block) {
    sizes.stored.push_back(
        headerNumber(file, header.bytes(), kNumbers + static_cast<std::size_t>(block)));
  }
  return sizes;
}

/// How many bytes an array has; throws where no stored bytes can become that many.
std::size_t decompressedBytes(const BlockSizes& sizes, std::uint64_t stored,
                              const Compressor& compressor) {
  const std::uint64_t most = stored * compressor.greatestGain;
  std::uint64_t bytes = 0;
  for (std::uint64_t block = 0; block < sizes.blocks; ++block) {
    const std::uint64_t size = sizes.bytesOf(block);
    if (size > most || bytes > most - size) {
      throw FormatError("a compressed array says that it is larger than it can be");
    }
    bytes += size;
  }
  return static_cast<std::size_t>(bytes);
}

ArrayBytes decompressed(const VtkXml& file, StoredBytes& stream) {
  const Compressor& compressor = compressorOf(file);
  const BlockSizes sizes = takeBlockSizes(file, stream);
  std::uint64_t storedBytes = 0;
  for (const std::uint64_t size : sizes.stored) {
    if (size > UINT32_MAX || storedBytes > SIZE_MAX / 2) {
      throw FormatError("an array ends too early");
    }
    storedBytes += size;
  }
  const ArrayBytes blocks = stream.take(storedBytes);
  std::string all(decompressedBytes(sizes, storedBytes, compressor), '\0');
  std::size_t read = 0;
  std::size_t written = 0;
  for (std::uint64_t block = 0; block < sizes.blocks; ++block) {
    const auto stored = static_cast<std::size_t>(sizes.stored[static_cast<std::size_t>(block)]);
    const auto size = static_cast<std::size_t>(sizes.bytesOf(block));
    compressor.decompress(blocks.bytes().substr(read, stored), all.data() + written, size);
    read += stored;
    written += size;
  }
  return ArrayBytes(std::move(all));
}

ArrayBytes uncompressed(const VtkXml& file, StoredBytes& stream) {
  const std::uint64_t bytes = headerNumber(file, stream.look(file.headerBytes).bytes(), 0);
  if (bytes > SIZE_MAX / 2) {
    throw FormatError("an array ends too early");
  }
  ArrayBytes all = stream.take(file.headerBytes + bytes);  // header and values are one base64 text
  all.skip(file.headerBytes);
  return all;
}

/// Goes through the numbers of an array.
class ArrayNumbers {
 public:
  ArrayNumbers(const VtkXml& file, const VtkArray& array) : file_(file), array_(array) {
    if (!array.type) {
      refuseArray(array, "has a type that is none of numbers");
    }
    if (array.form != VtkArray::Form::ascii) {
      StoredBytes stream(file, array);
      all_ = file.compressor.empty() ? uncompressed(file, stream) : decompressed(file, stream);
      if (all_.bytes().size() % type().bytes != 0) {
        refuseArray(array, "ends within a value");
      }
    }
  }

  [[nodiscard]] const VtkType& type() const { return *array_.type; }

  template <class T>
  std::vector<T> all(std::optional<std::uint64_t> values) {
    std::vector<T> found = array_.form == VtkArray::Form::ascii ? ofText<T>() : ofBytes<T>();
    if (values && found.size() != *values) {
      refuseArray(array_, "has " + std::to_string(found.size()) + " values instead of " +
                              std::to_string(*values));
    }
    return found;
  }

 private:
  template <class T>
  std::vector<T> ofText() const {
    std::vector<T> values;
    std::string_view rest = array_.text;
    for (;;) {
      const std::size_t begin = rest.find_first_not_of(" \t\r\n");
      if (begin == std::string_view::npos) {
        return values;
      }
      rest.remove_prefix(begin);
      const std::string_view word = rest.substr(0, rest.find_first_of(" \t\r\n"));
      values.push_back(numberOfWord<T>(word));
      rest.remove_prefix(word.size());
    }
  }

  template <class T>
  T numberOfWord(std::string_view word) const {
    T value{};
    const auto result = std::from_chars(word.data(), word.data() + word.size(), value);
    if (result.ec != std::errc() || result.ptr != word.data() + word.size()) {
      refuseArray(array_, "has '" + std::string(word) + "' for a number");
    }
    return value;
  }

  template <class T>
  std::vector<T> ofBytes() const {
    const std::size_t width = type().bytes;
    std::vector<T> values(all_.bytes().size() / width);
    if (isStoredAs<T>() && !values.empty()) {
      std::memcpy(values.data(), all_.bytes().data(), all_.bytes().size());
      return values;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = valueOf<T>(bitsAt(all_.bytes().data() + i * width, width, file_.isBigEndian));
    }
    return values;
  }

  template <class T>
  [[nodiscard]] bool isStoredAs() const {
    return type().bytes == sizeof(T) && !file_.isBigEndian &&
           type().kind == (std::is_floating_point_v<T> ? 'f' : 'i');
  }

  template <class T>
  [[nodiscard]] T valueOf(std::uint64_t bits) const {
    if (type().kind == 'f') {
      return type().bytes == sizeof(double)
                 ? static_cast<T>(std::bit_cast<double>(bits))
                 : static_cast<T>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
    }
    if (type().kind == 'u') {
      return static_cast<T>(bits);
    }
    const auto unused = static_cast<unsigned>(64 - 8 * type().bytes);
    return static_cast<T>(static_cast<std::int64_t>(bits << unused) >> unused);
  }

  const VtkXml& file_;
  const VtkArray& array_;
  ArrayBytes all_;
};

/// Whether all values of a type are ints.
bool isOfInts(const VtkType& type) {
  return type.kind != 'f' && (type.bytes < sizeof(int) || (type.bytes == 4 && type.kind == 'i'));
}

}  // namespace

Numbers valuesOf(const VtkXml& file, const VtkArray& array, std::optional<std::uint64_t> values) {
  ArrayNumbers numbers(file, array);
  if (numbers.type().kind == 'f') {
    return numbers.all<double>(values);
  }
  if (isOfInts(numbers.type())) {
    return numbers.all<int>(values);
  }
  const std::vector<std::int64_t> integers = numbers.all<std::int64_t>(values);
  const bool areInts = std::all_of(integers.begin(), integers.end(), [](std::int64_t value) {
    return value >= INT_MIN && value <= INT_MAX;
  });
  if (areInts) {
    std::vector<int> ints(integers.size());
    std::transform(integers.begin(), integers.end(), ints.begin(),
                   [](std::int64_t value) { return static_cast<int>(value); });
    return ints;
  }
  const bool areUnsigned = numbers.type().kind == 'u';
  std::vector<double> doubles(integers.size());
  std::transform(integers.begin(), integers.end(), doubles.begin(), [&](std::int64_t value) {
    return areUnsigned ? static_cast<double>(static_cast<std::uint64_t>(value))
                       : static_cast<double>(value);
  });
  return doubles;
}

std::vector<std::int64_t> integersOf(const VtkXml& file, const VtkArray& array,
                                     std::optional<std::uint64_t> values) {
  ArrayNumbers numbers(file, array);
  if (numbers.type().kind == 'f') {
    refuseArray(array, "holds floating-point numbers where integers are wanted");
  }
  return numbers.all<std::int64_t>(values);
}

}  // namespace orvml_tool
