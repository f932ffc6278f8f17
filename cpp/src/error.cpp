#include <orvml/error.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace orvml {

namespace {

std::string message(const std::string& sentence, const std::filesystem::path& file) {
  return file.empty() ? sentence : file.string() + ": " + sentence;
}

struct CodeText {
  Code code;
  std::string_view text;
};

// Programs and their users look these up: a text never changes.
constexpr CodeText kTexts[] = {{Code::fileNotFound, "orvml.file.not-found"},
                               {Code::filePermissionDenied, "orvml.file.permission-denied"},
                               {Code::fileIsADirectory, "orvml.file.directory"},
                               {Code::fileNotRegular, "orvml.file.not-regular"},
                               {Code::fileUnreachable, "orvml.file.unreachable"},
                               {Code::fileEmpty, "orvml.file.empty"},
                               {Code::fileNotHdf5, "orvml.file.not-hdf5"},
                               {Code::fileCutOff, "orvml.file.cut-off"},
                               {Code::fileDamaged, "orvml.file.damaged"},
                               {Code::fileHeldForWriting, "orvml.file.held-for-writing"},
                               {Code::fileNotExchange, "orvml.file.not-exchange"},
                               {Code::folderNotFound, "orvml.folder.not-found"},
                               {Code::folderNotWritable, "orvml.folder.not-writable"},
                               {Code::noSpaceLeft, "orvml.file.no-space"},
                               {Code::fileTooLarge, "orvml.file.too-large"},
                               {Code::fileNotWritten, "orvml.file.not-written"},
                               {Code::noDocument, "orvml.document.none"},
                               {Code::noInput, "orvml.document.no-input"},
                               {Code::noOutput, "orvml.document.no-output"},
                               {Code::wrongDimension, "orvml.document.dimension"},
                               {Code::objectMissing, "orvml.object.missing"},
                               {Code::objectUnopenable, "orvml.object.unopenable"},
                               {Code::objectInAnotherFile, "orvml.object.other-file"},
                               {Code::objectPathTooLong, "orvml.object.path-too-long"},
                               {Code::objectWrongShape, "orvml.object.wrong-shape"},
                               {Code::objectWrongType, "orvml.object.wrong-type"},
                               {Code::objectUnreadable, "orvml.object.unreadable"},
                               {Code::objectForeign, "orvml.object.foreign"},
                               {Code::valuesTooMany, "orvml.values.too-many"},
                               {Code::valuesTooFew, "orvml.values.too-few"},
                               {Code::valuesNegativeOrTooLarge, "orvml.values.bad-count"},
                               {Code::valueNotAllowed, "orvml.values.not-allowed"},
                               {Code::memoryOutOfProportion, "orvml.values.out-of-proportion"},
                               {Code::noPatch, "orvml.patch.none"},
                               {Code::patchDamaged, "orvml.patch.damaged"},
                               {Code::patchWrongBase, "orvml.patch.wrong-base"},
                               {Code::rescueNothingLeft, "orvml.rescue.nothing-left"},
                               {Code::rescueSameFile, "orvml.rescue.same-file"},
                               {Code::dependsOnLost, "orvml.rescue.depends-on-lost"},
                               {Code::upgradeLoses, "orvml.upgrade.loses"},
                               {Code::conversionLoses, "orvml.convert.loses"},
                               {Code::conversionBadIndex, "orvml.convert.bad-index"},
                               {Code::conversionNoNodes, "orvml.convert.no-nodes"},
                               {Code::vtkGroupOfOthers, "orvml.vtk.group-of-others"},
                               {Code::nameNotFound, "orvml.name.not-found"},
                               {Code::nameTooLong, "orvml.name.too-long"},
                               {Code::nameNotAllowed, "orvml.name.not-allowed"},
                               {Code::nameTwice, "orvml.name.twice"},
                               {Code::textTooLong, "orvml.text.too-long"},
                               {Code::wrongValueType, "orvml.use.wrong-type"},
                               {Code::wrongKind, "orvml.use.wrong-kind"},
                               {Code::sizesDisagree, "orvml.use.sizes-disagree"},
                               {Code::tooManyValues, "orvml.use.too-many-values"},
                               {Code::nullHandle, "orvml.use.null-handle"},
                               {Code::otherVersion, "orvml.use.other-version"}};

}  // namespace

std::string_view text(Code code) noexcept {
  const auto* found = std::find_if(std::begin(kTexts), std::end(kTexts),
                                   [code](const CodeText& text) { return text.code == code; });
  return found == std::end(kTexts) ? "orvml.unknown" : found->text;
}

Error::Error(Code code, std::string sentence) : Error(code, std::move(sentence), About()) {}

Error::Error(Code code, std::string sentence, About about)
    : std::runtime_error(message(sentence, about.file)),
      code_(code),
      sentence_(std::move(sentence)),
      about_(std::move(about)) {}

Error::~Error() = default;

}  // namespace orvml
