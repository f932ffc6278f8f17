#include <orvml/fingerprint.hpp>
#include <orvml/patch.hpp>

#include "lent_document.h"
#include "patch/patch_file.h"
#include "safe_file.h"

#include <string>
#include <utility>

namespace orvml {

namespace {

using detail::DocumentPatch;
using detail::Items;
using detail::OwnedArrays;

template <class View>
std::optional<std::string> digestOf(const std::optional<View>& document) {
  return document ? std::optional(fingerprint(*document).document.text()) : std::nullopt;
}

template <class View>
DocumentPatch patchBetween(const std::optional<View>& from, const std::optional<View>& to,
                           OwnedArrays& arrays, std::deque<Items>& kept) {
  DocumentPatch patch{digestOf(from), digestOf(to), {}};
  if (to && patch.base != patch.result) {
    (void)detail::LentDocument(*to);  // throws for what no file can hold
    const Items& old = kept.emplace_back(from ? detail::itemsOf(*from) : Items());
    patch.steps = detail::stepsBetween(old, kept.emplace_back(detail::itemsOf(*to)), arrays);
  }
  return patch;
}

}  // namespace

void savePatch(const std::filesystem::path& path, const Exchange& from, const Exchange& to,
               const SaveOptions& options) {
  OwnedArrays arrays;
  std::deque<Items> kept;
  const DocumentPatch input = patchBetween(from.input, to.input, arrays, kept);
  const DocumentPatch output = patchBetween(from.output, to.output, arrays, kept);
  detail::FailureWatch watch;
  detail::SafeFile file(path, watch);
  if (!detail::markAsPatch(file.id()) ||
      !detail::writeDocumentPatch(file.id(), Kind::input, input) ||
      !detail::writeDocumentPatch(file.id(), Kind::output, output)) {
    file.throwUnwritten();
  }
  file.finish(options.flush);
}

struct Patched::Content {
  OwnedArrays arrays;
  std::deque<Items> items;
  std::deque<std::string> texts;
  Exchange documents;

  template <class View>
  void apply(const DocumentPatch& patch, const std::optional<View>& base,
             std::optional<View>& result) {
    if (digestOf(base) != patch.base) {
      throw Error(Code::patchWrongBase, "is a patch for another document");
    }
    if (patch.base == patch.result) {
      result = base;
      return;
    }
    if (patch.result) {
      Items& changed = items.emplace_back(base ? detail::itemsOf(*base) : Items());
      detail::apply(patch.steps, changed, arrays);
      result.emplace(detail::partsOf(changed, texts));
    }
    if (digestOf(result) != patch.result) {
      throw Error(Code::patchDamaged, "is a patch that does not give what it was made from");
    }
  }
};

Patched::Patched(const std::filesystem::path& patch, const Exchange& base)
    : content_(std::make_unique<Content>()) {
  try {
    const detail::OpenedFile file(patch, detail::OpenedFile::Marker::any);
    detail::requirePatch(file);
    content_->apply(readDocumentPatch(file, Kind::input, content_->arrays), base.input,
                    content_->documents.input);
    content_->apply(readDocumentPatch(file, Kind::output, content_->arrays), base.output,
                    content_->documents.output);
  } catch (const Error& error) {
    if (!error.file().empty()) {
      throw;
    }
    // What does not fit is the patch's fault, which names no file while it is put together.
    const bool isWrongBase = error.code() == Code::patchWrongBase;
    throw Error(isWrongBase ? error.code() : Code::patchDamaged, error.sentence(),
                {patch, error.object(), {}});
  }
}

Patched::Patched(Patched&& other) noexcept = default;

Patched& Patched::operator=(Patched&& other) noexcept = default;

Patched::~Patched() = default;

const Exchange& Patched::documents() const& noexcept { return content_->documents; }

}  // namespace orvml
