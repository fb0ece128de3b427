// File objects on real files.
#include <zo/files/file.h>
#include <zo/files/file_imp.h>

#include <functional>
#include <utility>

#include "file_io/file_fixture.h"
#include "support/child_process.h"
#include "support/faulty_files.h"
#include "support/open_handles.h"

namespace zo::test {
namespace {

using FileObject = FileTest;
constexpr std::int64_t kGiB = std::int64_t{1} << 30;
constexpr int kShareAll = ZoFile::kShareRead | ZoFile::kShareWrite | ZoFile::kShareDelete;

std::uint64_t ticks(FILETIME time) {
  return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}
FILETIME timeOf(std::uint64_t ticks) {
  return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

std::string readAll(ZoFile& file) {
  std::string bytes(100, '?');
  bytes.resize(file.read(bytes.data(), 100));
  return bytes;
}

TEST_F(FileObject, TheModeDecidesByWhatExists) {
  struct Case {
    ZoFile::CreationMode mode;
    const char *absentAfter, *presentAfter;
    int ofAbsent = 0, ofPresent = 0;
  };
  for (const Case& c :
       {Case{ZoFile::kCreateNew, "", "old", 0, 1}, Case{ZoFile::kCreateAlways, "", ""},
        Case{ZoFile::kOpenExisting, "(none)", "old", 1}, Case{ZoFile::kOpenAlways, "", "old"},
        Case{ZoFile::kTruncateExisting, "(none)", "", 1}}) {
    const ZoFileName absent = name(L"absent" + std::to_wstring(c.mode)), present = name(L"present");
    put(present, "old");
    ZoFile file;
    EXPECT_EQ(file.open(absent, ZoFile::kWrite, c.mode), c.ofAbsent) << c.mode;
    EXPECT_EQ(file.isOpen(), c.ofAbsent == 0);
    EXPECT_EQ(file.open(present, ZoFile::kWrite, c.mode), c.ofPresent) << c.mode;
    EXPECT_EQ(file.close(), 0);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(bytesOf(absent), c.absentAfter) << c.mode;
    EXPECT_EQ(bytesOf(present), c.presentAfter) << c.mode;
  }
}

TEST_F(FileObject, KnowsHowItWasOpened) {
  ZoFile file, other;
  ASSERT_EQ(file.open(name(L"f"), ZoFile::kReadWrite, ZoFile::kCreateNew, ZoFile::kShareRead), 0);
  EXPECT_EQ(file.name(), name(L"f"));
  EXPECT_EQ(file.accessMode(), 0xC0000000u);
  EXPECT_EQ(file.shareMode(), 1u);
  EXPECT_FALSE(file.attributes() & FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(other.open(name(L"f"), ZoFile::kWrite), 1) << "shared for reading only";
  expectError(ERROR_SHARING_VIOLATION);
  // The flag for random access goes with reading and writing.
  FaultyFiles files;
  constexpr DWORD kRandom = FILE_FLAG_RANDOM_ACCESS, kSequential = FILE_FLAG_SEQUENTIAL_SCAN;
  struct Case {
    int access, given;
    DWORD flags;
  };
  for (const Case& c : {Case{ZoFile::kRead, 0, 0}, Case{ZoFile::kReadWrite, 0, kRandom},
                        Case{ZoFile::kRead, ZoFile::kRandomAccess, kRandom},
                        Case{ZoFile::kReadWrite, ZoFile::kSequential, kSequential}}) {
    EXPECT_EQ(file.open(name(L"f"), c.access, ZoFile::kOpenExisting, 0, c.given), 0);
    EXPECT_EQ(files.flagsOfCreate(), c.flags) << c.access << ' ' << c.given;
  }
}

TEST_F(FileObject, ReadsAndWritesSayHowMuchWasMoved) {
  ZoFile file;
  ASSERT_EQ(file.open(name(L"f"), ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  EXPECT_EQ(file.write("abcdef", 6), 6u);
  EXPECT_EQ(readAll(file), "") << "at the end";
  EXPECT_EQ(file.seek(4), 4);
  EXPECT_EQ(readAll(file), "ef");
  EXPECT_EQ(file.seekToBegin(), 0);
  EXPECT_EQ(file.seekToEnd(), 6);
  EXPECT_EQ(file.seek(-2, ZoFile::kCurrent), 4);
  EXPECT_EQ(file.setEndOfFile(), 0);
  EXPECT_EQ(file.size(), 4);
  EXPECT_EQ(file.flush(), 0);

  FaultyFiles files;
  files.arm({.fault = Fault::shorten, .call = "write"});
  EXPECT_EQ(file.write("ghij", 4), 2u) << "a short write is no failure, and is told";
  files.arm({.fault = Fault::shorten, .call = "read"});
  file.seekToBegin();
  char buffer[6];
  EXPECT_EQ(file.read(buffer, 6), 3u);
  files.arm({.fault = Fault::fail, .call = "close"});
  EXPECT_EQ(file.close(), 1) << "a failure to close is told";
  EXPECT_FALSE(file.isOpen());
  EXPECT_EQ(bytesOf(name(L"f")), "abcdgh");
}

TEST_F(FileObject, WithoutAFileNothingIsAskedOfThePlatform) {
  char byte = 'x';
  ZoFile moved;
  ZoFile empty(std::move(moved)), open;
  ASSERT_EQ(open.open(name(L"f"), ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  FaultyFiles files;
  for (ZoFile* file : {&moved, &empty}) {
    EXPECT_EQ(file->read(&byte, 1) + file->write(&byte, 1) + file->attributes(), 0u);
    EXPECT_EQ(ticks(file->lastWriteTime()) + ticks(file->creationTime()), 0u);
    for (const std::int64_t answer : {file->seek(0), file->currentPos(), file->size()})
      EXPECT_EQ(answer, -1);
    for (const int answer : {file->setEndOfFile(), file->lockRange(0, 1), file->unlockRange(0, 1),
                             file->flush(), file->setLastAccessTime({})})
      EXPECT_EQ(answer, 1);
    EXPECT_EQ(file->getCFileHandle(false, false), nullptr);
    EXPECT_EQ(file->handle(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(file->close(), 0);
    EXPECT_TRUE(file->name().isEmpty());
  }
  EXPECT_EQ(open.read(nullptr, 1) + open.write(nullptr, 1), 0u);
  EXPECT_EQ(open.lockRange(-1, 1) + open.unlockRange(-1, 1), 2);
  EXPECT_EQ(files.calls().size(), 0u);
}

TEST_F(FileObject, SizesAndPositionsHave64Bits) {
  ZoFile file;
  ASSERT_EQ(file.open(name(L"large"), ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  DWORD returned;
  DeviceIoControl(file.handle(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
  // Among them the position whose low half is what the platform also says for a failure.
  for (const std::int64_t at : {std::int64_t{0xFFFFFFFF}, 4 * kGiB + 10, 5 * kGiB}) {
    EXPECT_EQ(file.seek(at), at);
    EXPECT_EQ(file.currentPos(), at);
    EXPECT_EQ(file.write("zo", 2), 2u);
    EXPECT_EQ(file.size(), at + 2);
  }
  EXPECT_EQ(file.seek(-kGiB + 8, ZoFile::kEnd), 4 * kGiB + 10);
  char read[2];
  EXPECT_EQ(file.read(read, 2), 2u);
  EXPECT_EQ(std::string(read, 2), "zo");
  EXPECT_EQ(file.seek(-6 * kGiB, ZoFile::kEnd), -1);
  expectError(ERROR_NEGATIVE_SEEK);
  EXPECT_EQ(file.currentPos(), 4 * kGiB + 12) << "a refused seek moves nothing";
  EXPECT_EQ(file.setEndOfFile(), 0);
  EXPECT_EQ(file.size(), 4 * kGiB + 12);
}

ZO_TEST_CHILD(fileLocker) {
  const Attached attached;
  ZoFile file;
  if (file.open(parent.argument(0).c_str(), ZoFile::kReadWrite, ZoFile::kOpenExisting, kShareAll))
    return 1;
  while (const auto order = parent.hear()) {
    const bool lock = order->front() == '+';
    const std::int64_t start = std::stoll(order->substr(1));
    parent.say(std::to_string(lock ? file.lockRange(start, 10) : file.unlockRange(start, 10)));
  }
  return 0;
}

TEST_F(FileObject, LocksHoldAgainstOtherProcesses) {
  put(name(L"f"), "0123456789");
  ZoFile file;
  ASSERT_EQ(file.open(name(L"f"), ZoFile::kReadWrite, ZoFile::kOpenExisting, kShareAll), 0);
  ChildProcess child(L"fileLocker", {name(L"f").fullName()});
  const auto ask = [&](const char* order, std::int64_t start) {
    child.say(order + std::to_string(start));
    return child.hear().value_or("ended");
  };
  for (const std::int64_t start : {std::int64_t{0}, 5 * kGiB}) {
    EXPECT_EQ(file.lockRange(start, 10), 0);
    EXPECT_EQ(ask("+", start + 9), "1") << "one byte of it";
    EXPECT_EQ(ask("+", start + 10), "0") << "behind it";
    EXPECT_EQ(file.lockRange(start + 19, 1), 1) << "theirs";
    expectError(ERROR_LOCK_VIOLATION);
    EXPECT_EQ(ask("-", start + 10), "0");
    EXPECT_EQ(file.unlockRange(start, 9), 1) << "not as it was locked";
    EXPECT_EQ(file.unlockRange(start, 10), 0);
    EXPECT_EQ(ask("+", start), "0");
    EXPECT_EQ(file.lockRange(start, 10), 1);
  }
  child.kill();
  EXPECT_EQ(file.lockRange(0, 10), 0) << "the locks of a process that is gone are gone";
}

TEST_F(FileObject, TimesAreKeptTo100Nanoseconds) {
  ZoFile file;
  ASSERT_EQ(file.open(name(L"f"), ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  const std::uint64_t written = 133'000'000'123'456'789, accessed = 132'999'999'987'654'321,
                      created = 132'888'888'888'888'888;
  EXPECT_EQ(file.setLastWriteTime(timeOf(written)), 0);
  EXPECT_EQ(file.setLastAccessTime(timeOf(accessed)), 0);
  const std::uint64_t before = ticks(file.creationTime());
  EXPECT_EQ(file.setCreationTime(timeOf(created)), 0);
  EXPECT_EQ(ticks(file.lastWriteTime()), written) << "each setter leaves the other times";
  EXPECT_EQ(ticks(file.lastAccessTime()), accessed);
  // Not every file system keeps the time of creation.
  EXPECT_TRUE(ticks(file.creationTime()) == created || ticks(file.creationTime()) == before);
}

TEST_F(FileObject, TemporaryFilesAreNewAndNamedAfterTheWish) {
  ZoFile first, second;
  ZoFileName one = name(L"part.dwg"), two(L"part.dwg"), plain;
  two.setMacro(L"LIB", name(L"").fullName());
  put(name(L"part.dwg"), "old");
  ASSERT_EQ(first.createTemp(one), 0);
  const auto createGone = [&](ZoFileName& wish) {
    return second.createTemp(wish, ZoFile::kReadWrite, ZoFile::kCreateAlways, 0,
                             ZoFile::kDeleteOnClose);
  };
  ASSERT_EQ(createGone(plain), 0);
  EXPECT_EQ(ZoFileName(std::filesystem::temp_directory_path()),
            ZoFileName((std::wstring(plain.drive()) + plain.directory()).c_str()));
  EXPECT_STREQ(plain.extension(), L".tmp");
  ASSERT_EQ(createGone(two), 0);
  EXPECT_FALSE(one == two);
  for (const ZoFileName* made : {&one, &two}) {
    EXPECT_STREQ(made->directory(), name(L"x").directory());
    EXPECT_STREQ(made->extension(), L".dwg");
    EXPECT_TRUE(std::wstring_view(made->fileName()).starts_with(L"part"));
    EXPECT_EQ(std::wstring(made->fileName()).size(), 12u);
    EXPECT_TRUE(exists(*made));
  }
  EXPECT_EQ(first.name(), one);
  EXPECT_EQ(bytesOf(name(L"part.dwg")), "old");
  EXPECT_EQ(second.close(), 0);
  EXPECT_FALSE(exists(two)) << "deleted on close";
  ZoFileName kept = name(L"kept"), nowhere = name(L"no folder\\f");
  EXPECT_EQ(second.createTemp(kept, ZoFile::kReadWrite, ZoFile::kOpenExisting), 1);
  EXPECT_EQ(second.createTemp(kept, ZoFile::kReadWrite, ZoFile::kTruncateExisting), 1);
  EXPECT_EQ(second.createTemp(nowhere), 1);
  EXPECT_TRUE(kept == name(L"kept") && nowhere == name(L"no folder\\f"));
  // A name that somebody takes in the last moment is left alone, and the next one tried.
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "create", .error = ERROR_FILE_EXISTS});
  EXPECT_EQ(second.createTemp(kept), 0);
  EXPECT_EQ(files.calls().size(), 2u);
  ZoFileName homeless;
  files.arm({.fault = Fault::fail, .call = "tempFolder"});
  EXPECT_EQ(second.createTemp(homeless), 1) << "not just anywhere";
  expectError(ERROR_DISK_FULL);
}

TEST_F(FileObject, AStreamTakesTheFileOver) {
  struct Case {
    const wchar_t* mode;  // null: through the flags
    bool text, writable;
    int access;
    bool works = true;
  } const cases[] = {
      {nullptr, true, false, ZoFile::kRead},
      {nullptr, false, false, ZoFile::kReadWrite},
      {nullptr, true, true, ZoFile::kReadWrite},
      {nullptr, false, true, ZoFile::kRead, false},
      {L"rb", false, false, ZoFile::kRead},
      {L"w+b", false, true, ZoFile::kReadWrite},
      {L"ab", false, true, ZoFile::kReadWrite},
      {L"", false, false, ZoFile::kRead, false},
      {L"x", false, false, ZoFile::kRead, false},
      {L"r,ccs=UTF-8", false, false, ZoFile::kRead, false},
  };
  ZoFile file;
  for (const Case& c : cases) {
    const auto shown = &c - cases;
    put(name(L"f"), "ab\r\ncd");
    ASSERT_EQ(file.open(name(L"f"), c.access, ZoFile::kOpenExisting, kShareAll), 0);
    ASSERT_EQ(file.seek(1), 1);
    std::FILE* const stream =
        c.mode ? file.getCFileHandle(c.mode) : file.getCFileHandle(c.text, c.writable);
    ASSERT_EQ(stream != nullptr, c.works) << shown;
    EXPECT_EQ(file.isOpen(), !c.works) << shown;
    if (!stream) {
      EXPECT_EQ(readAll(file), "b\r\ncd") << shown << ": untouched";
      file.close();
      continue;
    }
    if (!c.mode || c.mode[0] == L'r') {
      char line[10] = {};
      EXPECT_EQ(std::fread(line, 1, 3, stream), 3u) << shown;
      EXPECT_EQ(std::string(line), c.text ? "b\nc" : "b\r\n") << shown;
      std::fseek(stream, 0, SEEK_CUR);
    }
    EXPECT_EQ(std::fputs("!", stream) >= 0 && std::fflush(stream) == 0, c.writable) << shown;
    std::fclose(stream);
    ASSERT_EQ(file.open(name(L"f"), ZoFile::kRead, ZoFile::kOpenExisting, 0), 0) << "closed";
    file.close();
  }
  ASSERT_EQ(file.open(name(L"f")), 0);
  EXPECT_EQ(file.getCFileHandle(nullptr), nullptr);
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "duplicate"});
  EXPECT_EQ(file.getCFileHandle(false, false), nullptr);
  EXPECT_TRUE(files.met() && file.isOpen());
}

TEST_F(FileObject, CopiesShareThePositionAndMovesTakeTheFile) {
  put(name(L"f"), "abcdef");
  const unsigned long before = openHandles();
  {
    ZoFile file;
    ASSERT_EQ(file.open(name(L"f"), ZoFile::kRead, ZoFile::kOpenExisting, kShareAll), 0);
    ZoFile copy(file);
    char c;
    EXPECT_EQ(copy.read(&c, 1), 1u);
    EXPECT_EQ(file.currentPos(), 1) << "one position";
    EXPECT_EQ(copy.name(), file.name());
    EXPECT_EQ(file.close(), 0);
    EXPECT_EQ(readAll(copy), "bcdef") << "closed when both are";

    ZoFile writer(copy, static_cast<unsigned int>(ZoFile::kWrite));
    ASSERT_TRUE(writer.isOpen());
    EXPECT_EQ(writer.write("X", 1), 1u) << "at a position of its own";
    EXPECT_EQ(writer.accessMode(), 0x40000000u);
    EXPECT_EQ(copy.currentPos(), 6);

    ZoFile moved(std::move(copy));
    EXPECT_FALSE(copy.isOpen());
    EXPECT_EQ(moved.seekToBegin(), 0);
    EXPECT_EQ(copy.open(name(L"f"), ZoFile::kRead, ZoFile::kOpenExisting, kShareAll), 0)
        << "usable again";
    moved = std::move(copy);
    EXPECT_FALSE(copy.isOpen()) << "nor has it what the other had";
    EXPECT_EQ(readAll(moved), "Xbcdef");
    ZoFile& self = moved;
    moved = self;
    file = moved;
    EXPECT_TRUE(moved.isOpen() && file.isOpen());
    file = ZoFile();
    EXPECT_FALSE(file.isOpen());
    // A copy that asks for more than the sharing allows has no file.
    ASSERT_EQ(file.open(name(L"g"), ZoFile::kWrite, ZoFile::kCreateNew, ZoFile::kShareNone), 0);
    EXPECT_FALSE(ZoFile(file, static_cast<unsigned int>(ZoFile::kRead)).isOpen());
    // Handles are taken over and given.
    const HANDLE raw = file.handle(true);
    EXPECT_FALSE(file.isOpen());
    ZoFile owner(raw);
    EXPECT_EQ(owner.write("raw", 3), 3u);
  }
  EXPECT_EQ(openHandles(), before);
  EXPECT_EQ(bytesOf(name(L"g")), "raw");
}

TEST_F(FileObject, EveryFailureIsReportedUnderItsName) {
  RecordingFileSystem service;
  put(name(L"f"), "abc");
  ZoFile file(new ZoFileImp(&service));
  ASSERT_EQ(file.open(name(L"f"), ZoFile::kReadWrite), 0);
  ZoFileName temp = name(L"t");
  char byte = 'x';
  struct Case {
    const char* call;
    const wchar_t* reported;
    std::function<std::int64_t()> run;
    std::int64_t result;
  } const cases[] = {
      {"read", L"read", [&] { return file.read(&byte, 1); }, 0},
      {"write", L"write", [&] { return file.write(&byte, 1); }, 0},
      {"seek", L"seek", [&] { return file.seek(1); }, -1},
      {"setEnd", L"setEndOfFile", [&] { return file.setEndOfFile(); }, 1},
      {"lock", L"lockRange", [&] { return file.lockRange(0, 1); }, 1},
      {"unlock", L"unlockRange", [&] { return file.unlockRange(0, 1); }, 1},
      {"flush", L"flush", [&] { return file.flush(); }, 1},
      {"size", L"size", [&] { return file.size(); }, -1},
      {"information", L"attributes", [&] { return file.attributes(); }, 0},
      {"information", L"creationTime", [&] { return ticks(file.creationTime()); }, 0},
      {"information", L"lastAccessTime", [&] { return ticks(file.lastAccessTime()); }, 0},
      {"information", L"lastWriteTime", [&] { return ticks(file.lastWriteTime()); }, 0},
      {"setTimes", L"setCreationTime", [&] { return file.setCreationTime({}); }, 1},
      {"setTimes", L"setLastAccessTime", [&] { return file.setLastAccessTime({}); }, 1},
      {"setTimes", L"setLastWriteTime", [&] { return file.setLastWriteTime({}); }, 1},
      {"duplicate", L"open", [&] { return ZoFile(file).isOpen(); }, 0},
      {"reopen", L"open", [&] { return ZoFile(file, 0x80000000U).isOpen(); }, 0},
      {"close", L"close", [&] { return file.close(); }, 1},
      {"create", L"open", [&] { return file.open(name(L"f")); }, 1},
      {"create", L"createTemp", [&] { return file.createTemp(temp); }, 1},
  };
  expectReported(service, cases, [](const Case& c) { return c.run(); });
}

// What a class does not serve answers as for a file that is not open.
class ThreeBytes : public ZoFileImp {
 public:
  [[nodiscard]] ZoFileImp* clone() const override { return new ThreeBytes; }
  unsigned int read(void* buffer, unsigned int) override {
    return static_cast<unsigned int>(std::string("abc").copy(static_cast<char*>(buffer), 3));
  }
};

TEST_F(FileObject, AnythingCanServeAsAFile) {
  ZoFile file(new ThreeBytes);
  EXPECT_EQ(readAll(file), "abc");
  EXPECT_EQ(file.write("x", 1), 0u);
  ZoFile copy(file);
  EXPECT_EQ(readAll(copy), "abc");
  auto* const plain = new ZoFileImp;
  EXPECT_EQ(file.setImpObj(plain), 0);
  EXPECT_EQ(file.setImpObj(plain), 0) << "the same one stays";
  EXPECT_EQ(file.getImpObj(), plain);
  EXPECT_EQ(file.setImpObj(nullptr), 0);
  EXPECT_NE(file.getImpObj(), nullptr) << "made when asked for";
}

TEST_F(FileObject, LongForeignAndAliasedNamesWork) {
  std::wstring deep = L"\x44F\x4E00";
  while (name(deep).fullNameSize() < 400) deep += L"\\" + std::wstring(60, L'd');
  std::filesystem::create_directories(
      std::filesystem::path(L"\\\\?\\" + std::wstring(name(deep).fullName())));
  ZoFile file;
  ASSERT_EQ(file.open(name(deep + L"\\\xFC.bin"), ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  EXPECT_EQ(file.write("deep", 4), 4u);
  EXPECT_EQ(file.open(name(deep + L"\\\xFC.bin")), 0);
  EXPECT_EQ(readAll(file), "deep");

  put(name(L"local"), "alias");
  ZoFileName url(L"ftp://host/part.dwg");
  EXPECT_EQ(file.open(url), 1);
  url.setLocalAlias(name(L"local"));
  EXPECT_EQ(file.open(url), 0);
  EXPECT_EQ(readAll(file), "alias");
  EXPECT_EQ(file.name(), url);
}

}  // namespace
}  // namespace zo::test
