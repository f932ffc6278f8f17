#pragma once

#include <orvml/document.hpp>

#include "model/document.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace orvml::detail {

/// What a document holds: the core's document, and the containers that its arrays lie in.
struct DocumentContent {
  /// What a container was handed over for: an entity with the name of an attribute, or with none
  /// for the mesh itself; vector parameters have no entity.
  using Place = std::pair<int, std::string>;
  static constexpr int kOfNoEntity = -1;

  std::unique_ptr<orvml_io::OrvInputAndOrvOutput> document;
  std::map<Place, std::shared_ptr<const void>> keepers;  // released after the document
};

/// The way of the other parts of this library to what documents hold.
struct DocumentAccess {
  template <class Made>
  [[nodiscard]] static Made make(std::unique_ptr<orvml_io::OrvInputAndOrvOutput> document) {
    return Made(std::move(document));
  }
  [[nodiscard]] static orvml_io::OrvInputAndOrvOutput& coreOf(const Document& document) noexcept {
    return document.core();
  }
  [[nodiscard]] static DocumentContent& contentOf(Document& document) noexcept {
    return *document.content_;
  }
};

}  // namespace orvml::detail
