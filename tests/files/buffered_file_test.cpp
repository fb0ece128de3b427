// Buffered reading and writing against a plain text in memory.
#include "files/buffered_file.h"

#include <random>

#include "files/file_fixture.h"

namespace zo::test {
namespace {

using BufferedFile = FileTest;
constexpr int kRounds = 500;

// Pieces around the buffer's size: far below, just at it, several times.
std::size_t randomCount(std::mt19937& random, std::size_t capacity) {
  const std::size_t around[] = {random() % 8, capacity - 1 + random() % 3,
                                random() % (3 * capacity)};
  return around[random() % 3];
}

TEST_F(BufferedFile, WritesWhatItWasGivenAndReadsItBack) {
  std::mt19937 random(7);
  for (const std::size_t capacity : {std::size_t{1}, std::size_t{16}, std::size_t{100}}) {
    ZoFile file;
    ASSERT_EQ(file.open(name(L"f"), ZoFile::kReadWrite, ZoFile::kCreateAlways, ZoFile::kShareRead),
              0);
    ASSERT_EQ(file.write("head", 4), 4u);
    std::string model = "head";
    FileWriter writer(file, capacity);
    for (int i = 0; i < kRounds; ++i) {
      const std::string piece(randomCount(random, capacity), static_cast<char>(random()));
      ASSERT_TRUE(writer.write(piece.data(), piece.size()));
      model += piece;
      ASSERT_EQ(writer.position(), static_cast<std::int64_t>(model.size()));
      if (random() % 50 != 0) continue;
      ASSERT_TRUE(writer.flush());
      ASSERT_EQ(file.currentPos(), writer.position());
    }
    ASSERT_TRUE(writer.flush());

    ASSERT_EQ(file.seek(4), 4);
    FileReader reader(file, capacity);
    std::size_t at = 4;
    for (int i = 0; i < kRounds; ++i) {
      if (random() % 10 == 0) {
        at = random() % 3 ? at - random() % std::min<std::size_t>(at + 1, 2 * capacity)
                          : random() % (model.size() + 1);
        ASSERT_TRUE(reader.seek(static_cast<std::int64_t>(at)));
      }
      std::string piece(randomCount(random, capacity), '?');
      const std::size_t got = reader.read(piece.data(), piece.size());
      ASSERT_EQ(got, std::min(piece.size(), model.size() - at));
      ASSERT_FALSE(reader.failed());
      ASSERT_TRUE(piece.compare(0, got, model, at, got) == 0);
      at += got;
      ASSERT_EQ(reader.position(), static_cast<std::int64_t>(at));
    }
    ASSERT_TRUE(reader.detach());
    EXPECT_EQ(file.currentPos(), static_cast<std::int64_t>(at));
  }
}

TEST_F(BufferedFile, AFailureToReadIsNotTheEnd) {
  put(name(L"f"), "0123456789abcdef");
  ZoFile file;
  ASSERT_EQ(file.open(name(L"f")), 0);
  FaultyFiles files;
  FileReader reader(file, 10);
  char piece[32];
  files.arm({.fault = Fault::shorten, .call = "read"});
  EXPECT_EQ(reader.read(piece, 8), 8u) << "what came short is asked for again";
  files.arm({.fault = Fault::fail, .call = "read", .error = ERROR_CRC});
  const std::size_t got = reader.read(piece + 8, 24);
  EXPECT_TRUE(reader.failed());
  EXPECT_EQ(got + reader.read(piece + 8 + got, 24 - got), 8u);
  EXPECT_FALSE(reader.failed()) << "the end";
  EXPECT_EQ(std::string(piece, 16), "0123456789abcdef");
}

}  // namespace
}  // namespace zo::test
