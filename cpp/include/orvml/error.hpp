#pragma once

#include <orvml/export.hpp>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvml {

/// What went wrong. Each code has a text that stays what it is, such as "orvml.file.not-found".
enum class Code {
  // The file as a whole
  fileNotFound,
  filePermissionDenied,
  fileIsADirectory,
  fileNotRegular,
  fileUnreachable,
  fileEmpty,
  fileNotHdf5,
  fileCutOff,
  fileDamaged,
  fileHeldForWriting,
  fileNotExchange,
  folderNotFound,
  folderNotWritable,
  noSpaceLeft,
  fileTooLarge,
  fileNotWritten,

  // Documents
  noDocument,
  noInput,
  noOutput,
  wrongDimension,

  // Objects of a file
  objectMissing,
  objectUnopenable,
  objectInAnotherFile,
  objectPathTooLong,
  objectWrongShape,
  objectWrongType,
  objectUnreadable,
  objectForeign,
  valuesTooMany,
  valuesTooFew,
  valuesNegativeOrTooLarge,
  valueNotAllowed,
  memoryOutOfProportion,

  // Patches
  noPatch,
  patchDamaged,
  patchWrongBase,

  // Rescue and upgrade
  rescueNothingLeft,
  rescueSameFile,
  dependsOnLost,
  upgradeLoses,

  // Other formats
  conversionLoses,
  conversionBadIndex,
  conversionNoNodes,
  vtkGroupOfOthers,

  // Use of this interface
  nameNotFound,
  nameTooLong,
  nameNotAllowed,
  nameTwice,
  textTooLong,
  wrongValueType,
  wrongKind,
  sizesDisagree,
  tooManyValues,
  nullHandle,
  otherVersion
};

/// Returns the text of a code.
[[nodiscard]] ORVML_EXPORT std::string_view text(Code code) noexcept;

/// What the functions of this interface throw, besides std::bad_alloc.
class ORVML_EXPORT Error : public std::runtime_error {
 public:
  /// What an error is about. All but the sentence may be empty.
  struct About {
    std::filesystem::path file;
    std::string object;  ///< absolute path in the file, or the name that was asked for
    std::string hdf5Reason;
  };

  Error(Code code, std::string sentence);
  Error(Code code, std::string sentence, About about);
  Error(const Error&) = default;
  Error& operator=(const Error&) = default;
  Error(Error&&) = default;
  Error& operator=(Error&&) = default;
  ~Error() override;

  [[nodiscard]] Code code() const noexcept { return code_; }

  /// The file, as it was named by the caller; empty when none was concerned.
  [[nodiscard]] const std::filesystem::path& file() const noexcept { return about_.file; }

  /// The absolute path of the object in the file, or the name that was asked for; may be empty.
  [[nodiscard]] const std::string& object() const noexcept { return about_.object; }

  /// What happened, without the file. what() has both: "FILE: SENTENCE".
  [[nodiscard]] const std::string& sentence() const noexcept { return sentence_; }

  /// The innermost reason that HDF5 gave, in its words; empty when HDF5 was not the one to fail.
  [[nodiscard]] const std::string& hdf5Reason() const noexcept { return about_.hdf5Reason; }

 private:
  Code code_;
  std::string sentence_;
  About about_;
};

/// Something that a tolerant reader met and went on from.
struct Finding {
  Code code;
  std::string object;      ///< absolute path in the file
  std::string sentence;    ///< what happened, beginning with the path
  std::string hdf5Reason;  ///< as for errors
};

/// What a reader does about trouble in a file.
enum class Policy {
  strict,   ///< the first trouble is thrown
  tolerant  ///< what can be read is read, and each trouble becomes a finding
};

}  // namespace orvml
