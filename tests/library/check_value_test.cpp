#include <gtest/gtest.h>
#include <zo/library/check_value.h>

#include <random>
#include <vector>

namespace {

// Bit by bit, as the polynomial has it.
std::uint32_t slowly(const unsigned char* bytes, std::size_t size, std::uint32_t before) {
  std::uint32_t crc = ~before;
  for (std::size_t i = 0; i < size; ++i) {
    crc ^= bytes[i];
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

}  // namespace

TEST(CheckValue, IsThePublishedOneHoweverItIsCut) {
  EXPECT_EQ(zoCheckValue("", 0), 0U);
  for (std::size_t cut = 0; cut <= 9; ++cut)
    EXPECT_EQ(zoCheckValue("123456789" + cut, 9 - cut, zoCheckValue("123456789", cut)),
              0xCBF43926U);
  for (const std::size_t impossible : {SIZE_MAX, SIZE_MAX >> 2, SIZE_MAX >> 17})
    EXPECT_EQ(zoCheckValue("1", impossible, 5U) + zoCheckValue(nullptr, 1, 5U), 10U);
}

// Long runs go another way than short ones, by sixteen and sixty-four bytes.
TEST(CheckValue, IsTheSameForEveryLengthAndPlace) {
  std::mt19937 random(1);
  std::vector<unsigned char> bytes(5000);
  for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
  for (std::size_t size = 0; size < 400; ++size) {
    const std::size_t begin = random() % 64;
    const auto before = static_cast<std::uint32_t>(random());
    EXPECT_EQ(zoCheckValue(&bytes[begin], size, before), slowly(&bytes[begin], size, before))
        << size;
  }
  EXPECT_EQ(zoCheckValue(bytes.data(), bytes.size()), slowly(bytes.data(), bytes.size(), 0));
}
