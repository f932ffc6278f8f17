#pragma once

#include <iosfwd>

namespace orvml_io_tests {

/// How many HDF5 identifiers of each kind are open in this process.
struct IdCounts {
  long files = 0;
  long groups = 0;
  long datasets = 0;
  long types = 0;
  long attributes = 0;

  friend bool operator==(const IdCounts& a, const IdCounts& b) {
    return a.files == b.files && a.groups == b.groups && a.datasets == b.datasets &&
           a.types == b.types && a.attributes == b.attributes;
  }
  friend std::ostream& operator<<(std::ostream& stream, const IdCounts& counts);
};

/// Counts what was opened since its construction and closes what is left at the end, so that no
/// test sees the identifiers of another one.
class OpenIds {
 public:
  OpenIds();
  OpenIds(const OpenIds&) = delete;
  OpenIds& operator=(const OpenIds&) = delete;
  OpenIds(OpenIds&&) = delete;
  OpenIds& operator=(OpenIds&&) = delete;
  ~OpenIds();

  /// Returns the identifiers opened since the construction and not closed.
  [[nodiscard]] IdCounts opened() const;

  /// Closes every identifier that is open in this process.
  static void closeAll();

 private:
  IdCounts before_;
};

}  // namespace orvml_io_tests
