#include "platform/handle.h"

#include <gtest/gtest.h>

namespace {

HANDLE newEvent() { return CreateEventW(nullptr, TRUE, FALSE, nullptr); }

bool isOpen(HANDLE handle) {
  DWORD flags = 0;
  return GetHandleInformation(handle, &flags) != 0;
}

}  // namespace

TEST(Handle, NullAndTheInvalidValueAreNone) {
  for (HANDLE none : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
    zo::Handle handle(none);
    EXPECT_FALSE(handle);
    EXPECT_EQ(handle.get(), nullptr);
    handle.reset(none);
    EXPECT_EQ(handle.release(), nullptr);
  }
}

TEST(Handle, ClosesWhatItHoldsAtItsEndAndWhenItTakesAnother) {
  const HANDLE first = newEvent(), second = newEvent(), third = newEvent();
  {
    zo::Handle handle(first);
    EXPECT_TRUE(handle);
    handle.reset(second);
    EXPECT_FALSE(isOpen(first));
    zo::Handle next(third);
    handle = std::move(next);
    EXPECT_FALSE(isOpen(second));
    EXPECT_EQ(handle.get(), third);
    EXPECT_TRUE(isOpen(third));
  }
  EXPECT_FALSE(isOpen(third));
}

TEST(Handle, MovingAndReleasingPassItOnOpen) {
  const HANDLE event = newEvent();
  {
    zo::Handle handle(event);
    zo::Handle moved(std::move(handle));
    EXPECT_FALSE(handle);
    zo::Handle& itself = moved;
    moved = std::move(itself);
    EXPECT_EQ(moved.get(), event);
    EXPECT_EQ(moved.release(), event);
    EXPECT_FALSE(moved);
  }
  EXPECT_TRUE(isOpen(event));
  CloseHandle(event);
}
