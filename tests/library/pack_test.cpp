// Packing before a library is asked, reading beside others, and sources that are not what they say.
#include <zo/library/packed_member.h>

#include <atomic>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "library/files_lock.h"
#include "library/library_fixture.h"
#include "library/listing.h"

using namespace zo::test;

namespace {

std::string noise(std::size_t size) {
  std::mt19937 random(static_cast<unsigned>(size));
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

// Files of which one says of its size, or of its bytes, what is not so.
class LyingFiles : public UnflushedFiles {
 public:
  HANDLE create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                DWORD flags) override {
    const HANDLE file = UnflushedFiles::create(name, access, share, disposition, flags);
    if (!std::wstring_view(name).ends_with(L"source")) return file;
    source_ = file;
    lies_ = lieOnce;
    bytesRead = 0;
    return file;
  }
  bool size(HANDLE file, std::int64_t& bytes) override {
    const bool isAnswered = UnflushedFiles::size(file, bytes);
    if (file == source_) bytes += std::exchange(lies_, 0) + lieAlways;
    if (file == source_ && isEndless) bytes = static_cast<std::int64_t>(bytesRead) + 1000;
    return isAnswered;
  }
  bool read(HANDLE file, void* buffer, DWORD count, DWORD& done) override {
    if (file == source_ && (bytesRead += count) > failFrom) return done = 0, false;
    if (file == source_ && isEndless) return std::memset(buffer, 'e', done = count), true;
    if (beforeRead && file != source_) beforeRead();
    return UnflushedFiles::read(file, buffer, count, done);
  }
  bool write(HANDLE file, const void* data, DWORD count, DWORD& done) override {
    if (beforeWrite) std::exchange(beforeWrite, nullptr)();
    return UnflushedFiles::write(file, data, count, done);
  }

  std::int64_t lieOnce = 0, lieAlways = 0;
  std::uint64_t bytesRead = 0, failFrom = ~std::uint64_t{0};
  bool isEndless = false;  // it grows as fast as it is read
  std::function<void()> beforeWrite, beforeRead;

 private:
  HANDLE source_ = nullptr;
  std::int64_t lies_ = 0;
};

}  // namespace

