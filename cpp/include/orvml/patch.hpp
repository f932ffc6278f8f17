#pragma once

#include <orvml/export.hpp>
#include <orvml/save.hpp>
#include <orvml/view.hpp>

#include <filesystem>
#include <memory>
#include <optional>

namespace orvml {

/// The documents of an exchange, either of which may be missing.
struct Exchange {
  std::optional<InputView> input = {};
  std::optional<OutputView> output = {};
};

/// Writes the change from one exchange to another as a small file: of a large array of which few
/// values differ it holds those, and of what is equal nothing. It is written as save() writes.
///
/// Throws Error as save() does, also for documents of the second exchange that no file can hold.
ORVML_EXPORT void savePatch(const std::filesystem::path& path, const Exchange& from,
                            const Exchange& to, const SaveOptions& options = {});

/// An exchange that a patch was applied to. What the patch leaves alone is shown where it lies in
/// the base; the rest belongs to this object.
class ORVML_EXPORT Patched {
 public:
  /// Applies a patch. The views of the base have to stay valid as long as this object.
  ///
  /// Throws Error: as load() does when the file is none, Code::noPatch when it is no patch,
  /// Code::patchWrongBase when it was made for another base than this one, bit by bit, and
  /// Code::patchDamaged when what comes out is not what it was made from.
  Patched(const std::filesystem::path& patch, const Exchange& base);
  Patched(Patched&& other) noexcept;
  Patched& operator=(Patched&& other) noexcept;
  Patched(const Patched&) = delete;
  Patched& operator=(const Patched&) = delete;
  ~Patched();

  /// Valid as long as this object.
  [[nodiscard]] const Exchange& documents() const& noexcept;
  const Exchange& documents() const&& = delete;

 private:
  struct Content;
  std::unique_ptr<Content> content_;
};

}  // namespace orvml
