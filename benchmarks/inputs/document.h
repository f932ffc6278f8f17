#pragma once

#include "inputs/content.h"

namespace orvml_io_bench {

/// An input document of the library around a content, whose mesh arrays it refers to.
class Document {
 public:
  explicit Document(Content& content);
  explicit Document(void* handle) noexcept : handle_(handle) {}
  Document(Document&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  Document& operator=(Document&&) = delete;
  ~Document();

  [[nodiscard]] void* handle() const noexcept { return handle_; }
  [[nodiscard]] static Document read(const std::string& path);

 private:
  void* handle_ = nullptr;
};

}  // namespace orvml_io_bench
