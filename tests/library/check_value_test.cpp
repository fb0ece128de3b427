#include <gtest/gtest.h>
#include <zo/library/check_value.h>

TEST(CheckValue, IsThePublishedOneHoweverItIsCut) {
  EXPECT_EQ(zoCheckValue("", 0), 0U);
  for (std::size_t cut = 0; cut <= 9; ++cut)
    EXPECT_EQ(zoCheckValue("123456789" + cut, 9 - cut, zoCheckValue("123456789", cut)),
              0xCBF43926U);
}
