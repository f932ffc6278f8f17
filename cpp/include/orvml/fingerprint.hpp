#pragma once

#include <orvml/export.hpp>
#include <orvml/view.hpp>

#include <array>
#include <compare>
#include <cstdint>
#include <string>

namespace orvml {

/// 128 bits that tell one content from another, of the hash XXH3. Equal content gives equal digests
/// on every machine. It protects against accident, not against forgery.
struct ORVML_EXPORT Digest {
  std::array<std::uint8_t, 16> bytes = {};  ///< the most significant one first

  /// 32 digits, lower case.
  [[nodiscard]] std::string text() const;

  friend auto operator<=>(const Digest&, const Digest&) = default;
};

/// The digests of a document and of its parts.
struct Fingerprint {
  Digest document;
  Digest identification;  ///< kind, identification and dimension
  Digest nodes;           ///< coordinates
  Digest edges;           ///< groups and node indices
  Digest faces;
  Digest elements;
  Digest nodeAttributes;  ///< names, flags and values
  Digest edgeAttributes;
  Digest faceAttributes;
  Digest elementAttributes;
  Digest parameters;
  Digest vectorParameters;

  friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
};

/// Computes the fingerprint of a content: it is the same after the document was cloned, written,
/// read or stored in another way (compressed, with other byte order), and another one when a bit of
/// any value, name, text or flag is. `docs/fingerprint.md` has the canonical form and test vectors.
[[nodiscard]] ORVML_EXPORT Fingerprint fingerprint(const DocumentView& document);

}  // namespace orvml
