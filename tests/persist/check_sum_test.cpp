// Keyed checksums beside the published vectors and another implementation.
#include <zo/files/file.h>
#include <zo/persist/check_sum.h>

#include <random>

#include "files/file_fixture.h"
#include "platform/sha256.h"

namespace zo::test {
namespace {

using Sum = ZoCheckSum::Sum;

std::string hex(const Sum& sum) {
  std::string text;
  for (const std::uint8_t byte : sum) {
    for (const int digit : {byte >> 4, byte & 15}) text += "0123456789abcdef"[digit];
  }
  return text;
}

Sum sumOf(std::string_view data, std::string_view key) {
  Sum sum{};
  EXPECT_EQ(zoCheckSum(data.data(), data.size(), ZoCheckKey(key), sum), 0);
  return sum;
}

struct Vector {
  std::string key, data;
  std::string_view sum;  // or its beginning
};
std::string counting(char first, std::size_t count) {
  std::string bytes;
  while (bytes.size() < count) bytes += static_cast<char>(first + static_cast<char>(bytes.size()));
  return bytes;
}
// RFC 4231, cases 1 to 7, and the examples of NIST for SHA-256.
const Vector kPublished[] = {
    {std::string(20, '\x0b'), "Hi There",
     "b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7"},
    {"Jefe", "what do ya want for nothing?",
     "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"},
    {std::string(20, '\xaa'), std::string(50, '\xdd'),
     "773ea91e36800e46854db8ebd09181a72959098b3ef8c122d9635514ced565fe"},
    {counting(1, 25), std::string(50, '\xcd'),
     "82558a389a443c0ea4cc819899f2083a85f0faa3e578f8077a2e3ff46729665b"},
    {std::string(20, '\x0c'), "Test With Truncation", "a3b6167473100ee06e0c796c2955552b"},
    {std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First",
     "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54"},
    {std::string(131, '\xaa'),
     "This is a test using a larger than block-size key and a larger than block-size data. The key "
     "needs to be hashed before being used by the HMAC algorithm.",
     "9b09ffa71b942fcb27635fbcd5b0e944bfdc63644f0713938a7f51535c3a35e2"},
    {counting(0, 64), "Sample message for keylen=blocklen",
     "8bb9a1db9806f20df7f77b82138c7914d174d59e13dc4d0169c9057b133e1d62"},
    {counting(0, 32), "Sample message for keylen<blocklen",
     "a28cf43130ee696a98f14a37678b56bcfcbdd9e5cf69717fecf5480f0ebdf790"},
    {counting(0, 100), "Sample message for keylen=blocklen",
     "bdccb6c72ddeadb500ae768386cb38cc41c63dbb0878ddb9c7a38a431b78378d"},
};
// What Python's hmac makes of the 1,000 pairs below.
constexpr std::string_view kSumOfPairs =
    "8fabba65a95088799520d609cc1d93cfaca7b122757603044d30f46f0f8f503b";

std::string bytes(std::uint32_t seed, std::size_t count) {
  std::string made;
  for (; made.size() < count; seed = seed * 1664525 + 1013904223)
    made += static_cast<char>(seed >> 24);
  return made;
}

TEST(CheckSum, IsWhatOthersCompute) {
  for (const Vector& vector : kPublished) {
    const std::string sum = hex(sumOf(vector.data, vector.key));
    EXPECT_EQ(sum.substr(0, vector.sum.size()), vector.sum);
  }
  std::string all;  // of 1,000 random pairs, summed in turn, so that each counts
  for (std::uint32_t i = 0; i < 1000; ++i)
    all += hex(sumOf(bytes(i, i * 7 % 300), bytes(i + 5000, i * 11 % 150)));
  EXPECT_EQ(hex(sumOf(all, "")), kSumOfPairs);
  Sha256Sum plain;
  ASSERT_TRUE(sha256Of("abc", plain));
  EXPECT_EQ(hex(plain), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(CheckSum, DoesNotDependOnHowDataArriveAndChangesWithEachBit) {
  const std::string data = bytes(1, 200), key = bytes(2, 40);
  const Sum whole = sumOf(data, key);
  ZoCheckSum sum;
  Sum made;
  for (std::size_t cut = 0; cut <= data.size(); ++cut) {
    ASSERT_EQ(sum.start(ZoCheckKey(key)), 0);
    ASSERT_EQ(sum.add(data.data(), cut) + sum.add(data.data() + cut, data.size() - cut), 0);
    ASSERT_EQ(sum.finish(made), 0);
    ASSERT_TRUE(ZoCheckSum::isSame(made, whole)) << cut;
  }
  for (const bool inKey : {false, true}) {
    for (std::size_t bit = 0; bit < 8 * (inKey ? key : data).size(); ++bit) {
      std::string changed = inKey ? key : data;
      changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ 1 << bit % 8);
      const Sum other = inKey ? sumOf(data, changed) : sumOf(changed, key);
      ASSERT_FALSE(ZoCheckSum::isSame(other, whole)) << bit;
    }
  }
  for (std::size_t bit = 0; bit < 256; ++bit) {
    Sum other = whole;
    other[bit / 8] = static_cast<std::uint8_t>(other[bit / 8] ^ 1U << bit % 8);
    EXPECT_FALSE(ZoCheckSum::isSame(other, whole));
  }
  std::uint64_t number = 0;
  ASSERT_EQ(zoCheckSum(data.data(), data.size(), ZoCheckKey(key), number), 0);
  EXPECT_EQ(number & 0xFF, whole[0]);
  EXPECT_EQ(number >> 56, whole[7]);
}

TEST(CheckSum, RefusesWrongUseAndTakesWhatIsEmpty) {
  const Sum nothing = sumOf("", "");
  Sum made = nothing;
  std::uint64_t number = 7;
  ZoCheckSum sum;
  EXPECT_EQ(sum.add("x", 1) + sum.finish(made), 2) << "not begun";
  EXPECT_EQ(sum.start(ZoCheckKey(nullptr, 1)), 1);
  EXPECT_EQ(sum.start(ZoCheckKey("", 0)) * 10 + sum.add("x", static_cast<size_t>(-1)), 1);
  EXPECT_EQ(zoCheckSum(nullptr, 1, ZoCheckKey(""), number), 1);
  EXPECT_EQ(zoCheckSum("x", 1, ZoCheckKey(nullptr, 1), made), 1);
  EXPECT_EQ(sum.start(ZoCheckKey(nullptr, 0)) + sum.add(nullptr, 0), 0);
  EXPECT_EQ(sum.add(nullptr, 1), 1);
  EXPECT_EQ(sum.finish(made), 0) << "what was refused is not in it";
  EXPECT_EQ(sum.finish(made) + sum.add("x", 1), 2) << "it has ended";
  EXPECT_EQ(made, nothing);
  EXPECT_EQ(number, 7U);
  ZoCheckSum moved(std::move(sum));
  EXPECT_EQ(moved.start(ZoCheckKey("k")), 0);
  sum = std::move(moved);
  EXPECT_EQ(sum.finish(made), 0);
  EXPECT_EQ(made, sumOf("", "k"));
  EXPECT_EQ(sumOf("x", std::string(1'000'000, 'k')), sumOf("x", std::string(1'000'000, 'k')));
}

using CheckSumFiles = FileTest;

TEST_F(CheckSumFiles, AreSummedAsTheirBytes) {
  for (const std::size_t size : {0U, 1U, 262'143U, 262'144U, 700'001U}) {
    const std::string content = bytes(3, size);
    put(name(L"f"), content);
    Sum made;
    EXPECT_EQ(zoCheckSumFile(name(L"f"), ZoCheckKey("key"), made), 0);
    EXPECT_EQ(made, sumOf(content, "key")) << size;
  }
  ZoFile file;
  Sum made;
  ASSERT_EQ(file.open(name(L"f")), 0);
  ASSERT_EQ(file.seek(700'000), 700'000);
  EXPECT_EQ(zoCheckSumFile(file, ZoCheckKey("key"), made), 0);
  EXPECT_EQ(made, sumOf(bytes(3, 700'001).substr(700'000), "key")) << "from its position on";
}

TEST_F(CheckSumFiles, FailuresHaveAReasonAndFillNothing) {
  const Sum before = sumOf("before", "");
  Sum made = before;
  const auto expectFailure = [&](const wchar_t* file, DWORD error) {
    EXPECT_EQ(zoCheckSumFile(name(file), ZoCheckKey("key"), made), 1);
    expectError(error);
    EXPECT_EQ(made, before);
  };
  expectFailure(L"missing", ERROR_FILE_NOT_FOUND);
  put(name(L"f"), bytes(4, 300'000));
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "read", .nth = 2, .error = ERROR_CRC});
  expectFailure(L"f", ERROR_CRC);
  {
    ZoFile writer;
    ASSERT_EQ(writer.open(name(L"f"), ZoFile::kWrite, ZoFile::kOpenExisting), 0);
    expectFailure(L"f", ERROR_SHARING_VIOLATION);
  }
  ZoFile closed;
  EXPECT_EQ(zoCheckSumFile(closed, ZoCheckKey("key"), made), 1);
}

// A file that says to be longer than it is.
class Shrinking : public FaultyFiles {
 public:
  bool size(HANDLE file, std::int64_t& bytes) override {
    const bool done = FaultyFiles::size(file, bytes);
    bytes += 5;
    return done;
  }
};

TEST_F(CheckSumFiles, AFileThatEndsEarlyHasNoSum) {
  put(name(L"f"), "short");
  Shrinking files;
  Sum made;
  EXPECT_EQ(zoCheckSumFile(name(L"f"), ZoCheckKey("key"), made), 1);
  expectError(ERROR_HANDLE_EOF);
}

}  // namespace
}  // namespace zo::test
