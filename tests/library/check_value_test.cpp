#include <gtest/gtest.h>
#include <zo/library/check_value.h>

TEST(CheckValue, IsThePublishedOneHoweverItIsCut) {
  EXPECT_EQ(zoCheckValue("", 0), 0U);
  for (std::size_t cut = 0; cut <= 9; ++cut)
    EXPECT_EQ(zoCheckValue("123456789" + cut, 9 - cut, zoCheckValue("123456789", cut)),
              0xCBF43926U);
  for (const std::size_t impossible : {SIZE_MAX, SIZE_MAX >> 2, SIZE_MAX >> 17})
    EXPECT_EQ(zoCheckValue("1", impossible, 5U) + zoCheckValue(nullptr, 1, 5U), 10U);
}
