#include "platform/handle.h"

#include <gtest/gtest.h>

namespace {

HANDLE newEvent() { return CreateEventW(nullptr, TRUE, FALSE, nullptr); }

bool isOpen(HANDLE handle) {
  DWORD flags = 0;
  return GetHandleInformation(handle, &flags) != 0;
}

}  // namespace

TEST(Handle, ClosesWhatItHoldsAtItsEndAndWhenItTakesAnother) {
  const HANDLE first = newEvent(), second = newEvent(), third = newEvent();
  {
    zo::Handle handle(first);
    handle.reset(second);
    EXPECT_TRUE(handle && !isOpen(first));
    zo::Handle next(third);
    handle = std::move(next);
    EXPECT_TRUE(!isOpen(second) && isOpen(third) && !next);
    zo::Handle& itself = handle;
    handle = std::move(itself);
    EXPECT_EQ(handle.release(), third);
    handle.reset(INVALID_HANDLE_VALUE);
    EXPECT_TRUE(!handle && handle.get() == nullptr && isOpen(third));
    handle.reset(third);
  }
  EXPECT_FALSE(isOpen(third));
}
