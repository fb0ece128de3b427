#include <gtest/gtest.h>
#include <zo/system/dll_version.h>
#include <zo/version.h>

TEST(DllVersion, IsTheVersionOfTheHeadersItWasBuiltWith) {
  EXPECT_STREQ(zoComVersion(), ZO_COM_VERSION);
}
