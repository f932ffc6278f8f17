#pragma once

#include <orvml/check.hpp>
#include <orvml/error.hpp>
#include <orvml/export.hpp>
#include <orvml/save.hpp>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// Makes sound files of the present format of damaged, foreign and older ones. No value is made up:
/// what a new file holds stood in the old one.
namespace orvml {

/// An object of a file that is not in the new one, or not all of it.
struct LostObject {
  std::string_view code;           ///< text(Code) or text(CheckCode); it never ends
  std::string object;              ///< its absolute path in the old file
  std::vector<CheckPlace> places;  ///< the first nodes or cells that are left out, as the old file
                                   ///< counts them, in ascending order; empty for a whole object
  std::int64_t count = 1;          ///< how many nodes or cells; 1 for a whole object
  std::string sentence;            ///< why, beginning with the object
};

/// An object that is in the new file in another form.
struct ChangedObject {
  std::string object;    ///< its absolute path in the old file
  std::string sentence;  ///< what became of it, beginning with the object
};

struct RescueOptions {
  /// Whether cells are left out that are no good as cells, though their numbers can be read: those
  /// with a node twice, without size, inside out, equal to another one, or sharing a face with more
  /// than one other element. Otherwise they stay as they are, and check() tells of them.
  bool dropUnsoundCells = true;
  int places = 10;  ///< how many places a lost object has at most

  /// Whether all is done in a child process, so that a file on which HDF5 falls ends that process
  /// and not this one: HDF5 1.10 does not stand every damage of its own structures. A program whose
  /// other threads may hold locks while it forks, or that has HDF5 busy in one, does without it.
  bool inOwnProcess = true;
  SaveOptions save = {};
};

/// What rescue() could not keep, and what it keeps in another form, each by ascending path.
struct RescueReport {
  std::vector<LostObject> lost;
  std::vector<ChangedObject> changed;

  /// Whether everything is in the new file.
  [[nodiscard]] bool isWhole() const noexcept { return lost.empty(); }
};

/// Reads what can be read of a damaged or foreign file and writes it as a sound one, of which
/// check() has no errors. The damaged file is only read.
///
/// - A file may lack its end, its marker and its version; objects that the format does not know,
///   values in other files, and arrays that cannot be read, are not of the type or the extents that
///   they should be, or hold integers of more than 32 bits are left out. Arrays with values that
///   were never stored are left out, too, where a reader would see zeros.
/// - Of coordinates and node indices whose end is missing, the nodes and cells before it are kept.
///   A group of cells whose numbers are damaged is left out with those behind it, whose place
///   nobody knows; all cells are, where node indices contradict the groups.
/// - Cells go that name a node which does not exist, has no finite coordinates or could not be
///   read, groups whose shape and number of nodes do not belong together, and the cells that
///   RescueOptions::dropUnsoundCells names. Attributes lose the values of nodes and cells that go.
///   Where nodes do, those behind them are numbered anew.
/// - Attributes that have not one value per node or cell are left out; so are parameters, vectors
///   and texts whose names or contents no present file can hold, and parameters of a name that
///   comes again.
/// - The dimension is the number of columns of the coordinates, where those contradict it or it
///   cannot be read. Older layouts are converted as upgrade() does.
///
/// Values that were changed, and still are values, are not noticed: files have no checksums of
/// them.
///
/// @param damaged  path of the file to be read
/// @param sound    path of the file to be written, as save() does; it must be another file
/// @return what is not in the new file, and what is in it in another form
///
/// Throws Error: as load() does when HDF5 cannot open the file, Code::fileNotExchange when it has
/// neither the marker nor the documents of an exchange file, Code::fileDamaged when HDF5 fell on it
/// in its own process, Code::rescueNothingLeft when nothing is left to be written,
/// Code::rescueSameFile when both paths lead to one file, and as save() does when the new file
/// cannot be written. Nothing is written then.
ORVML_EXPORT RescueReport rescue(const std::filesystem::path& damaged,
                                 const std::filesystem::path& sound,
                                 const RescueOptions& options = {});

/// What upgrade() converted, by ascending path.
struct UpgradeReport {
  std::string version;  ///< the format version that the old file states; empty when it states none
  std::vector<ChangedObject> changed;  ///< empty for a file of the present layout
};

/// Writes a file of an older layout, with its parameters and attributes by position, as one of the
/// present format, with nothing lost. Names are those that load() gives; the attribute of volume
/// elements to which it gives the empty name gets the one of a position without a name, such as
/// "user-marker-0". The mesh stays as it is, sound or not. A file of the present layout is written
/// again. The old file is only read.
///
/// @param old      path of the file to be read
/// @param present  path of the file to be written, as save() does; it must be another file
///
/// Throws Error: as load() does when the file is none, Code::upgradeLoses when anything in it would
/// not be in the new one, as an object that the format does not know or two values of one name,
/// Code::rescueSameFile, and as save() does. Nothing is written then.
ORVML_EXPORT UpgradeReport upgrade(const std::filesystem::path& old,
                                   const std::filesystem::path& present,
                                   const SaveOptions& options = {});

}  // namespace orvml
