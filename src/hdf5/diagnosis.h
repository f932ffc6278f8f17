#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orvml_io {

/// What was wrong with an object of a file. A reader's result does not tell these apart.
enum class Trouble {
  missing,     ///< there is no such object
  unopenable,  ///< there is something, and it cannot be opened as what it should be
  otherFile,   ///< its values, or the object itself, lie in another file
  longPath,    ///< its path is longer than paths may be
  wrongShape,  ///< its rank or its extents are none that it may have
  wrongType,   ///< its values have a type that it may not have
  tooLong,     ///< it has more values than what they belong to
  tooShort,    ///< it has fewer values; the others are zeros
  badCount,    ///< a count in it is negative, or a sum of counts leaves 32 bits
  badValue,    ///< a value in it is none that it may have
  overBudget,  ///< reading it would take memory out of proportion to the file
  unreadable,  ///< HDF5 could not read it
  foreign      ///< it is none that the format knows, and nothing is lost without it
};

/// Something that a reader refused, missed or failed at.
struct Finding {
  Trouble trouble;
  std::string path;        ///< the object's absolute path in the file
  std::string sentence;    ///< what happened, beginning with the path
  std::string hdf5Reason;  ///< the innermost reason that HDF5 gave; empty when it gave none
};

/// What a reader that is asked to says about everything that it did not take as it was. Readers
/// that nobody asks spend nothing on it.
class Diagnosis {
 public:
  void add(Finding finding) { findings_.push_back(std::move(finding)); }
  [[nodiscard]] const std::vector<Finding>& findings() const noexcept { return findings_; }

 private:
  std::vector<Finding> findings_;
};

/// Returns the innermost reason that HDF5 gave for the failure of its last call; empty when that
/// did not fail.
[[nodiscard]] std::string lastHdf5Reason();

/// Tells whether HDF5's last call failed because something that it was asked for does not exist.
[[nodiscard]] bool lastFailureWasAbsence() noexcept;

}  // namespace orvml_io
