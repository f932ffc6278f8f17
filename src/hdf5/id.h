#pragma once

#include <hdf5.h>

#include <utility>

namespace orvml_io {

/// Owns one HDF5 identifier and closes it on destruction. Not convertible to `bool` or `hid_t`: a
/// call says whether it borrows (`get`) or takes over (`release`, which only `keepOpen` calls).
template <herr_t (*Close)(hid_t)>
class OwnedId {
 public:
  OwnedId() = default;
  explicit OwnedId(hid_t id) noexcept : id_(id) {}
  OwnedId(OwnedId&& other) noexcept : id_(other.release()) {}
  OwnedId& operator=(OwnedId&& other) noexcept {
    if (this != &other) {
      (void)close();
      id_ = other.release();
    }
    return *this;
  }
  OwnedId(const OwnedId&) = delete;
  OwnedId& operator=(const OwnedId&) = delete;
  ~OwnedId() { (void)close(); }

  [[nodiscard]] bool valid() const noexcept { return id_ >= 0; }
  [[nodiscard]] hid_t get() const noexcept { return id_; }
  [[nodiscard]] hid_t release() noexcept { return std::exchange(id_, kNone); }

  /// Closes the identifier now, where the result of closing matters. Returns HDF5's result, 0 when
  /// there is nothing to close.
  [[nodiscard]] herr_t close() noexcept {
    const hid_t id = release();
    return id >= 0 ? Close(id) : 0;
  }

 private:
  static constexpr hid_t kNone = -1;
  hid_t id_ = kNone;
};

using FileId = OwnedId<H5Fclose>;
using GroupId = OwnedId<H5Gclose>;
using DatasetId = OwnedId<H5Dclose>;
using DataspaceId = OwnedId<H5Sclose>;
using DatatypeId = OwnedId<H5Tclose>;
using AttributeId = OwnedId<H5Aclose>;
using PropertyListId = OwnedId<H5Pclose>;
using ObjectId = OwnedId<H5Oclose>;

}  // namespace orvml_io
