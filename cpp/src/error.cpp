#include <orvml/error.hpp>

#include <utility>

namespace orvml {

namespace {

std::string message(const std::string& sentence, const std::filesystem::path& file) {
  return file.empty() ? sentence : file.string() + ": " + sentence;
}

}  // namespace

std::string_view text(Code code) noexcept {
  switch (code) {
    case Code::fileNotFound:
      return "orvml.file.not-found";
    case Code::filePermissionDenied:
      return "orvml.file.permission-denied";
    case Code::fileIsADirectory:
      return "orvml.file.directory";
    case Code::fileNotRegular:
      return "orvml.file.not-regular";
    case Code::fileUnreachable:
      return "orvml.file.unreachable";
    case Code::fileEmpty:
      return "orvml.file.empty";
    case Code::fileNotHdf5:
      return "orvml.file.not-hdf5";
    case Code::fileCutOff:
      return "orvml.file.cut-off";
    case Code::fileDamaged:
      return "orvml.file.damaged";
    case Code::fileHeldForWriting:
      return "orvml.file.held-for-writing";
    case Code::fileNotExchange:
      return "orvml.file.not-exchange";
    case Code::folderNotFound:
      return "orvml.folder.not-found";
    case Code::folderNotWritable:
      return "orvml.folder.not-writable";
    case Code::noSpaceLeft:
      return "orvml.file.no-space";
    case Code::fileTooLarge:
      return "orvml.file.too-large";
    case Code::fileNotWritten:
      return "orvml.file.not-written";
    case Code::noDocument:
      return "orvml.document.none";
    case Code::noInput:
      return "orvml.document.no-input";
    case Code::noOutput:
      return "orvml.document.no-output";
    case Code::wrongDimension:
      return "orvml.document.dimension";
    case Code::objectMissing:
      return "orvml.object.missing";
    case Code::objectUnopenable:
      return "orvml.object.unopenable";
    case Code::objectInAnotherFile:
      return "orvml.object.other-file";
    case Code::objectPathTooLong:
      return "orvml.object.path-too-long";
    case Code::objectWrongShape:
      return "orvml.object.wrong-shape";
    case Code::objectWrongType:
      return "orvml.object.wrong-type";
    case Code::objectUnreadable:
      return "orvml.object.unreadable";
    case Code::objectForeign:
      return "orvml.object.foreign";
    case Code::valuesTooMany:
      return "orvml.values.too-many";
    case Code::valuesTooFew:
      return "orvml.values.too-few";
    case Code::valuesNegativeOrTooLarge:
      return "orvml.values.bad-count";
    case Code::valueNotAllowed:
      return "orvml.values.not-allowed";
    case Code::memoryOutOfProportion:
      return "orvml.values.out-of-proportion";
    case Code::nameNotFound:
      return "orvml.name.not-found";
    case Code::nameTooLong:
      return "orvml.name.too-long";
    case Code::nameNotAllowed:
      return "orvml.name.not-allowed";
    case Code::nameTwice:
      return "orvml.name.twice";
    case Code::textTooLong:
      return "orvml.text.too-long";
    case Code::wrongValueType:
      return "orvml.use.wrong-type";
    case Code::wrongKind:
      return "orvml.use.wrong-kind";
    case Code::sizesDisagree:
      return "orvml.use.sizes-disagree";
    case Code::tooManyValues:
      return "orvml.use.too-many-values";
    case Code::nullHandle:
      return "orvml.use.null-handle";
    case Code::otherVersion:
      return "orvml.use.other-version";
  }
  return "orvml.unknown";
}

Error::Error(Code code, std::string sentence) : Error(code, std::move(sentence), About()) {}

Error::Error(Code code, std::string sentence, About about)
    : std::runtime_error(message(sentence, about.file)),
      code_(code),
      sentence_(std::move(sentence)),
      about_(std::move(about)) {}

Error::~Error() = default;

}  // namespace orvml