TEST_F(LibraryTest, WhatIsPackedBeforeHasTheSameBytes) {
  const std::string text = noise(5000) + std::string(200'000, 't'), large = noise(9 << 20);
  const ZoFileName direct = name(L"direct.lib");
  ZoLibrary one, other;
  ZoPacker packer;
  ASSERT_EQ(openForWriting(one), 0);
  ASSERT_EQ(other.open(direct, kReadWrite, ZoFile::kOpenAlways), 0);
  int number = 0;
  const auto check = [&](const std::string& content, ZoLibrary::compMode mode, int level) {
    put(source_, content);
    for (int kind = 0; kind < 4; ++kind) {
      const std::wstring member = std::to_wstring(++number);
      ASSERT_EQ(other.addFile(source_, member.c_str(), false, mode, level), 0);
      ZoLibEntry entry;
      ASSERT_EQ(other.getEntry(member.c_str(), entry), 0);
      ZoPackedMember packed;
      ZoFile file;
      std::istringstream stream(content);
      ASSERT_EQ(file.open(source_), 0);
      const auto pack = [&] {
        if (kind == 0) return packer.pack(source_, packed, mode, level);
        if (kind == 1) return packer.pack(file, packed, mode, level);
        if (kind == 2) return packer.pack(stream, packed, mode, level);
        return packer.pack(content.data(), content.size(), packed, mode, level);
      };
      ASSERT_EQ(pack(), 0);
      EXPECT_EQ(packed.size(), entry.size);
      EXPECT_EQ(packed.storedSize(), entry.storedSize);
      EXPECT_EQ(packed.isCompressed(), entry.isCompressed());
      EXPECT_TRUE(kind > 1 || packed.written() == entry.written);
      packed.setTimes(entry.created, entry.accessed, entry.written);
      EXPECT_EQ(one.addFile(packed, member.c_str()), 0);
    }
  };
  for (const std::string& content : {std::string(), noise(600), text, text + text}) {
    for (const auto mode : {ZoLibrary::kStore, ZoLibrary::kCompress, ZoLibrary::kAutomatic}) {
      check(content, mode, mode == ZoLibrary::kCompress ? ZoLibrary::kBest : ZoLibrary::kFast);
    }
  }
  check(large, ZoLibrary::kAutomatic, ZoLibrary::kFast);  // more than is kept in memory
  EXPECT_EQ(one.close() + other.close(), 0);
  EXPECT_TRUE(bytesOf(path_) == bytesOf(direct));
}

TEST_F(LibraryTest, RefusesToPackWhatCannotBeRead) {
  ZoPacker packer;
  ZoPackedMember packed;
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  EXPECT_EQ(library.addFile(packed, L"empty"), 1);
  put(source_, "content");
  ASSERT_EQ(packer.pack(source_, packed), 0);
  EXPECT_EQ(library.addFile(packed, L"http://host/a"), 3);
  EXPECT_EQ(packer.pack(name(L"none"), packed), 1);
  EXPECT_EQ(packer.pack(nullptr, 10, packed), 1);
  for (const std::size_t impossible :
       {~std::size_t{0}, SIZE_MAX / 2, SIZE_MAX >> 2, SIZE_MAX >> 17})
    EXPECT_EQ(packer.pack("abc", impossible, packed), 1) << impossible;
  EXPECT_TRUE(packed.isEmpty());
  EXPECT_EQ(packer.pack(nullptr, 0, packed), 0);
  std::istringstream bad("content");
  bad.setstate(std::ios::badbit);
  EXPECT_EQ(packer.pack(bad, packed), 1);
  packer.onProgress([](std::uint64_t done, std::uint64_t) { return done == 0; });
  EXPECT_EQ(packer.pack(source_, packed), 1);
  EXPECT_TRUE(packer.wasCancelled() && packed.isEmpty());
  EXPECT_GE(ZoPacker::memoryFor(1 << 30, ZoLibrary::kBest), std::uint64_t{3} << 30);
}

// A stream throws where its user asked for it, but not from here.
TEST_F(LibraryTest, PacksStreamsWhateverTheyThrow) {
  struct Broken : std::streambuf {
    int_type underflow() override { throw std::runtime_error("the device is gone"); }
  };
  using Stream = std::istream;
  ZoPacker packer;
  ZoPackedMember packed;
  for (const auto mask : {Stream::goodbit, Stream::eofbit, Stream::failbit, Stream::badbit,
                          Stream::eofbit | Stream::failbit | Stream::badbit}) {
    std::istringstream sound("a sound stream");
    sound.exceptions(mask);
    EXPECT_EQ(packer.pack(sound, packed), 0) << mask;
    EXPECT_EQ(packed.size(), 14u);
    EXPECT_TRUE(sound.eof() && sound.exceptions() == mask);
    Broken buffer;
    Stream broken(&buffer);
    broken.exceptions(mask);
    EXPECT_EQ(packer.pack(broken, packed), 1) << mask;
    EXPECT_TRUE(packed.isEmpty() && broken.bad() && broken.exceptions() == mask);
  }
}

// Nobody gets by who would wait for the lock.
TEST_F(LibraryTest, PacksAndReadsBesideOthers) {
  const std::string content = noise(100'000) + std::string(100'000, 't');
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"member", content, false, ZoLibrary::kCompress), 0);
  {
    const zo::FilesLock lock;
    std::thread([&] {
      ZoPacker packer;
      ZoPackedMember packed;
      packer.onProgress([](std::uint64_t, std::uint64_t) { return true; });
      EXPECT_EQ(packer.pack(source_, packed), 0);
    }).join();
  }
  LyingFiles files;
  bool isAsked = false;
  files.beforeWrite = [&] { std::thread([&] { isAsked = library.contains(L"member"); }).join(); };
  EXPECT_EQ(library.extractFile(L"member", name(L"out")), 0);
  EXPECT_TRUE(isAsked);
  EXPECT_EQ(bytesOf(name(L"out")), content);
  // The library is rewritten, and then closed, while the member is read.
  for (const bool isClosed : {false, true}) {
    files.beforeWrite = [&] {
      std::thread([&] {
        if (isClosed) {
          EXPECT_EQ(library.close(), 0);
        } else {
          EXPECT_EQ(add(library, L"before", "x"), 0);
          EXPECT_EQ(library.deleteFile(L"before", true), 0);
        }
      }).join();
    };
    EXPECT_EQ(library.extractFile(L"member", name(L"out")), isClosed ? 1 : 0);
    EXPECT_EQ(bytesOf(name(L"out")), content);
  }
}

