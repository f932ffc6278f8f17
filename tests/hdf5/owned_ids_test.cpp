// The owner of an HDF5 identifier, and the one way to leave an identifier open.
#include "hdf5/id.h"
#include "hdf5/kept_open.h"
#include "hdf5/silence.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace orvml_io {
namespace {

static_assert(!std::is_copy_constructible<GroupId>::value &&
                  !std::is_copy_assignable<GroupId>::value,
              "a copy would close an identifier twice");
static_assert(!std::is_convertible<GroupId, hid_t>::value &&
                  !std::is_convertible<hid_t, GroupId>::value,
              "borrowing and taking over must be visible at the call");

hid_t newSpace() { return H5Screate(H5S_SCALAR); }
bool isOpen(hid_t id) { return H5Iis_valid(id) > 0; }

TEST(OwnedId, OfNothingIsNotValid) {
  const DataspaceId id;

  EXPECT_FALSE(id.valid());
}

TEST(OwnedId, OfAFailedCallIsNotValid) {
  const DataspaceId id(-1);

  EXPECT_FALSE(id.valid());
}

TEST(OwnedId, ClosesAtTheEndOfItsScope) {
  const hid_t space = newSpace();
  { const DataspaceId id(space); }

  EXPECT_FALSE(isOpen(space));
}

TEST(OwnedId, LendsItsIdentifier) {
  const hid_t space = newSpace();
  const DataspaceId id(space);

  EXPECT_EQ(id.get(), space);
  EXPECT_TRUE(isOpen(space));
}

TEST(OwnedId, MovesItsIdentifierIntoANewOwner) {
  const hid_t space = newSpace();
  DataspaceId source(space);

  const DataspaceId target(std::move(source));

  EXPECT_EQ(target.get(), space);
  EXPECT_TRUE(isOpen(space));
}

TEST(OwnedId, ClosesWhatItHeldWhenItTakesOver) {
  const hid_t first = newSpace();
  const hid_t second = newSpace();
  DataspaceId target(first);

  target = DataspaceId(second);

  EXPECT_FALSE(isOpen(first));
  EXPECT_TRUE(isOpen(second));
  EXPECT_EQ(target.get(), second);
}

TEST(OwnedId, KeepsItsIdentifierWhenMovedOntoItself) {
  DataspaceId id(newSpace());
  DataspaceId& same = id;

  id = std::move(same);

  EXPECT_TRUE(isOpen(id.get()));
}

TEST(OwnedId, ReleasedIsNoLongerItsOwn) {
  const hid_t space = newSpace();
  {
    DataspaceId id(space);
    EXPECT_EQ(id.release(), space);
    EXPECT_FALSE(id.valid());
  }

  EXPECT_TRUE(isOpen(space));
  H5Sclose(space);
}

TEST(OwnedId, ClosedEarlyGivesTheResultOfClosing) {
  const hid_t space = newSpace();
  DataspaceId id(space);

  EXPECT_EQ(id.close(), 0);

  EXPECT_FALSE(isOpen(space));
  EXPECT_FALSE(id.valid());
}

TEST(OwnedId, ClosedTwiceHasNothingToCloseTheSecondTime) {
  DataspaceId id(newSpace());
  ASSERT_EQ(id.close(), 0);

  EXPECT_EQ(id.close(), 0);
}

TEST(OwnedId, ThatCannotBeClosedGivesTheFailure) {
  const Silence silence;
  const hid_t space = newSpace();
  DataspaceId id(space);
  H5Sclose(space);

  EXPECT_LT(id.close(), 0);
}

TEST(KeepOpen, ReturnsTheIdentifierAndLeavesItOpen) {
  const hid_t space = newSpace();

  EXPECT_EQ(keepOpen(DataspaceId(space), KeptOpen::documentGroup), space);

  EXPECT_TRUE(isOpen(space));
  H5Sclose(space);
}

TEST(KeepOpen, OfNothingIsNoIdentifier) {
  EXPECT_LT(keepOpen(GroupId(), KeptOpen::documentGroup), 0);
}

}  // namespace
}  // namespace orvml_io
