#include <orvml/fingerprint.hpp>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string_view>

namespace orvml {

namespace {

/// Feeds a digest with the canonical form: numbers are little-endian, texts and arrays begin with
/// their length.
class Hasher {
 public:
  explicit Hasher(std::string_view part) {
    XXH3_128bits_reset(&state_);
    add(part);
  }

  void add(std::uint64_t number) {
    if constexpr (std::endian::native == std::endian::big) {
      number = __builtin_bswap64(number);
    }
    addBytes(&number, sizeof number);
  }

  void add(std::string_view text) {
    add(static_cast<std::uint64_t>(text.size()));
    addBytes(text.data(), text.size());
  }

  template <class Value>
  void add(std::span<const Value> values) {
    add(static_cast<std::uint64_t>(values.size()));
    if constexpr (std::endian::native == std::endian::little) {
      addBytes(values.data(), values.size_bytes());
    } else {
      for (const Value& value : values) {
        addSwapped(value);
      }
    }
  }

  void add(const Digest& digest) { addBytes(digest.bytes.data(), digest.bytes.size()); }

  [[nodiscard]] Digest finish() const {
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, XXH3_128bits_digest(&state_));
    Digest digest;
    static_assert(sizeof canonical.digest == sizeof digest.bytes);
    std::memcpy(digest.bytes.data(), canonical.digest, sizeof canonical.digest);
    return digest;
  }

 private:
  void addBytes(const void* bytes, std::size_t count) {
    XXH3_128bits_update(&state_, bytes, count);
  }

  template <class Value>
  void addSwapped(Value value) {
    std::array<std::uint8_t, sizeof(Value)> bytes;
    std::memcpy(bytes.data(), &value, sizeof value);
    std::reverse(bytes.begin(), bytes.end());
    addBytes(bytes.data(), bytes.size());
  }

  XXH3_state_t state_;
};

std::uint64_t numberOf(int value) noexcept {
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
}

Digest digestOfIdentification(const DocumentView& document) {
  Hasher hasher("identification");
  hasher.add(document.kind() == Kind::input ? std::string_view("input") : "output");
  hasher.add(document.identification().moduleName);
  hasher.add(document.identification().moduleFormatVersion);
  hasher.add(document.identification().creator);
  hasher.add(numberOf(document.dimension()));
  return hasher.finish();
}

Digest digestOf(const NodesView& nodes) {
  Hasher hasher("nodes");
  hasher.add(numberOf(nodes.size()));
  hasher.add(nodes.coordinates());
  return hasher.finish();
}

/// Without cells there are no groups: files do not keep empty containers.
Digest digestOf(const CellsView& cells, std::string_view part) {
  Hasher hasher(part);
  const std::span<const CellGroup> groups =
      cells.size() == 0 ? std::span<const CellGroup>() : cells.groups();
  hasher.add(static_cast<std::uint64_t>(groups.size()));
  for (const CellGroup& group : groups) {
    hasher.add(numberOf(static_cast<int>(group.shape())));
    hasher.add(numberOf(group.nodesPerCell()));
    hasher.add(numberOf(group.size()));
    hasher.add(group.nodeIndices());
  }
  return hasher.finish();
}

/// Feeds what every named vector has.
void addVector(Hasher& hasher, const Attribute& vector) {
  hasher.add(vector.name);
  hasher.add(vector.holdsInts() ? std::string_view("int") : "double");
  std::visit([&hasher](auto values) { hasher.add(values); }, vector.values);
}

/// Without entities there is nothing for attributes to belong to: files keep none.
Digest digestOf(const Attributes& attributes, std::string_view part, int numberOfEntities) {
  Hasher hasher(part);
  const Attributes kept = numberOfEntities > 0 ? attributes : Attributes();
  hasher.add(static_cast<std::uint64_t>(kept.size()));
  for (const Attribute& attribute : kept) {
    addVector(hasher, attribute);
    hasher.add(std::uint64_t{attribute.mustBeTransmitted});
  }
  return hasher.finish();
}

/// Vector parameters have no flags that mean anything.
Digest digestOfVectorParameters(const Attributes& vectors) {
  Hasher hasher("vector parameters");
  hasher.add(static_cast<std::uint64_t>(vectors.size()));
  for (const Attribute& vector : vectors) {
    addVector(hasher, vector);
  }
  return hasher.finish();
}

Digest digestOf(const Parameters& parameters) {
  Hasher hasher("parameters");
  hasher.add(static_cast<std::uint64_t>(parameters.size()));
  for (const Parameter& parameter : parameters) {
    hasher.add(parameter.name);
    hasher.add(std::bit_cast<std::uint64_t>(parameter.value));
  }
  return hasher.finish();
}

Digest digestOfParts(const Fingerprint& parts) {
  Hasher hasher("orvml fingerprint 1");
  for (const Digest& part :
       {parts.identification, parts.nodes, parts.edges, parts.faces, parts.elements,
        parts.nodeAttributes, parts.edgeAttributes, parts.faceAttributes, parts.elementAttributes,
        parts.parameters, parts.vectorParameters}) {
    hasher.add(part);
  }
  return hasher.finish();
}

}  // namespace

std::string Digest::text() const {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits;
  digits.reserve(2 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    digits += kDigits[byte >> 4U];
    digits += kDigits[byte & 0xfU];
  }
  return digits;
}

Fingerprint fingerprint(const DocumentView& document) {
  Fingerprint parts;
  parts.identification = digestOfIdentification(document);
  parts.nodes = digestOf(document.nodes());
  parts.edges = digestOf(document.edges(), "edges");
  parts.faces = digestOf(document.faces(), "faces");
  parts.elements = digestOf(document.elements(), "elements");
  parts.nodeAttributes =
      digestOf(document.nodes().attributes(), "node attributes", document.nodes().size());
  parts.edgeAttributes =
      digestOf(document.edges().attributes(), "edge attributes", document.edges().size());
  parts.faceAttributes =
      digestOf(document.faces().attributes(), "face attributes", document.faces().size());
  parts.elementAttributes =
      digestOf(document.elements().attributes(), "element attributes", document.elements().size());
  parts.parameters = digestOf(document.parameters());
  parts.vectorParameters = digestOfVectorParameters(document.vectorParameters());
  parts.document = digestOfParts(parts);
  return parts;
}

}  // namespace orvml