// The lock of libraries is there before zoComDllAttach and after zoComDllDetach, too.
TEST_F(LibraryTest, ThreadsShareAnObjectInAProcessThatIsNotAttached) {
  ASSERT_EQ(zoComDllDetach(), 0);
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"m", "content"), 0);
  constexpr int kThreads = 3, kMembers = 25;
  const auto use = [&](int thread) {
    ZoPacker packer;
    ZoPackedMember packed;
    EXPECT_EQ(packer.pack("bytes", 5, packed), 0);
    for (int i = 0; i < kMembers; ++i) {
      const std::wstring member = std::to_wstring(thread) + L"/" + std::to_wstring(i);
      const std::uint32_t before = library.counter();
      EXPECT_EQ(library.addFile(packed, member.c_str()), 0);
      EXPECT_GT(library.counter(), before);
      EXPECT_TRUE(library.isLibrary() && library.contains(member.c_str()));
      EXPECT_EQ(zo::test::contentOf(library, L"m"), "content");
      ZoLibEntry entry;
      EXPECT_EQ(library.getEntry(member.c_str(), entry) + library.verify(entry), 0);
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(use, i);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(names(library).size(), std::size_t{1 + kThreads * kMembers});
  EXPECT_EQ(library.counter(), 1u + kThreads * kMembers);
  EXPECT_EQ(library.trailingBytes(), 0u);
  EXPECT_EQ(library.close(), 0);
  ASSERT_EQ(zoComDllAttach(), 0);
}

TEST_F(LibraryTest, ManyThreadsReadWhileOneChanges) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  const auto contentOf = [](int i) { return noise(i == 0 ? 70'000 : 100) + std::to_string(i); };
  for (int i = 0; i < 8; ++i) {
    const auto mode = i % 2 ? ZoLibrary::kStore : ZoLibrary::kCompress;
    ASSERT_EQ(add(library, L"m" + std::to_wstring(i), contentOf(i), false, mode), 0);
  }
  std::atomic<bool> isDone = false;
  const auto read = [&](unsigned seed) {
    std::mt19937 random(seed);
    const ZoFileName target = name(L"out" + std::to_wstring(seed));
    while (!isDone) {
      const int i = static_cast<int>(random() % 8);
      const std::wstring member = L"m" + std::to_wstring(i);
      if (random() % 2) {
        EXPECT_EQ(zo::test::contentOf(library, member.c_str()), contentOf(i));
      } else {
        ASSERT_EQ(library.extractFile(member.c_str(), target), 0);
        EXPECT_EQ(bytesOf(target), contentOf(i));
      }
    }
  };
  std::thread first(read, 1), second(read, 2);
  for (int i = 0; i < bySpeed(8, 40); ++i) {
    EXPECT_EQ(add(library, L"x", "x", true), 0);
    EXPECT_EQ(library.deleteFile(L"x"), 0);
    EXPECT_EQ(library.reorganize(), 0);
  }
  isDone = true;
  first.join();
  second.join();
}

TEST_F(LibraryTest, PacksWhatItReadsOfASourceThatLies) {
  LyingFiles files;
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  for (const std::string& content : {std::string(3000, 's'), noise(400'000)}) {
    put(source_, content);
    for (const auto mode : {ZoLibrary::kStore, ZoLibrary::kCompress, ZoLibrary::kAutomatic}) {
      for (const std::int64_t lie : {-static_cast<std::int64_t>(content.size()), -1000LL, 1000LL}) {
        SCOPED_TRACE(testing::Message() << content.size() << ", " << mode << ", " << lie);
        files.lieOnce = lie;
        ASSERT_EQ(library.addFile(source_, L"member", true, mode, ZoLibrary::kFast), 0);
        ZoLibEntry entry;
        ASSERT_EQ(library.getEntry(L"member", entry), 0);
        EXPECT_EQ(entry.size, content.size());
        EXPECT_TRUE(contentOf(library, L"member") == content);
        // Who says that there is more, and gives nothing, has failed.
        files.lieOnce = 0;
        files.lieAlways = lie;
        EXPECT_EQ(library.addFile(source_, L"member", true, mode, ZoLibrary::kFast), lie > 0);
        files.lieAlways = 0;
        files.failFrom = content.size() / 2;
        EXPECT_EQ(library.addFile(source_, L"member", true, mode, ZoLibrary::kFast), 1);
        files.failFrom = ~std::uint64_t{0};
      }
      files.isEndless = true;
      files.failFrom = 16 << 20;  // never reached
      EXPECT_EQ(library.addFile(source_, L"member", true, mode, ZoLibrary::kFast), 0);
      files.isEndless = false;
      files.failFrom = ~std::uint64_t{0};
    }
    // What will not shrink is not compressed first; half a member that will, is.
    const bool isNoise = content.size() > 3000;
    ASSERT_EQ(library.addFile(source_, L"auto", true, ZoLibrary::kAutomatic), 0);
    if (isNoise) {
      EXPECT_LT(files.bytesRead, content.size() * 3 / 2);
    }
    put(source_, content + std::string(content.size(), ' '));
    ASSERT_EQ(library.addFile(source_, L"auto", true, ZoLibrary::kAutomatic), 0);
    ZoLibEntry entry;
    ASSERT_EQ(library.getEntry(L"auto", entry), 0);
    EXPECT_TRUE(entry.isCompressed());
  }
}
