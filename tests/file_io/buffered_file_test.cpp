// Buffered reading and writing against a plain text in memory.
#include "files/buffered_file.h"

#include <random>

#include "file_io/file_fixture.h"
#include "support/faulty_files.h"

namespace zo::test {
namespace {

using BufferedFile = FileTest;

#ifdef ZO_GUARDED
constexpr int kRounds = 200;
#else
constexpr int kRounds = 2000;
#endif

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
    ASSERT_EQ(file.open(name(L"f"), ZoFile::kReadWrite, ZoFile::kCreateAlways,
                        ZoFile::kShareRead | ZoFile::kShareWrite),
              0);
    ASSERT_EQ(file.write("head", 4), 4u);
    std::string model = "head";
    FileWriter writer(file, capacity);
    for (int i = 0; i < kRounds; ++i) {
      const std::string piece(randomCount(random, capacity), static_cast<char>(random()));
      ASSERT_TRUE(writer.write(piece.data(), piece.size()));
      model += piece;
      ASSERT_EQ(writer.position(), static_cast<std::int64_t>(model.size()));
      if (random() % 50 == 0) {
        ASSERT_TRUE(writer.flush());
        ASSERT_EQ(file.currentPos(), writer.position());
      }
    }
    ASSERT_TRUE(writer.flush());
    ASSERT_TRUE(bytesOf(name(L"f")) == model);

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

TEST_F(BufferedFile, PartsAreAskedForAgainAndFailuresLast) {
  ZoFile file;
  ASSERT_EQ(file.open(name(L"f"), ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  FaultyFiles files;
  char piece[32];
  {
    FileWriter writer(file, 10);
    files.arm({.fault = Fault::shorten, .call = "write"});
    EXPECT_TRUE(writer.write("0123456789abcdef", 16));
    EXPECT_TRUE(files.met());
    EXPECT_TRUE(writer.write("g", 1));
    files.arm({.fault = Fault::fail, .call = "write"});
    EXPECT_FALSE(writer.flush()) << "the disk is full";
    EXPECT_FALSE(writer.write("y", 0)) << "although the disk would take it now";
    EXPECT_TRUE(writer.failed());
    expectError(ERROR_DISK_FULL);
  }
  EXPECT_EQ(bytesOf(name(L"f")), "0123456789abcdef");
  file.seekToBegin();
  FileReader reader(file, 10);
  files.arm({.fault = Fault::shorten, .call = "read"});
  EXPECT_EQ(reader.read(piece, 8), 8u);
  EXPECT_TRUE(files.met());
  files.arm({.fault = Fault::fail, .call = "read", .error = ERROR_CRC});
  const std::size_t got = reader.read(piece, 32);
  EXPECT_TRUE(reader.failed()) << "not the end";
  EXPECT_EQ(got + reader.read(piece, 32), 8u);
  EXPECT_FALSE(reader.failed()) << "the end";
  EXPECT_EQ(reader.position(), 16);
  EXPECT_FALSE(reader.seek(-1));
  ZoFile none;
  EXPECT_EQ(FileReader(none).read(piece, 1), 0u);
  EXPECT_FALSE(FileWriter(none).write(piece, 1));
}

}  // namespace
}  // namespace zo::test
